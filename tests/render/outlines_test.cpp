#include "render/outlines.h"

#include <gtest/gtest.h>

#include <QPainterPath>
#include <QRectF>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using outlines::buildDelimiter;
using outlines::hasDelimiterBuilder;
using outlines::hasOutline;
using outlines::kOutlineHeight;
using outlines::outline;

constexpr double kTolerance = 1e-9;

const char16_t kOperators[] = {u'\u220F', u'\u2210', u'\u2211', u'\u222B', u'\u222C', u'\u222D',
                               u'\u222E', u'\u222F', u'\u2230', u'\u22C0', u'\u22C1', u'\u22C2',
                               u'\u22C3', u'\u2A06', u'\u2A00', u'\u2A01', u'\u2A02'};

// A path as the flat list of its elements: type, x, y for each.
std::vector<double> elements(const QPainterPath& path)
{
    std::vector<double> out;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element e = path.elementAt(i);
        out.insert(out.end(), {double(e.type), e.x, e.y});
    }
    return out;
}

TEST(OperatorOutlines, EveryOperatorIsNormalisedTo120HighAtTheOrigin)
{
    for (char16_t c : kOperators) {
        SCOPED_TRACE(int(c));
        ASSERT_TRUE(hasOutline(c));
        const outlines::KOperatorOutline o = outline(c);
        EXPECT_DOUBLE_EQ(o.height, kOutlineHeight);
        EXPECT_GT(o.width, 0.0);
        const QRectF box = o.path.boundingRect();
        EXPECT_NEAR(box.left(), 0.0, kTolerance);
        EXPECT_NEAR(box.top(), 0.0, kTolerance);
        EXPECT_NEAR(box.height(), kOutlineHeight, kTolerance);
        EXPECT_NEAR(box.width(), o.width, kTolerance);
    }
}

TEST(OperatorOutlines, DisplayOperatorsHaveDisplayProportions)
{
    struct Case {
        char16_t c;
        double minRatio, maxRatio; // width / height
    };
    const Case cases[] = {
        {u'\u220F', 0.6, 1.0},   {u'\u2211', 0.6, 1.0}, {u'\u222B', 0.2, 0.5},
        {u'\u2A01', 0.95, 1.05}, {u'\u22C3', 0.4, 0.8},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(int(k.c));
        const double ratio = outline(k.c).width / kOutlineHeight;
        EXPECT_GE(ratio, k.minRatio);
        EXPECT_LE(ratio, k.maxRatio);
    }
}

TEST(OperatorOutlines, MultipleIntegralsRepeatTheSign350UnitsApart)
{
    // The integral sign spans y -982 to 822 in design units.
    const double designHeight = 1804.0;
    const double step = 350.0 * kOutlineHeight / designHeight;
    const double single = outline(u'\u222B').width;
    EXPECT_NEAR(outline(u'\u222C').width - single, step, kTolerance);
    EXPECT_NEAR(outline(u'\u222D').width - single, 2 * step, kTolerance);
    // The rings of the contour integrals stay within the signs they surround.
    EXPECT_NEAR(outline(u'\u222E').width, single, kTolerance);
    EXPECT_NEAR(outline(u'\u222F').width, single + step, kTolerance);
    EXPECT_NEAR(outline(u'\u2230').width, single + 2 * step, kTolerance);
}

TEST(OperatorOutlines, RingsLeaveTheirHolesUnfilledUnderTheWindingRule)
{
    struct Case {
        char16_t c;
        QPointF point;
        bool filled;
    };
    // The circled operators are 1400 units across, centred in their 120-unit box.
    const double unit = kOutlineHeight / 1400.0;
    const QPointF centre(60, 60);
    const Case cases[] = {
        {u'\u2A00', centre, true},                           // the dot
        {u'\u2A00', centre + QPointF(400 * unit, 0), false}, // between dot and circle
        {u'\u2A00', centre + QPointF(665 * unit, 0), true},  // on the circle
        {u'\u2A01', centre + QPointF(400 * unit, 0), true},  // on the bar of the cross
        {u'\u2A01', centre + QPointF(300 * unit, 300 * unit), false},
        {u'\u2A02', centre + QPointF(300 * unit, 300 * unit), true},
        {u'\u2A02', centre + QPointF(400 * unit, 0), false},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(int(k.c));
        QPainterPath path = outline(k.c).path;
        path.setFillRule(Qt::WindingFill);
        EXPECT_EQ(path.contains(k.point), k.filled) << k.point.x() << "," << k.point.y();
    }
}

