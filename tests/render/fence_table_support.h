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

// What a run of `text` measures in `context`, as the run layout sets it (the rules of runs are
// tested with the run layout; these tests take its box as given).
inline double runWidth(const KLayoutContext& context, const QString& text)
{
    return layoutList(context, runs(text))->width;
}
inline double runAscent(const KLayoutContext& context, const QString& text)
{
    return layoutList(context, runs(text))->ascent;
}
inline double runHeight(const KLayoutContext& context, const QString& text)
{
    return layoutList(context, runs(text))->height;
}
// The text font's line, which an empty delimiter body takes.
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
