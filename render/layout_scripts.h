#pragma once
// Attaching scripts to a laid-out base, shared by scripts and large operators.

#include "render/layout_engine.h"

// What the script rules need to know of the base.
struct KScriptBase {
    bool character = false;      // one character: the font's shifts alone place the scripts
    double superscriptShift = 0; // points right of the base's width (a large operator's italic correction)
    double subscriptShift = 0;   // points left of the base's width (an italic letter's correction)
    bool primes = false;         // the superscript is primes at the base's size: it is not raised
};

// Base with a superscript and/or subscript at its right; the base itself without either.
KTypoNodePtr attachScripts(const KLayoutContext& context, KTypoNodePtr base, KTypoNodePtr sup,
                           KTypoNodePtr sub, const KScriptBase& kind);