TEST(DelimiterBuilders, PathsHaveTheExactPoints)
{
    const double M = QPainterPath::MoveToElement;
    const double L = QPainterPath::LineToElement;
    const double C = QPainterPath::CurveToElement;
    const double D = QPainterPath::CurveToDataElement;
    struct Case {
        char16_t c;
        std::vector<double> expected; // type, x, y per element, at height 100
    };
    // clang-format off
    const Case cases[] = {
        {u'[', {M, 10, 0, L, 0, 0, L, 0, 100, L, 10, 100}},
        {u'(', {M, 15, 0, C, 0, 25, D, 0, 75, D, 15, 100}},
        {u'{', {M, 12, 0,
                C, 6, 0, D, 6, 6, D, 6, 6,
                L, 6, 44,
                C, 6, 50, D, 0, 50, D, 0, 50,
                C, 6, 50, D, 6, 50, D, 6, 56,
                L, 6, 94,
                C, 6, 100, D, 12, 100, D, 12, 100}},
        {u'\u2016', {M, 3, 0, L, 3, 100, M, 17, 0, L, 17, 100}},
        {u'\u27E6', {M, 12, 0, L, 0, 0, L, 0, 100, L, 12, 100, M, 6, 0, L, 6, 100}},
        {u'\u27E8', {M, 12, 0, L, 0, 50, L, 12, 100}},
        {u'\u230A', {M, 10, 100, L, 0, 100, L, 0, 0}},
    };
    // clang-format on
    for (const Case& k : cases) {
        SCOPED_TRACE(int(k.c));
        const std::vector<double> actual = elements(buildDelimiter(100, k.c).path);
        ASSERT_EQ(actual.size(), k.expected.size());
        for (std::size_t i = 0; i < actual.size(); ++i)
            EXPECT_NEAR(actual[i], k.expected[i], kTolerance) << "at " << i;
    }
}

// Each closing delimiter is its opening one mirrored within the same width.
TEST(DelimiterBuilders, ClosingShapesMirrorTheOpeningOnes)
{
    const std::pair<char16_t, char16_t> pairs[] = {
        {u'(', u')'},           {u'[', u']'},           {u'{', u'}'},          {u'\u27E8', u'\u27E9'},
        {u'\u230A', u'\u230B'}, {u'\u2308', u'\u2309'}, {u'\u27E6', u'\u27E7'}};
    for (const auto& [open, close] : pairs) {
        SCOPED_TRACE(int(close));
        const outlines::KBuiltDelimiter o = buildDelimiter(100, open), c = buildDelimiter(100, close);
        EXPECT_DOUBLE_EQ(c.width, o.width);
        std::vector<double> mirrored = elements(o.path);
        for (std::size_t i = 1; i < mirrored.size(); i += 3)
            mirrored[i] = o.width - mirrored[i];
        EXPECT_EQ(elements(c.path), mirrored);
    }
}

TEST(OutlineTables, CharactersOutsideBothTablesHaveNeither)
{
    const char16_t outside[] = {u'a', u'\u27EA', u'\u2A0C', u'\u2212', u'\0', char16_t(0xD835), u'\uFFFF'};
    for (char16_t c : outside) {
        SCOPED_TRACE(int(c));
        EXPECT_FALSE(hasOutline(c));
        EXPECT_FALSE(hasDelimiterBuilder(c));
        EXPECT_TRUE(outline(c).path.isEmpty() && outline(c).width == 0);
        EXPECT_TRUE(buildDelimiter(50, c).path.isEmpty() && buildDelimiter(50, c).width == 0);
    }
}

TEST(DelimiterBuilders, NonFiniteHeightBuildsNothing)
{
    const double bad[] = {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    for (double h : bad) {
        const outlines::KBuiltDelimiter b = buildDelimiter(h, u'{');
        EXPECT_TRUE(b.path.isEmpty() && b.width == 0 && b.height == 0);
    }
}

} // namespace
