// Accents, bars, border boxes and horizontal braces around a base.

#include "fence_table_support.h"

#include <gtest/gtest.h>

#include <QPainterPath>
#include <QTransform>

#include <cmath>

namespace {

using namespace fence_test;

constexpr double kEps = 1e-9;

KTypoNodePtr layoutOne(const KLayoutContext& context, KOmmlNodePtr node)
{
    return layoutElement(context, *node);
}

KOmmlNodePtr accentOver(const QString& chr, const QString& base)
{
    OAccent a;
    a.chr = chr;
    if (!base.isEmpty())
        a.e = runs(base);
    return makeOmmlNode(std::move(a));
}

// ---- accents ----

struct AccentCase {
    const char* name;
    QString chr;
    QString base;
    bool stretched;
};
void PrintTo(const AccentCase& c, std::ostream* os)
{
    *os << c.name;
}

class AccentLayout : public ::testing::TestWithParam<AccentCase> {};

TEST_P(AccentLayout, SitsCentredAboveTheBaseAndStretchesUnlessFixedWidth)
{
    const AccentCase& c = GetParam();
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutOne(context, accentOver(c.chr, c.base));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 2u);
    const auto& glyph = static_cast<const KTypoGrowGlyph&>(*node->children[0]);
    const KTypoNode& base = *node->children[1];
    const QString chr = c.chr.isEmpty() ? QStringLiteral("\u0302") : c.chr;
    const AccentInk measured = accentInk(context, chr);
    const QRectF ink = measured.rect;
    const double w = runWidth(context, c.base);

    EXPECT_EQ(glyph.kind, kTypoGrow);
    EXPECT_EQ(glyph.text, chr);
    EXPECT_EQ(glyph.growColor, QStringLiteral("#000000"));
    EXPECT_NEAR(glyph.fontSize, size, kEps);
    EXPECT_EQ(glyph.scale, 1.0);
    EXPECT_EQ(glyph.scaleY, 1.0);
    const double expectedScale =
        c.stretched ? std::min(100.0, std::max(0.5, std::max(0.5 * size, w) / ink.width())) : 1.0;
    EXPECT_NEAR(glyph.scaleX, expectedScale, kEps);
    EXPECT_NEAR(glyph.width, ink.width() * expectedScale, kEps);
    EXPECT_NEAR(glyph.ascent, -ink.y(), kEps);
    EXPECT_NEAR(glyph.bottom, measured.bottom, kEps);

    const double width = std::max(glyph.width, w);
    const double top = -lineAscent(context) - 0.05 * size - (measured.bottom - ink.y());
    EXPECT_NEAR(node->width, width, kEps);
    EXPECT_NEAR(node->ascent, -top, kEps);
    EXPECT_NEAR(node->bottom, context.metrics.descent(), kEps);
    EXPECT_NEAR(base.x, (width - w) / 2, kEps);
    EXPECT_NEAR(base.y, -top - lineAscent(context), kEps);
    EXPECT_NEAR(glyph.x, (width - glyph.width) / 2 - ink.x() * expectedScale, kEps);
    EXPECT_NEAR(glyph.y, 0, kEps);
}

INSTANTIATE_TEST_SUITE_P(
    Characters, AccentLayout,
    ::testing::Values(AccentCase{"HatOverAWideBaseStretches", "\u0302", "abcdef", true},
                      AccentCase{"EmptyCharacterMeansHat", "", "abcdef", true},
                      AccentCase{"TildeStretches", "\u0303", "xyz", true},
                      AccentCase{"ArrowStretches", "\u20D7", "AB", true},
                      AccentCase{"NarrowBaseStretchesToHalfAnEm", "\u0302", "i", true},
                      AccentCase{"DotKeepsItsWidth", "\u0307", "abcdef", false},
                      AccentCase{"DiaeresisKeepsItsWidth", "\u0308", "abcdef", false},
                      AccentCase{"SpacingDotKeepsItsWidth", "\u02D9", "abcdef", false},
                      AccentCase{"SpacingDiaeresisKeepsItsWidth", "\u00A8", "abcdef", false},
                      AccentCase{"RingKeepsItsWidth", "\u030A", "abcdef", false},
                      AccentCase{"AcuteKeepsItsWidth", "\u00B4", "abcdef", false},
                      AccentCase{"GraveKeepsItsWidth", "\u0060", "abcdef", false},
                      AccentCase{"CaronKeepsItsWidth", "\u02C7", "abcdef", false},
                      AccentCase{"CombiningCaronKeepsItsWidth", "\u030C", "abcdef", false},
                      AccentCase{"BreveKeepsItsWidth", "\u02D8", "abcdef", false},
                      AccentCase{"CombiningBreveKeepsItsWidth", "\u0306", "abcdef", false}),
    [](const ::testing::TestParamInfo<AccentCase>& info) { return std::string(info.param.name); });

