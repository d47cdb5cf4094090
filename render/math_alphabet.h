#pragma once
// Letters and digits in a math alphabet, through Unicode's mathematical alphanumeric symbols.

#include "omml/omml_model.h"

enum class KLetterShape : int { upright = 0, italic, bold, boldItalic };

// The character that draws `character` in `script` with `shape`; the character itself when the
// alphabet has no form for it (the form is then left to the font's upright letters).
char32_t mathAlphanumeric(char32_t character, OScript script, KLetterShape shape);

// Basic Latin letters, and Greek letters (which take the italic shape in formulas too).
bool isMathLetter(char32_t character);
