// Accents, bars, border boxes and horizontal braces around a base.

#include "fence_table_support.h"

#include <gtest/gtest.h>

#include <QPainterPath>

#include <cmath>
#include <map>
#include <string>

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

TEST(AccentLayout, SitsCentredAboveTheBaseAndStretchesUnlessFixedWidth)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const struct {
        QString chr;
        QString base;
        bool stretched;
    } cases[] = {{"\u0302", "abcdef", true}, {"", "abcdef", true},        {"\u20D7", "AB", true},
                 {"\u0302", "i", true},      {"\u0307", "abcdef", false}, {"\u02D9", "abcdef", false},
                 {"\u030C", "abcdef", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(qPrintable(c.chr + c.base));
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
        const double scale =
            c.stretched ? std::min(100.0, std::max(0.5, std::max(0.5 * size, w) / ink.width())) : 1.0;
        EXPECT_NEAR(glyph.scaleX, scale, kEps);
        EXPECT_NEAR(glyph.width, ink.width() * scale, kEps);
        EXPECT_NEAR(glyph.ascent, -ink.y(), kEps);
        const double width = std::max(glyph.width, w);
        const double top = -runAscent(context, c.base) - 0.05 * size - (measured.bottom - ink.y());
        EXPECT_NEAR(node->width, width, kEps);
        EXPECT_NEAR(node->ascent, -top, kEps);
        EXPECT_NEAR(base.x, (width - w) / 2, kEps);
        EXPECT_NEAR(base.y, -top - runAscent(context, c.base), kEps);
        EXPECT_NEAR(glyph.x, (width - glyph.width) / 2 - ink.x() * scale, kEps);
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
    EXPECT_NEAR(node->ascent, runAscent(context, "abc") + 0.05 * size + 0.25 * size, kEps);
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
            EXPECT_TRUE(line[0].x1 == 0 && line[0].y1 == 0 && line[0].x2 == w && line[0].y2 == 0);
            EXPECT_NEAR(node->width, w, kEps);
            EXPECT_NEAR(node->height, runHeight(context, "ab") + 0.1 * size + t, kEps);
            const bool above = pos == OPosition::top;
            EXPECT_NEAR(rule.y, above ? 0 : runHeight(context, "ab") + 0.1 * size, kEps);
            EXPECT_NEAR(base.y, above ? 0.1 * size + t : 0, kEps);
            EXPECT_NEAR(node->ascent, runAscent(context, "ab") + (above ? 0.1 * size + t : 0), kEps);
        }
    }
}

// ---- border boxes ----