TEST(AccentLayout, WideBaseHatMatchesTheBaseWidthWhileADotKeepsItsOwn)
{
    const KLayoutContext context = makeLayoutContext(10);
    const double w = runWidth(context, "abcdefgh");
    const KTypoNodePtr hat = layoutOne(context, accentOver("\u0302", "abcdefgh"));
    const KTypoNodePtr dot = layoutOne(context, accentOver("\u0307", "abcdefgh"));
    ASSERT_TRUE(hat && dot);
    EXPECT_NEAR(hat->children[0]->width, w, 1e-6);
    EXPECT_NEAR(dot->children[0]->width, accentInk(context, "\u0307").rect.width(), kEps);
    EXPECT_LT(dot->children[0]->width, w / 4);
}

// What a reader sees: the mark's ink, drawn where the painter draws a stretched
// glyph, lies centred over the base and clear above it, inside the accent's box.
TEST(AccentLayout, CombiningMarksAreDrawnCentredJustAboveTheBase)
{
    const double size = 40;
    const KLayoutContext context = makeLayoutContext(size);
    for (const char* mark : {"\u0302", "\u0303", "\u0304", "\u0307", "\u0308", "\u20D7", "\u030C"}) {
        for (const char* base : {"x", "AB", "wwwwww"}) {
            const KTypoNodePtr node = layoutOne(context, accentOver(QString::fromUtf8(mark), base));
            ASSERT_TRUE(node);
            const auto& glyph = static_cast<const KTypoGrowGlyph&>(*node->children[0]);
            const KTypoNode& e = *node->children[1];
            QPainterPath ink;
            ink.addText(0, 0, context.font, glyph.text);
            const QRectF drawn = QTransform()
                                     .translate(glyph.x, glyph.y + glyph.ascent)
                                     .scale(glyph.scaleX, 1)
                                     .map(ink)
                                     .boundingRect();
            // Within a pixel or two, stretched with the mark: the metrics are hinted, the outline is not.
            EXPECT_NEAR(drawn.center().x(), e.x + e.width / 2, 2.0 * glyph.scaleX) << mark << base;
            EXPECT_GT(drawn.top(), -2.0) << mark << base;
            EXPECT_LT(drawn.bottom(), e.y) << mark << base;
        }
    }
}

TEST(AccentLayout, InklessCharacterFallsBackToAHalfEmBox)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutOne(context, accentOver(" ", "abc"));
    ASSERT_TRUE(node);
    const auto& glyph = static_cast<const KTypoGrowGlyph&>(*node->children[0]);
    const double w = runWidth(context, "abc");
    const double scaleX = std::max(0.5 * size, w) / (0.5 * size);
    EXPECT_NEAR(glyph.scaleX, scaleX, kEps);
    EXPECT_NEAR(glyph.width, 0.5 * size * scaleX, kEps);
    EXPECT_NEAR(glyph.ascent, 0.25 * size, kEps);
    EXPECT_NEAR(glyph.bottom, 0, kEps);
    EXPECT_NEAR(glyph.x, (node->width - glyph.width) / 2 + 0.25 * size * scaleX, kEps);
    EXPECT_NEAR(node->ascent, lineAscent(context) + 0.05 * size + 0.25 * size, kEps);
}

