// Temporary: no built-in outlines yet, so every stretchy glyph draws as a scaled
// font glyph and no delimiter has a builder. Removed when the outline tables land.

#include "render/outlines.h"

namespace outlines {

bool hasOutline(char16_t)
{
    return false;
}

KOperatorOutline outline(char16_t)
{
    return {};
}

bool hasDelimiterBuilder(char16_t)
{
    return false;
}

KBuiltDelimiter buildDelimiter(double, char16_t)
{
    return {};
}

} // namespace outlines
