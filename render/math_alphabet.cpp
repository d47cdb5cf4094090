// The mathematical alphanumeric symbols block: each alphabet starts at a fixed code
// point with A-Z then a-z; a few letters live in the Letterlike Symbols block instead.

#include "render/math_alphabet.h"

namespace {

struct Exception {
    char32_t base;
    char32_t letter;
    char32_t replacement;
};

// Letters whose mathematical form was encoded before the block and left a hole in it.
constexpr Exception kExceptions[] = {
    {0x1D434, U'h', 0x210E}, {0x1D49C, U'B', 0x212C}, {0x1D49C, U'E', 0x2130}, {0x1D49C, U'F', 0x2131},
    {0x1D49C, U'H', 0x210B}, {0x1D49C, U'I', 0x2110}, {0x1D49C, U'L', 0x2112}, {0x1D49C, U'M', 0x2133},
    {0x1D49C, U'R', 0x211B}, {0x1D49C, U'e', 0x212F}, {0x1D49C, U'g', 0x210A}, {0x1D49C, U'o', 0x2134},
    {0x1D504, U'C', 0x212D}, {0x1D504, U'H', 0x210C}, {0x1D504, U'I', 0x2111}, {0x1D504, U'R', 0x211C},
    {0x1D504, U'Z', 0x2128}, {0x1D538, U'C', 0x2102}, {0x1D538, U'H', 0x210D}, {0x1D538, U'N', 0x2115},
    {0x1D538, U'P', 0x2119}, {0x1D538, U'Q', 0x211A}, {0x1D538, U'R', 0x211D}, {0x1D538, U'Z', 0x2124},
};

// The first letter (capital A) of the Latin alphabet for a script and shape; 0 for the plain letters.
char32_t latinBase(OScript script, KLetterShape shape)
{
    const bool bold = shape == KLetterShape::bold || shape == KLetterShape::boldItalic;
    const bool italic = shape == KLetterShape::italic || shape == KLetterShape::boldItalic;
    switch (script) {
    case OScript::roman:
        if (bold)
            return italic ? 0x1D468 : 0x1D400;
        return italic ? 0x1D434 : 0;
    case OScript::script:
        return bold ? 0x1D4D0 : 0x1D49C;
    case OScript::fraktur:
        return bold ? 0x1D56C : 0x1D504;
    case OScript::doubleStruck:
        return 0x1D538;
    case OScript::sansSerif:
        if (bold)
            return italic ? 0x1D63C : 0x1D5D4;
        return italic ? 0x1D608 : 0x1D5A0;
    case OScript::monospace:
        return 0x1D670;
    }
    return 0;
}

char32_t digitBase(OScript script, KLetterShape shape)
{
    const bool bold = shape == KLetterShape::bold || shape == KLetterShape::boldItalic;
    switch (script) {
    case OScript::roman:
        return bold ? 0x1D7CE : 0;
    case OScript::doubleStruck:
        return 0x1D7D8;
    case OScript::sansSerif:
        return bold ? 0x1D7EC : 0x1D7E2;
    case OScript::monospace:
        return 0x1D7F6;
    default:
        return 0;
    }
}

// Greek in roman script: italic from U+1D6E2 (capital Alpha), bold from U+1D6A8, bold italic from U+1D71C;
// the block holds capitals U+0391-U+03A9 then small letters U+03B1-U+03C9 in the same order.
char32_t greek(char32_t character, KLetterShape shape)
{
    char32_t base = 0;
    switch (shape) {
    case KLetterShape::upright:
        return character;
    case KLetterShape::italic:
        base = 0x1D6E2;
        break;
    case KLetterShape::bold:
        base = 0x1D6A8;
        break;
    case KLetterShape::boldItalic:
        base = 0x1D71C;
        break;
    }
    if (character >= 0x0391 && character <= 0x03A9 && character != 0x03A2)
        return base + (character - 0x0391);
    if (character >= 0x03B1 && character <= 0x03C9)
        return base + 26 + (character - 0x03B1);
    return character;
}

} // namespace

bool isMathLetter(char32_t c)
{
    return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') ||
           (c >= 0x0391 && c <= 0x03A9 && c != 0x03A2) || (c >= 0x03B1 && c <= 0x03C9);
}

char32_t mathAlphanumeric(char32_t c, OScript script, KLetterShape shape)
{
    if (c >= U'0' && c <= U'9') {
        const char32_t base = digitBase(script, shape);
        return base ? base + (c - U'0') : c;
    }
    if (c >= 0x0391 && c <= 0x03C9)
        return script == OScript::roman ? greek(c, shape) : c;
    const bool capital = c >= U'A' && c <= U'Z';
    if (!capital && !(c >= U'a' && c <= U'z'))
        return c;
    const char32_t base = latinBase(script, shape);
    if (!base)
        return c;
    for (const Exception& e : kExceptions) {
        if (e.base == base && e.letter == c)
            return e.replacement;
    }
    return base + (capital ? c - U'A' : 26 + c - U'a');
}