TEST(AccentLayout, EmptyBaseStillCarriesTheAccent)
{
    const KLayoutContext context = makeLayoutContext(12);
    const KTypoNodePtr node = layoutOne(context, accentOver("\u0302", QString()));
    ASSERT_TRUE(node);
    const auto& glyph = static_cast<const KTypoGrowGlyph&>(*node->children[0]);
    const AccentInk measured = accentInk(context, "\u0302");
    const QRectF ink = measured.rect;
    EXPECT_NEAR(glyph.scaleX, std::min(100.0, std::max(0.5, 6.0 / ink.width())), kEps);
    EXPECT_NEAR(node->width, glyph.width, kEps);
    // An empty base has no ascent: the accent rests 0.05 S above the baseline.
    EXPECT_NEAR(node->ascent, 0.6 + measured.bottom - ink.y(), kEps);
}

// ---- bars ----

TEST(BarLayout, RuleAboveOrBelowTheBase)
{
    for (const double size : {10.0, 30.0}) {
        const KLayoutContext context = makeLayoutContext(size);
        const double t = std::max(1.0, 0.05 * size);
        const double w = runWidth(context, "ab");
        for (const OPosition pos : {OPosition::top, OPosition::bottom}) {
            const KTypoNodePtr node = layoutOne(context, makeOmmlNode(OBar{runs("ab"), pos}));
            ASSERT_TRUE(node);
            ASSERT_EQ(node->children.size(), 2u);
            const auto& rule = static_cast<const KTypoStrokePath&>(*node->children[0]);
            const KTypoNode& base = *node->children[1];
            EXPECT_EQ(rule.kind, kTypoStroke);
            EXPECT_NEAR(rule.penWidth, t, kEps);
            EXPECT_NEAR(rule.width, w, kEps);
            EXPECT_NEAR(rule.height, t, kEps);
            EXPECT_EQ(rule.strokeColor, QStringLiteral("#000000"));
            const std::vector<Segment> line = segments(rule.path);
            ASSERT_EQ(line.size(), 1u);
            EXPECT_NEAR(line[0].x1, 0, kEps);
            EXPECT_NEAR(line[0].y1, 0, kEps);
            EXPECT_NEAR(line[0].x2, w, kEps);
            EXPECT_NEAR(line[0].y2, 0, kEps);
            EXPECT_NEAR(node->width, w, kEps);
            EXPECT_NEAR(node->height, lineHeight(context) + 0.1 * size + t, kEps);
            if (pos == OPosition::top) {
                EXPECT_NEAR(rule.y, 0, kEps);
                EXPECT_NEAR(base.y, 0.1 * size + t, kEps);
                EXPECT_NEAR(node->ascent, lineAscent(context) + 0.1 * size + t, kEps);
            } else {
                EXPECT_NEAR(base.y, 0, kEps);
                EXPECT_NEAR(rule.y, lineHeight(context) + 0.1 * size, kEps);
                EXPECT_NEAR(node->ascent, lineAscent(context), kEps);
            }
        }
    }
}

// ---- border boxes ----

enum Side { kTop, kRight, kBottom, kLeft, kStrikeH, kStrikeV, kStrikeBLTR, kStrikeTLBR };

struct BoxCase {
    const char* name;
    bool hideTop, hideBot, hideLeft, hideRight, strikeH, strikeV, strikeBLTR, strikeTLBR;
    std::vector<Side> drawn; // in drawing order; empty: no stroke node at all
};
void PrintTo(const BoxCase& c, std::ostream* os)
{
    *os << c.name;
}

class BorderBoxLayout : public ::testing::TestWithParam<BoxCase> {};

