#pragma once
// Builders and measures shared by the tests of the fence, decoration and table
// layouts: OMML elements as a user's formula would produce them, and the sizes
// a run takes in the font the renderer resolves.

#include "render_test_support.h"

#include <QPainterPath>
#include <QString>

#include <cmath>
#include <utility>
#include <vector>

namespace fence_test {

using rendertest::run;
using rendertest::runs;

// What a run of `text` measures in `context`: advance plus 0.1 S between characters.
inline double runWidth(const KLayoutContext& context, const QString& text)
{
    if (text.isEmpty())
        return 0;
    return context.metrics.horizontalAdvance(text) + (text.size() - 1) * 0.1 * context.size;
}
inline double lineAscent(const KLayoutContext& context)
{
    return context.metrics.ascent();
}
inline double lineHeight(const KLayoutContext& context)
{
    return context.metrics.ascent() + context.metrics.descent();
}

// The ink box an accent is measured by: the glyph's ink box for one character,
// the shaped text's for more; when there is no ink, a box half an em wide and a
// quarter em high resting on the baseline around the origin.
struct AccentInk {
    QRectF rect;
    double bottom;
};
inline AccentInk accentInk(const KLayoutContext& context, const QString& chr)
{
    const QRectF tight =
        chr.size() == 1 ? context.metrics.boundingRect(chr.at(0)) : context.metrics.tightBoundingRect(chr);
    if (std::isfinite(tight.width()) && tight.width() >= 0.01 * context.size)
        return {tight, tight.y() + tight.height()};
    const double s = context.size;
    return {QRectF(-0.25 * s, -0.25 * s, 0.5 * s, 0.25 * s), 0};
}

// Straight segments of a path made of move/line pairs, as (x1, y1, x2, y2).
struct Segment {
    double x1, y1, x2, y2;
};
inline std::vector<Segment> segments(const QPainterPath& path)
{
    std::vector<Segment> result;
    for (int i = 0; i + 1 < path.elementCount(); ++i) {
        const QPainterPath::Element from = path.elementAt(i);
        const QPainterPath::Element to = path.elementAt(i + 1);
        if (to.type == QPainterPath::LineToElement)
            result.push_back({from.x, from.y, to.x, to.y});
    }
    return result;
}

} // namespace fence_test
