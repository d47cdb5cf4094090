// Decorations around a base: accents above it, bars over or under it, border
// boxes around it and horizontal braces over or under it.

#include "render/layout_engine.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

const QString kBlack = QStringLiteral("#000000");

// A black stroke node with the given pen, size and path.
std::unique_ptr<KTypoStrokePath> makeStroke(double penWidth, double width, double height, QPainterPath path)
{
    auto stroke = std::make_unique<KTypoStrokePath>();
    stroke->penWidth = penWidth;
    stroke->width = width;
    stroke->height = height;
    stroke->strokeColor = kBlack;
    stroke->path = std::move(path);
    return stroke;
}

// ---- accents ----

constexpr double kAccentGap = 0.05;     // × S between the base top and the accent
constexpr double kAccentMinWidth = 0.5; // × S: the narrowest a stretched accent gets
constexpr double kAccentMinScale = 0.5;
constexpr double kAccentMaxScale = 100.0;
constexpr double kAccentInkFloor = 0.01; // × S: narrower ink counts as no ink
constexpr double kAccentFallback = 0.5;  // × S: width assumed for an accent without ink
const char16_t kDefaultAccent = u'\u0302';

// Dots, rings, acute, grave, caron and breve keep their own width: stretched
// they would turn into bars.
bool isFixedWidthAccent(QChar c)
{
    switch (c.unicode()) {
    case 0x02D9:
    case 0x00A8:
    case 0x20DB:
    case 0x20DC:
    case 0x030A:
    case 0x00B4:
    case 0x0060:
    case 0x02C7:
    case 0x02D8:
    case 0x030C:
    case 0x0306:
    case 0x0307:
    case 0x0308:
        return true;
    default:
        return false;
    }
}

// The tight ink box of the accent character around its origin. A single
// character is measured by its glyph: shaped as a lone string, a combining mark
// (which most accents are) reports no ink at all, although its glyph has ink,
// above the base and left of the origin.
QRectF accentInk(const QFontMetricsF& metrics, const QString& chr)
{
    return chr.size() == 1 ? metrics.boundingRect(chr.at(0)) : metrics.tightBoundingRect(chr);
}

// ---- bars, boxes, braces ----

constexpr double kBarThickness = 0.05;  // × S, at least 1 pt
constexpr double kBarGap = 0.1;         // × S between the base and the rule
constexpr double kBoxPen = 0.04;        // × S, at least 1 pt
constexpr double kBoxPad = 0.15;        // × S between the frame and the base
constexpr double kBracePen = 0.04;      // × S, at least 1 pt
constexpr double kBraceMinWidth = 0.5;  // × S
constexpr double kBraceHeight = 0.25;   // × S: the brace's own box
constexpr double kBraceBelowGap = 0.08; // × S between the base and a brace under it
constexpr double kBraceSpan = 0.33;     // × S: what a brace adds to the height
const char16_t kBraceTipDown = u'\u23DF';

void addSegment(QPainterPath& path, QPointF from, QPointF to)
{
    path.moveTo(from);
    path.lineTo(to);
}

// A curly brace W wide in a box 0.25 S high, tip down (below the base) or tip up
// (above it): two arms with rounded ends meeting in a pointed middle.
QPainterPath bracePath(double width, double size, bool tipDown)
{
    const double m = width / 2;
    const double a = 0.06 * size;
    const double b = 0.1 * size;
    const double c = 0.15 * size;
    QPainterPath path;
    if (tipDown) {
        path.moveTo(0, 0);
        path.cubicTo(0, c, 0, c, a, c);
        path.lineTo(m - a, c);
        path.cubicTo(m, c, m, c, m, c + b);
        path.cubicTo(m, c, m, c, m + a, c);
        path.lineTo(width - a, c);
        path.cubicTo(width, c, width, c, width, 0);
    } else {
        const double h = kBraceHeight * size;
        path.moveTo(0, h);
        path.cubicTo(0, b, 0, b, a, b);
        path.lineTo(m - a, b);
        path.cubicTo(m, b, m, b, m, 0);
        path.cubicTo(m, b, m, b, m + a, b);
        path.lineTo(width - a, b);
        path.cubicTo(width, b, width, b, width, h);
    }
    return path;
}

} // namespace