TEST(BorderBoxLayout, DrawsTheSidesAndStrikesAskedForAndKeepsItsSize)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double p = std::max(1.0, 0.04 * size);
    const double pad = 0.15 * size;
    const double h = p / 2;
    const double W = runWidth(context, "x") + 2 * p + 2 * pad;
    const double H = runHeight(context, "x") + 2 * p + 2 * pad;
    // Sides: Top, Right, Bottom, Left; strikes: Horizontal, Vertical, Up (bottom-left to top-right), Down.
    const std::map<char, Segment> segment = {{'T', {h, h, W - h, h}},         {'R', {W - h, h, W - h, H - h}},
                                             {'B', {W - h, H - h, h, H - h}}, {'L', {h, H - h, h, h}},
                                             {'H', {h, H / 2, W - h, H / 2}}, {'V', {W / 2, h, W / 2, H - h}},
                                             {'U', {h, H - h, W - h, h}},     {'D', {h, h, W - h, H - h}}};
    // flags: lower case hides a side, upper case sets a strike; drawn: in drawing order.
    const std::pair<const char*, const char*> cases[] = {
        {"", "TRBL"},   {"t", "RBL"},   {"b", "TRL"},     {"l", "TRB"},
        {"r", "TBL"},   {"tblr", ""},   {"tblrH", "H"},   {"tblrV", "V"},
        {"tblrU", "U"}, {"tblrD", "D"}, {"UD", "TRBLUD"}, {"HVUD", "TRBLHVUD"}};
    for (const auto& [flags, drawnSides] : cases) {
        SCOPED_TRACE(flags);
        const std::string f = flags;
        auto has = [&](char c) { return f.find(c) != std::string::npos; };
        OBorderBox box;
        box.e = runs("x");
        box.hideTop = has('t');
        box.hideBot = has('b');
        box.hideLeft = has('l');
        box.hideRight = has('r');
        box.strikeH = has('H');
        box.strikeV = has('V');
        box.strikeBLTR = has('U');
        box.strikeTLBR = has('D');
        const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(box)));
        ASSERT_TRUE(node);
        EXPECT_NEAR(node->width, W, kEps);
        EXPECT_NEAR(node->height, H, kEps);
        EXPECT_NEAR(node->ascent, runAscent(context, "x") + pad + p, kEps);
        EXPECT_NEAR(node->children.back()->x, pad + p, kEps);
        EXPECT_NEAR(node->children.back()->y, pad + p, kEps);
        const std::string expected = drawnSides;
        ASSERT_EQ(node->children.size(), expected.empty() ? 1u : 2u);
        if (expected.empty())
            continue;
        const auto& stroke = static_cast<const KTypoStrokePath&>(*node->children[0]);
        EXPECT_EQ(stroke.kind, kTypoStroke);
        EXPECT_NEAR(stroke.penWidth, p, kEps);
        EXPECT_NEAR(stroke.width, W, kEps);
        EXPECT_NEAR(stroke.height, H, kEps);
        const std::vector<Segment> drawn = segments(stroke.path);
        ASSERT_EQ(drawn.size(), expected.size());
        for (std::size_t i = 0; i < drawn.size(); ++i) {
            const Segment& e = segment.at(expected[i]);
            EXPECT_NEAR(drawn[i].x1, e.x1, kEps) << i;
            EXPECT_NEAR(drawn[i].y1, e.y1, kEps) << i;
            EXPECT_NEAR(drawn[i].x2, e.x2, kEps) << i;
            EXPECT_NEAR(drawn[i].y2, e.y2, kEps) << i;
        }
    }
}

// ---- group characters ----

TEST(GroupCharLayout, BraceOrientationFollowsTheCharacterAndPlaceFollowsPos)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const struct {
        QString chr;
        OPosition pos;
        bool tipDown;
        QString base;
    } cases[] = {{"\u23DF", OPosition::bottom, true, "a+b+c"},
                 {"\u23DE", OPosition::top, false, "a+b+c"},
                 {"\u23DE", OPosition::bottom, false, "a+b+c"},
                 {"\u23DF", OPosition::top, true, "a+b+c"},
                 {"", OPosition::bottom, true, "a+b+c"},
                 {"\u2190", OPosition::bottom, false, "a+b+c"},
                 {"", OPosition::bottom, true, "i"}}; // a narrow base gets a half-em brace
    for (const auto& c : cases) {
        SCOPED_TRACE(qPrintable(c.chr + c.base));
        OGroupChar g;
        g.chr = c.chr;
        g.pos = c.pos;
        g.e = runs(c.base);
        const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(g)));
        ASSERT_TRUE(node);
        ASSERT_EQ(node->children.size(), 2u);
        const auto& brace = static_cast<const KTypoStrokePath&>(*node->children[0]);
        const KTypoNode& base = *node->children[1];
        const double w = runWidth(context, c.base);
        const double W = std::max(0.5 * size, w);
        EXPECT_EQ(brace.kind, kTypoStroke);
        EXPECT_NEAR(brace.width, W, kEps);
        EXPECT_NEAR(brace.height, 0.25 * size, kEps);
        EXPECT_NEAR(brace.penWidth, std::max(1.0, 0.04 * size), kEps);
        EXPECT_NEAR(node->width, W, kEps);
        EXPECT_NEAR(node->height, runHeight(context, c.base) + 0.33 * size, kEps);
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
        EXPECT_NEAR(brace.path.elementAt(0).y, c.tipDown ? 0 : 0.25 * size, kEps);
        const bool below = c.pos == OPosition::bottom;
        EXPECT_NEAR(base.y, below ? 0 : 0.33 * size, kEps);
        EXPECT_NEAR(brace.y, below ? runHeight(context, c.base) + 0.08 * size : 0, kEps);
        EXPECT_NEAR(node->ascent, runAscent(context, c.base) + (below ? 0 : 0.33 * size), kEps);
    }
}

} // namespace
