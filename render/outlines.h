#pragma once
// Built-in outlines, so large operators and fences draw at any size whatever
// fonts the machine has: filled outlines of the n-ary operators, normalised to
// 120 units high, and stroked delimiter shapes built for a requested height.
// Both tables are built once on first use and only read afterwards.

#include <QPainterPath>

namespace outlines {

// A normalised operator outline: top-left at (0, 0), height 120 (both 0 for an empty path).
struct KOperatorOutline {
    QPainterPath path;
    double width = 0;
    double height = 0;
};

// A delimiter shape in a box of width widthFactor x H and height H, y down from 0 to H.
struct KBuiltDelimiter {
    QPainterPath path;
    double width = 0;
    double height = 0;
};

// The height every operator outline is normalised to.
inline constexpr double kOutlineHeight = 120.0;

bool hasOutline(char16_t c);
// The outline for c, or an empty path with width and height 0.
KOperatorOutline outline(char16_t c);

bool hasDelimiterBuilder(char16_t c);
// The delimiter c built at height H, or an empty path with width and height 0.
KBuiltDelimiter buildDelimiter(double height, char16_t c);

} // namespace outlines
