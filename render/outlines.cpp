#include "render/outlines.h"

#include <QRectF>
#include <QTransform>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <unordered_map>

namespace outlines {
namespace {

enum KOutlineOp { moveTo, lineTo, quadTo, cubicTo, closeSubpath };

// One drawing command with up to three points; unused coordinates stay 0.
struct KOutlineCommand {
    KOutlineOp op;
    double x1 = 0, y1 = 0, x2 = 0, y2 = 0, x3 = 0, y3 = 0;
};

#include "render/operator_outlines.inc"

// A run of commands drawn shifted right by xOffset design units.
struct KOutlinePart {
    const KOutlineCommand* commands;
    std::size_t count;
    double xOffset;
};

template <std::size_t N> KOutlinePart part(const KOutlineCommand (&commands)[N], double xOffset = 0)
{
    return {commands, N, xOffset};
}

// The single, double and triple integrals repeat one sign this far apart.
constexpr double kIntegralStep = 350.0;

void appendPart(QPainterPath& path, const KOutlinePart& p)
{
    const double dx = p.xOffset;
    for (std::size_t i = 0; i < p.count; ++i) {
        const KOutlineCommand& c = p.commands[i];
        switch (c.op) {
        case moveTo:
            path.moveTo(c.x1 + dx, c.y1);
            break;
        case lineTo:
            path.lineTo(c.x1 + dx, c.y1);
            break;
        case quadTo:
            path.quadTo(c.x1 + dx, c.y1, c.x2 + dx, c.y2);
            break;
        case cubicTo:
            path.cubicTo(c.x1 + dx, c.y1, c.x2 + dx, c.y2, c.x3 + dx, c.y3);
            break;
        case closeSubpath:
            path.closeSubpath();
            break;
        }
    }
}

// Moves the outline's bounding box to the origin and scales it to kOutlineHeight; a degenerate
// outline keeps its path and gets width and height 0.
KOperatorOutline normalised(QPainterPath path)
{
    KOperatorOutline result;
    const QRectF box = path.boundingRect();
    if (box.width() > 0 && box.height() > 0) {
        path.translate(-box.left(), -box.top());
        const double scale = kOutlineHeight / box.height();
        path = QTransform::fromScale(scale, scale).map(path);
    }
    const QRectF scaled = path.boundingRect();
    if (scaled.width() > 0 && scaled.height() > 0) {
        result.width = scaled.width();
        result.height = scaled.height();
    }
    // Fill the bounds caches now: copies handed out share this path's data, and a lazily
    // filled cache would otherwise be written from several threads at once.
    path.controlPointRect();
    result.path = path;
    return result;
}

KOperatorOutline buildOutline(std::initializer_list<KOutlinePart> parts)
{
    QPainterPath path;
    for (const KOutlinePart& p : parts)
        appendPart(path, p);
    return normalised(path);
}

using KOutlineTable = std::unordered_map<char16_t, KOperatorOutline>;

const KOutlineTable& outlineTable()
{
    static const KOutlineTable table = [] {
        const double s1 = kIntegralStep;
        const double s2 = 2 * kIntegralStep;
        KOutlineTable t;
        t[u'\u220F'] = buildOutline({part(kProductSign)});
        t[u'\u2210'] = buildOutline({part(kCoproductSign)});
        t[u'\u2211'] = buildOutline({part(kSummationSign)});
        t[u'\u222B'] = buildOutline({part(kIntegralSign)});
        t[u'\u222C'] = buildOutline({part(kIntegralSign), part(kIntegralSign, s1)});
        t[u'\u222D'] = buildOutline({part(kIntegralSign), part(kIntegralSign, s1), part(kIntegralSign, s2)});
        t[u'\u222E'] = buildOutline({part(kIntegralSign), part(kContourRing)});
        t[u'\u222F'] = buildOutline({part(kIntegralSign), part(kIntegralSign, s1), part(kSurfaceRing)});
        t[u'\u2230'] = buildOutline(
            {part(kIntegralSign), part(kIntegralSign, s1), part(kIntegralSign, s2), part(kVolumeRing)});
        t[u'\u22C0'] = buildOutline({part(kWedgeSign)});
        t[u'\u22C1'] = buildOutline({part(kVeeSign)});
        t[u'\u22C2'] = buildOutline({part(kCapSign)});
        t[u'\u22C3'] = buildOutline({part(kCupSign)});
        t[u'\u2A06'] = buildOutline({part(kSquareCupSign)});
        t[u'\u2A00'] = buildOutline({part(kCircleRing), part(kCircledDotCentre)});
        t[u'\u2A01'] = buildOutline({part(kCircleRing), part(kCircledPlusCross)});
        t[u'\u2A02'] = buildOutline({part(kCircleRing), part(kCircledTimesCross)});
        return t;
    }();
    return table;
}

// Delimiter shapes: open strokes in a box widthFactor x H wide and H high, y down from the top.

QPainterPath polyline(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    bool first = true;
    for (const QPointF& p : points) {
        if (first)
            path.moveTo(p);
        else
            path.lineTo(p);
        first = false;
    }
    return path;
}

// The mirror image of a shape about the vertical middle of its box of width w.
QPainterPath mirrored(const QPainterPath& path, double w)
{
    return QTransform(-1, 0, 0, 1, w, 0).map(path);
}

QPainterPath leftParen(double h)
{
    QPainterPath p;
    p.moveTo(0.15 * h, 0);
    p.cubicTo(0, 0.25 * h, 0, 0.75 * h, 0.15 * h, h);
    return p;
}

QPainterPath rightParen(double h)
{
    QPainterPath p;
    p.moveTo(0, 0);
    p.cubicTo(0.15 * h, 0.25 * h, 0.15 * h, 0.75 * h, 0, h);
    return p;
}

QPainterPath leftBrace(double h)
{
    const double a = 0.06 * h;
    const double w = 0.12 * h;
    QPainterPath p;
    p.moveTo(w, 0);
    p.cubicTo(a, 0, a, a, a, a);
    p.lineTo(a, 0.44 * h);
    p.cubicTo(a, 0.5 * h, 0, 0.5 * h, 0, 0.5 * h);
    p.cubicTo(a, 0.5 * h, a, 0.5 * h, a, 0.56 * h);
    p.lineTo(a, 0.94 * h);
    p.cubicTo(a, h, w, h, w, h);
    return p;
}

QPainterPath rightBrace(double h)
{
    return mirrored(leftBrace(h), 0.12 * h);
}

QPainterPath leftWhiteBracket(double h)
{
    QPainterPath p = polyline({{0.12 * h, 0}, {0, 0}, {0, h}, {0.12 * h, h}});
    p.moveTo(0.06 * h, 0);
    p.lineTo(0.06 * h, h);
    return p;
}

QPainterPath rightWhiteBracket(double h)
{
    return mirrored(leftWhiteBracket(h), 0.12 * h);
}

QPainterPath doubleBar(double h)
{
    QPainterPath p = polyline({{0.03 * h, 0}, {0.03 * h, h}});
    p.moveTo(0.17 * h, 0);
    p.lineTo(0.17 * h, h);
    return p;
}

struct KDelimiterBuilder {
    double widthFactor;
    QPainterPath (*build)(double h);
};

using KDelimiterTable = std::unordered_map<char16_t, KDelimiterBuilder>;

const KDelimiterTable& delimiterTable()
{
    static const KDelimiterTable table = {
        {u'(', {0.15, leftParen}},
        {u')', {0.15, rightParen}},
        {u'[',
         {0.1,
          [](double h) {
              return polyline({{0.1 * h, 0}, {0, 0}, {0, h}, {0.1 * h, h}});
          }}},
        {u']',
         {0.1,
          [](double h) {
              return polyline({{0, 0}, {0.1 * h, 0}, {0.1 * h, h}, {0, h}});
          }}},
        {u'{', {0.12, leftBrace}},
        {u'}', {0.12, rightBrace}},
        {u'|',
         {0.03,
          [](double h) {
              return polyline({{0.015 * h, 0}, {0.015 * h, h}});
          }}},
        {u'/',
         {0.25,
          [](double h) {
              return polyline({{0, h}, {0.25 * h, 0}});
          }}},
        {u'\\',
         {0.25,
          [](double h) {
              return polyline({{0, 0}, {0.25 * h, h}});
          }}},
        {u'\u2016', {0.2, doubleBar}},
        {u'\u27E8',
         {0.12,
          [](double h) {
              return polyline({{0.12 * h, 0}, {0, 0.5 * h}, {0.12 * h, h}});
          }}},
        {u'\u27E9',
         {0.12,
          [](double h) {
              return polyline({{0, 0}, {0.12 * h, 0.5 * h}, {0, h}});
          }}},
        {u'\u230A',
         {0.1,
          [](double h) {
              return polyline({{0.1 * h, h}, {0, h}, {0, 0}});
          }}},
        {u'\u230B',
         {0.1,
          [](double h) {
              return polyline({{0, h}, {0.1 * h, h}, {0.1 * h, 0}});
          }}},
        {u'\u2308',
         {0.1,
          [](double h) {
              return polyline({{0.1 * h, 0}, {0, 0}, {0, h}});
          }}},
        {u'\u2309',
         {0.1,
          [](double h) {
              return polyline({{0, 0}, {0.1 * h, 0}, {0.1 * h, h}});
          }}},
        {u'\u27E6', {0.12, leftWhiteBracket}},
        {u'\u27E7', {0.12, rightWhiteBracket}},
    };
    return table;
}

} // namespace

bool hasOutline(char16_t c)
{
    return outlineTable().count(c) != 0;
}

KOperatorOutline outline(char16_t c)
{
    const KOutlineTable& table = outlineTable();
    const auto it = table.find(c);
    return it == table.end() ? KOperatorOutline() : it->second;
}

bool hasDelimiterBuilder(char16_t c)
{
    return delimiterTable().count(c) != 0;
}

KBuiltDelimiter buildDelimiter(double height, char16_t c)
{
    const KDelimiterTable& table = delimiterTable();
    const auto it = table.find(c);
    // A height that is not a number would only give a path of invalid points.
    if (it == table.end() || !std::isfinite(height))
        return {};
    KBuiltDelimiter result;
    result.path = it->second.build(height);
    result.width = it->second.widthFactor * height;
    result.height = height;
    return result;
}

} // namespace outlines