TEST_P(BorderBoxLayout, DrawsTheSidesAndStrikesAskedForAndKeepsItsSize)
{
    const BoxCase& c = GetParam();
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    OBorderBox box;
    box.e = runs("x");
    box.hideTop = c.hideTop;
    box.hideBot = c.hideBot;
    box.hideLeft = c.hideLeft;
    box.hideRight = c.hideRight;
    box.strikeH = c.strikeH;
    box.strikeV = c.strikeV;
    box.strikeBLTR = c.strikeBLTR;
    box.strikeTLBR = c.strikeTLBR;
    const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(box)));
    ASSERT_TRUE(node);

    const double p = std::max(1.0, 0.04 * size);
    const double pad = 0.15 * size;
    const double h = p / 2;
    const double W = runWidth(context, "x") + 2 * p + 2 * pad;
    const double H = lineHeight(context) + 2 * p + 2 * pad;
    EXPECT_NEAR(node->width, W, kEps);
    EXPECT_NEAR(node->height, H, kEps);
    EXPECT_NEAR(node->ascent, lineAscent(context) + pad + p, kEps);
    const KTypoNode& base = *node->children.back();
    EXPECT_NEAR(base.x, pad + p, kEps);
    EXPECT_NEAR(base.y, pad + p, kEps);

    if (c.drawn.empty()) {
        EXPECT_EQ(node->children.size(), 1u);
        return;
    }
    ASSERT_EQ(node->children.size(), 2u);
    const auto& stroke = static_cast<const KTypoStrokePath&>(*node->children[0]);
    EXPECT_EQ(stroke.kind, kTypoStroke);
    EXPECT_NEAR(stroke.penWidth, p, kEps);
    EXPECT_NEAR(stroke.width, W, kEps);
    EXPECT_NEAR(stroke.height, H, kEps);
    EXPECT_NEAR(stroke.x, 0, kEps);
    EXPECT_NEAR(stroke.y, 0, kEps);
    const Segment expected[] = {{h, h, W - h, h},     {W - h, h, W - h, H - h}, {W - h, H - h, h, H - h},
                                {h, H - h, h, h},     {h, H / 2, W - h, H / 2}, {W / 2, h, W / 2, H - h},
                                {h, H - h, W - h, h}, {h, h, W - h, H - h}};
    const std::vector<Segment> drawn = segments(stroke.path);
    ASSERT_EQ(drawn.size(), c.drawn.size());
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        const Segment& e = expected[c.drawn[i]];
        EXPECT_NEAR(drawn[i].x1, e.x1, kEps) << i;
        EXPECT_NEAR(drawn[i].y1, e.y1, kEps) << i;
        EXPECT_NEAR(drawn[i].x2, e.x2, kEps) << i;
        EXPECT_NEAR(drawn[i].y2, e.y2, kEps) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Flags, BorderBoxLayout,
    ::testing::Values(
        BoxCase{"AllSides",
                false,
                false,
                false,
                false,
                false,
                false,
                false,
                false,
                {kTop, kRight, kBottom, kLeft}},
        BoxCase{"HideTop", true, false, false, false, false, false, false, false, {kRight, kBottom, kLeft}},
        BoxCase{"HideBottom", false, true, false, false, false, false, false, false, {kTop, kRight, kLeft}},
        BoxCase{"HideLeft", false, false, true, false, false, false, false, false, {kTop, kRight, kBottom}},
        BoxCase{"HideRight", false, false, false, true, false, false, false, false, {kTop, kBottom, kLeft}},
        BoxCase{"AllHidden", true, true, true, true, false, false, false, false, {}},
        BoxCase{"StrikeHorizontalOnly", true, true, true, true, true, false, false, false, {kStrikeH}},
        BoxCase{"StrikeVerticalOnly", true, true, true, true, false, true, false, false, {kStrikeV}},
        BoxCase{"StrikeUpOnly", true, true, true, true, false, false, true, false, {kStrikeBLTR}},
        BoxCase{"StrikeDownOnly", true, true, true, true, false, false, false, true, {kStrikeTLBR}},
        BoxCase{"CrossedOutFrame",
                false,
                false,
                false,
                false,
                false,
                false,
                true,
                true,
                {kTop, kRight, kBottom, kLeft, kStrikeBLTR, kStrikeTLBR}},
        BoxCase{"EverythingSet",
                false,
                false,
                false,
                false,
                true,
                true,
                true,
                true,
                {kTop, kRight, kBottom, kLeft, kStrikeH, kStrikeV, kStrikeBLTR, kStrikeTLBR}}),
    [](const ::testing::TestParamInfo<BoxCase>& info) { return std::string(info.param.name); });