KTypoNodePtr layoutAccent(const KLayoutContext& context, const OAccent& accent)
{
    const double size = context.size;
    std::unique_ptr<KTypoLine> base = layoutList(context, accent.e);
    const double w = base->width;
    const double a = base->ascent;
    const double d = base->bottom;
    const QString chr = accent.chr.isEmpty() ? QString(QChar(kDefaultAccent)) : accent.chr;

    QRectF ink = accentInk(context.metrics, chr);
    double inkBottom = ink.y() + ink.height();
    if (!std::isfinite(ink.width()) || !(ink.width() >= kAccentInkFloor * size)) {
        const double half = kAccentFallback * size / 2;
        ink = QRectF(-half, -half, kAccentFallback * size, half);
        inkBottom = 0;
    }

    const double scaleX =
        isFixedWidthAccent(chr.at(0))
            ? 1.0
            : std::min(kAccentMaxScale,
                       std::max(kAccentMinScale, std::max(kAccentMinWidth * size, w) / ink.width()));

    auto glyph = std::make_unique<KTypoGrowGlyph>();
    glyph->text = chr;
    glyph->fontSize = size;
    glyph->fontFamily = context.font.family();
    glyph->growColor = kBlack;
    glyph->scaleX = scaleX;
    setBox(*glyph, ink.width() * scaleX, -ink.y(), inkBottom);

    const double width = std::max(glyph->width, w);
    const double top = -a - kAccentGap * size - glyph->height;
    base->x = (width - w) / 2;
    base->y = -top - a;
    glyph->x = (width - glyph->width) / 2 - ink.x() * scaleX;
    glyph->y = 0;

    auto container = makeContainer(context);
    setBox(*container, width, -top, d);
    container->addChild(std::move(glyph));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutBar(const KLayoutContext& context, const OBar& bar)
{
    const double size = context.size;
    std::unique_ptr<KTypoLine> base = layoutList(context, bar.e);
    const double t = std::max(1.0, kBarThickness * size);
    const double gap = kBarGap * size;

    QPainterPath line;
    addSegment(line, QPointF(0, 0), QPointF(base->width, 0));
    auto rule = makeStroke(t, base->width, t, std::move(line));

    auto container = makeContainer(context);
    const double height = base->height + gap + t;
    if (bar.pos == OPosition::bottom) {
        rule->y = base->height + gap;
        setBox(*container, base->width, base->ascent, height - base->ascent);
    } else {
        base->y = gap + t;
        setBox(*container, base->width, base->ascent + gap + t, base->bottom);
    }
    container->addChild(std::move(rule));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutBorderBox(const KLayoutContext& context, const OBorderBox& box)
{
    const double size = context.size;
    std::unique_ptr<KTypoLine> base = layoutList(context, box.e);
    const double p = std::max(1.0, kBoxPen * size);
    const double pad = kBoxPad * size;
    const double h = p / 2;
    const double width = base->width + 2 * p + 2 * pad;
    const double height = base->height + 2 * p + 2 * pad;
    base->x = pad + p;
    base->y = pad + p;

    // The frame runs clockwise from the top left; strikes follow the sides.
    const QPointF topLeft(h, h);
    const QPointF topRight(width - h, h);
    const QPointF bottomRight(width - h, height - h);
    const QPointF bottomLeft(h, height - h);
    QPainterPath path;
    if (!box.hideTop)
        addSegment(path, topLeft, topRight);
    if (!box.hideRight)
        addSegment(path, topRight, bottomRight);
    if (!box.hideBot)
        addSegment(path, bottomRight, bottomLeft);
    if (!box.hideLeft)
        addSegment(path, bottomLeft, topLeft);
    if (box.strikeH)
        addSegment(path, QPointF(h, height / 2), QPointF(width - h, height / 2));
    if (box.strikeV)
        addSegment(path, QPointF(width / 2, h), QPointF(width / 2, height - h));
    if (box.strikeBLTR)
        addSegment(path, bottomLeft, topRight);
    if (box.strikeTLBR)
        addSegment(path, topLeft, bottomRight);

    const bool anySide = !(box.hideTop && box.hideRight && box.hideBot && box.hideLeft);
    const bool anyStrike = box.strikeH || box.strikeV || box.strikeBLTR || box.strikeTLBR;

    auto container = makeContainer(context);
    const double ascent = base->ascent + pad + p;
    setBox(*container, width, ascent, height - ascent);
    if (anySide || anyStrike)
        container->addChild(makeStroke(p, width, height, std::move(path)));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutGroupChar(const KLayoutContext& context, const OGroupChar& groupChar)
{
    const double size = context.size;
    std::unique_ptr<KTypoLine> base = layoutList(context, groupChar.e);
    const double width = std::max(kBraceMinWidth * size, base->width);
    // Whatever character is asked for, a curly brace is drawn; the character only
    // says which way its tip points.
    const bool tipDown = groupChar.chr.isEmpty() || groupChar.chr.at(0) == QChar(kBraceTipDown);
    auto brace = makeStroke(std::max(1.0, kBracePen * size), width, kBraceHeight * size,
                            bracePath(width, size, tipDown));

    auto container = makeContainer(context);
    const double height = base->height + kBraceSpan * size;
    base->x = (width - base->width) / 2;
    double ascent = base->ascent;
    if (groupChar.pos == OPosition::bottom) {
        brace->y = base->height + kBraceBelowGap * size;
    } else {
        base->y = kBraceSpan * size;
        ascent += kBraceSpan * size;
    }
    setBox(*container, width, ascent, height - ascent);
    container->addChild(std::move(brace));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutPhantom(const KLayoutContext& context, const OPhantom& phantom)
{
    std::unique_ptr<KTypoLine> content = layoutList(context, phantom.e);
    const double width = phantom.zeroWid ? 0.0 : content->width;
    const double ascent = phantom.zeroAsc ? 0.0 : content->ascent;
    const double bottom = phantom.zeroDesc ? 0.0 : content->bottom;
    auto box = makeContainer(context);
    if (phantom.show) {
        content->x = 0;
        content->y = ascent - content->ascent;
        box->addChild(std::move(content));
    }
    setBox(*box, width, ascent, bottom);
    return box;
}
