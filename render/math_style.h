#pragma once
// TeX's math styles and the spacing between atoms: the four styles and their
// sizes (the math font's script scale-downs), the atom classes, the class of a
// character, and the table of thin, medium and thick spaces.

#include <QString>

enum class KMathStyle : int { display = 0, text = 1, script = 2, scriptScript = 3 };

enum class KAtomClass : int { ord = 0, op, bin, rel, open, close, punct, inner };

// The size of a style relative to the main size: 1 for display and text, the font's scale-downs below.
double styleScale(KMathStyle style);
// The style of superscripts and subscripts of a formula in `style`.
KMathStyle scriptStyle(KMathStyle style);
// The style of a fraction's numerator and denominator in `style`.
KMathStyle fractionStyle(KMathStyle style);
inline bool isScriptStyle(KMathStyle style)
{
    return style == KMathStyle::script || style == KMathStyle::scriptScript;
}

// The space between two adjacent atoms, in mu (an eighteenth of the style's em): 0, 3 (thin),
// 4 (medium) or 5 (thick); medium and thick spaces and most thin ones vanish in script styles.
int interAtomSpace(KAtomClass left, KAtomClass right, KMathStyle style);

// The class of a single character standing in a formula: letters and digits are ordinary.
KAtomClass characterClass(char32_t character);

// A binary operator in a place where it has nothing to combine (at the start, after an operator,
// a binary operator, a relation, an opening or a punctuation, or before a relation, a closing or a
// punctuation, or at the end) counts as ordinary. `previous` is null at the start, `next` at the end.
bool binaryActsAsOrdinary(const KAtomClass* previous, const KAtomClass* next);