// ---- group characters ----

struct BraceCase {
    const char* name;
    QString chr;
    OPosition pos;
    bool tipDown;
};
void PrintTo(const BraceCase& c, std::ostream* os)
{
    *os << c.name;
}

class GroupCharLayout : public ::testing::TestWithParam<BraceCase> {};

TEST_P(GroupCharLayout, BraceOrientationFollowsTheCharacterAndPlaceFollowsPos)
{
    const BraceCase& c = GetParam();
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    OGroupChar g;
    g.chr = c.chr;
    g.pos = c.pos;
    g.e = runs("a+b+c");
    const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(g)));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 2u);
    const auto& brace = static_cast<const KTypoStrokePath&>(*node->children[0]);
    const KTypoNode& base = *node->children[1];
    const double w = runWidth(context, "a+b+c");
    const double W = std::max(0.5 * size, w);

    EXPECT_EQ(brace.kind, kTypoStroke);
    EXPECT_NEAR(brace.width, W, kEps);
    EXPECT_NEAR(brace.height, 0.25 * size, kEps);
    EXPECT_NEAR(brace.penWidth, std::max(1.0, 0.04 * size), kEps);
    EXPECT_NEAR(node->width, W, kEps);
    EXPECT_NEAR(node->height, lineHeight(context) + 0.33 * size, kEps);
    EXPECT_NEAR(base.x, (W - w) / 2, kEps);

    const QRectF bounds = brace.path.boundingRect();
    EXPECT_NEAR(bounds.width(), W, kEps);
    EXPECT_NEAR(bounds.height(), 0.25 * size, kEps);
    // The tip: the point in the middle of the brace, at its bottom (tip down) or top (tip up).
    const double tipY = c.tipDown ? 0.25 * size : 0;
    bool hasTip = false;
    for (int i = 0; i < brace.path.elementCount(); ++i) {
        const QPainterPath::Element e = brace.path.elementAt(i);
        hasTip = hasTip || (std::abs(e.x - W / 2) < kEps && std::abs(e.y - tipY) < kEps);
    }
    EXPECT_TRUE(hasTip);
    // The ends point away from the tip.
    const QPointF start = brace.path.elementAt(0);
    EXPECT_NEAR(start.y(), c.tipDown ? 0 : 0.25 * size, kEps);

    if (c.pos == OPosition::bottom) {
        EXPECT_NEAR(base.y, 0, kEps);
        EXPECT_NEAR(brace.y, lineHeight(context) + 0.08 * size, kEps);
        EXPECT_NEAR(node->ascent, lineAscent(context), kEps);
    } else {
        EXPECT_NEAR(brace.y, 0, kEps);
        EXPECT_NEAR(base.y, 0.33 * size, kEps);
        EXPECT_NEAR(node->ascent, lineAscent(context) + 0.33 * size, kEps);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Characters, GroupCharLayout,
    ::testing::Values(BraceCase{"UnderBrace", "\u23DF", OPosition::bottom, true},
                      BraceCase{"OverBrace", "\u23DE", OPosition::top, false},
                      BraceCase{"OverBraceCharacterBelow", "\u23DE", OPosition::bottom, false},
                      BraceCase{"UnderBraceCharacterAbove", "\u23DF", OPosition::top, true},
                      BraceCase{"EmptyCharacterIsTheUnderBrace", "", OPosition::bottom, true},
                      BraceCase{"AnyOtherCharacterPointsUp", "\u2190", OPosition::bottom, false}),
    [](const ::testing::TestParamInfo<BraceCase>& info) { return std::string(info.param.name); });

TEST(GroupCharLayout, NarrowBaseGetsAHalfEmBrace)
{
    const KLayoutContext context = makeLayoutContext(10);
    OGroupChar g;
    g.e = runs("i");
    const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(g)));
    ASSERT_TRUE(node);
    EXPECT_NEAR(node->width, std::max(5.0, runWidth(context, "i")), kEps);
    EXPECT_NEAR(node->children[1]->x, (node->width - runWidth(context, "i")) / 2, kEps);
}

} // namespace
