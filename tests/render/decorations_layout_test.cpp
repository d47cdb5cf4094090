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

// Where a glyph of the laid-out tree lies, relative to the root: left edge and baseline.
struct PlacedGlyph {
    const KTypoGlyph* glyph = nullptr;
    double x = 0;
    double baseline = 0;
};

void collectGlyphs(const KTypoNode& node, double x, double y, std::vector<PlacedGlyph>& out)
{
    x += node.x;
    y += node.y;
    if (node.kind == kTypoGlyph)
        out.push_back(PlacedGlyph{static_cast<const KTypoGlyph*>(&node), x, y + node.ascent});
    for (const KTypoNodePtr& child : node.children)
        collectGlyphs(*child, x, y, out);
}

const KMathGlyphInfo& infoOf(const KTypoGlyph& glyph)
{
    return KMathFont::instance().info(KMathGlyph{glyph.mathFace, glyph.glyphIndex});
}

TEST(AccentLayout, CentredOnTheLettersAttachmentPointAndRaisedForTallLetters)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double accentBase = KMathFont::instance().constant(HB_OT_MATH_CONSTANT_ACCENT_BASE_HEIGHT) * size;
    for (const char* letter : {"x", "f", "A", "l"}) {
        SCOPED_TRACE(letter);
        const KTypoNodePtr node = layoutOne(context, accentOver(QStringLiteral("\u0302"), letter));
        ASSERT_TRUE(node);
        std::vector<PlacedGlyph> glyphs;
        collectGlyphs(*node, 0, 0, glyphs);
        ASSERT_EQ(glyphs.size(), 2u);
        const PlacedGlyph& mark = glyphs[0];
        const PlacedGlyph& base = glyphs[1];
        EXPECT_EQ(mark.glyph->text, QStringLiteral("\u0302"));
        EXPECT_EQ(base.glyph->italic, 1);
        // The mark's ink is centred on the attachment point the font gives the italic letter.
        const double inkCentre = infoOf(*mark.glyph).outline.boundingRect().center().x() * size;
        EXPECT_NEAR(mark.x + inkCentre, base.x + infoOf(*base.glyph).topAccent * size, 1e-6);
        // Letters up to the accent base height leave the mark where the font put it; taller ones lift it.
        const double lift = std::max(0.0, base.glyph->ascent - accentBase);
        EXPECT_NEAR(base.baseline - mark.baseline, lift, 1e-6);
        EXPECT_NEAR(node->ascent, std::max(base.glyph->ascent, mark.glyph->ascent + lift), 1e-6);
    }
    // An italic letter's attachment point lies right of its middle: the accent is skewed.
    const KMathGlyph f = KMathFont::instance().glyph(U'\U0001D453');
    EXPECT_GT(KMathFont::instance().info(f).topAccent, KMathFont::instance().info(f).advance / 2);
}

TEST(AccentLayout, WideAccentsTakeTheWidestFormThatFitsAndDotsKeepTheirs)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double w = runWidth(context, "abcdef");
    for (const char* chr : {"\u0302", "\u0303", "\u0307"}) {
        SCOPED_TRACE(chr);
        const KTypoNodePtr node = layoutOne(context, accentOver(QString::fromUtf8(chr), "abcdef"));
        ASSERT_TRUE(node);
        std::vector<PlacedGlyph> glyphs;
        collectGlyphs(*node, 0, 0, glyphs);
        ASSERT_EQ(glyphs.size(), 7u);
        const KMathFont& font = KMathFont::instance();
        const KMathGlyph nominal = font.glyph(QString::fromUtf8(chr).toUcs4().front());
        const auto variants = font.variants(nominal, false);
        double expected = font.info(nominal).advance * size;
        KMathGlyph chosen = nominal;
        if (QString::fromUtf8(chr) != QStringLiteral("\u0307")) {
            for (const auto& [variant, advance] : variants) {
                if (advance * size > w)
                    break;
                chosen = variant;
                expected = advance * size;
            }
        }
        EXPECT_EQ(glyphs[0].glyph->glyphIndex, chosen.index);
        EXPECT_LE(expected, std::max(w, font.info(nominal).advance * size) + 1e-6);
        EXPECT_NEAR(glyphs[0].glyph->width, font.info(chosen).advance * size, 1e-6);
        // Centred over the middle of a base of several letters.
        const double inkCentre = infoOf(*glyphs[0].glyph).outline.boundingRect().center().x() * size;
        EXPECT_NEAR(glyphs[0].x + inkCentre, w / 2, 1e-6);
    }
}

TEST(AccentLayout, EmptyBaseStillCarriesTheAccent)
{
    const KLayoutContext context = makeLayoutContext(12);
    const KTypoNodePtr node = layoutOne(context, accentOver("\u0302", QString()));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 2u);
    EXPECT_EQ(node->children[0]->kind, kTypoGlyph);
    EXPECT_GT(node->ascent, 0);
}

// ---- bars ----

TEST(BarLayout, RulesOfTheFontsThicknessAndGapAboveOrBelowTheBase)
{
    const KMathFont& font = KMathFont::instance();
    for (const double size : {10.0, 30.0}) {
        const KLayoutContext context = makeLayoutContext(size);
        auto c = [&](hb_ot_math_constant_t constant) { return font.constant(constant) * size; };
        const double w = runWidth(context, "ab");
        for (const OPosition pos : {OPosition::top, OPosition::bottom}) {
            const KTypoNodePtr node = layoutOne(context, makeOmmlNode(OBar{runs("ab"), pos}));
            ASSERT_TRUE(node);
            ASSERT_EQ(node->children.size(), 2u);
            const auto& rule = static_cast<const KTypoStrokePath&>(*node->children[0]);
            const KTypoNode& base = *node->children[1];
            EXPECT_EQ(rule.kind, kTypoStroke);
            EXPECT_TRUE(rule.path.isEmpty());
            EXPECT_NEAR(rule.width, w, kEps);
            EXPECT_EQ(rule.strokeColor, QStringLiteral("#000000"));
            EXPECT_NEAR(node->width, w, kEps);
            if (pos == OPosition::top) {
                const double t = c(HB_OT_MATH_CONSTANT_OVERBAR_RULE_THICKNESS);
                EXPECT_NEAR(rule.height, t, kEps);
                EXPECT_NEAR(rule.y, c(HB_OT_MATH_CONSTANT_OVERBAR_EXTRA_ASCENDER), kEps);
                EXPECT_NEAR(base.y - (rule.y + t), c(HB_OT_MATH_CONSTANT_OVERBAR_VERTICAL_GAP), kEps);
                EXPECT_NEAR(node->bottom, base.bottom, kEps);
            } else {
                const double t = c(HB_OT_MATH_CONSTANT_UNDERBAR_RULE_THICKNESS);
                EXPECT_NEAR(rule.height, t, kEps);
                EXPECT_NEAR(rule.y - base.height, c(HB_OT_MATH_CONSTANT_UNDERBAR_VERTICAL_GAP), kEps);
                EXPECT_NEAR(node->height - (rule.y + t), c(HB_OT_MATH_CONSTANT_UNDERBAR_EXTRA_DESCENDER), kEps);
                EXPECT_NEAR(node->ascent, base.ascent, kEps);
            }
        }
    }
}

// ---- border boxes ----

TEST(BorderBoxLayout, DrawsTheSidesAndStrikesAskedForAndKeepsItsSize)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double p = 0.04 * size;
    const double h = p / 2;
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
        // A frame stands a padding away from its content; strikes alone cross the content's box.
        const bool framed = !(has('t') && has('b') && has('l') && has('r'));
        const double pad = framed ? 0.3 * size + p : 0.0;
        const double W = runWidth(context, "x") + 2 * pad;
        const double H = runHeight(context, "x") + 2 * pad;
        // Sides: Top, Right, Bottom, Left; strikes: Horizontal, Vertical, Up (bottom-left to top-right), Down.
        const std::map<char, Segment> segment = {{'T', {h, h, W - h, h}},         {'R', {W - h, h, W - h, H - h}},
                                                 {'B', {W - h, H - h, h, H - h}}, {'L', {h, H - h, h, h}},
                                                 {'H', {0, H / 2, W, H / 2}},     {'V', {W / 2, 0, W / 2, H}},
                                                 {'U', {0, H, W, 0}},             {'D', {0, 0, W, H}}};
        const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(box)));
        ASSERT_TRUE(node);
        EXPECT_NEAR(node->width, W, kEps);
        EXPECT_NEAR(node->height, H, kEps);
        EXPECT_NEAR(node->ascent, runAscent(context, "x") + pad, kEps);
        EXPECT_NEAR(node->children.back()->x, pad, kEps);
        EXPECT_NEAR(node->children.back()->y, pad, kEps);
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

TEST(GroupCharLayout, BracesSpanTheBaseAKernAwayOnTheSidePosNames)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double kern = 0.3 * size;
    const struct {
        QString chr;
        OPosition pos;
        QString base;
    } cases[] = {{"\u23DF", OPosition::bottom, "a+b+c"}, {"\u23DE", OPosition::top, "a+b+c"},
                 {"", OPosition::bottom, "a+b+c"},       {"\u23B4", OPosition::top, "xyz"},
                 {"\u23DF", OPosition::bottom, "i"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(qPrintable(c.chr + c.base));
        OGroupChar g;
        g.chr = c.chr;
        g.pos = c.pos;
        g.e = runs(c.base);
        const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(g)));
        ASSERT_TRUE(node);
        ASSERT_EQ(node->children.size(), 2u);
        const KTypoNode& brace = *node->children[0];
        const KTypoNode& base = *node->children[1];
        const double w = runWidth(context, c.base);
        // The brace is the font's: at least as wide as the base, centred on it.
        std::vector<PlacedGlyph> pieces;
        collectGlyphs(brace, 0, 0, pieces);
        ASSERT_FALSE(pieces.empty());
        EXPECT_GE(brace.width, w - 1e-6);
        EXPECT_NEAR(brace.x + brace.width / 2, base.x + w / 2, 1e-6);
        EXPECT_NEAR(node->width, std::max(w, brace.width), 1e-6);
        // Its ink lies a kern from the base's box.
        double inkTop = 1e9, inkBottom = -1e9;
        for (const PlacedGlyph& piece : pieces) {
            const KMathGlyphInfo& info = infoOf(*piece.glyph);
            inkTop = std::min(inkTop, piece.baseline - info.height * size);
            inkBottom = std::max(inkBottom, piece.baseline + info.depth * size);
        }
        if (c.pos == OPosition::top) {
            EXPECT_NEAR(base.y - inkBottom, kern, 1e-6);
            EXPECT_NEAR(inkTop, kern, 1e-6);
        } else {
            EXPECT_NEAR(base.y, 0, kEps);
            EXPECT_NEAR(inkTop - (base.y + base.height), kern, 1e-6);
            EXPECT_NEAR(node->height - inkBottom, kern, 1e-6);
        }
        EXPECT_NEAR(node->ascent - base.ascent, base.y, 1e-6);
    }
}

TEST(GroupCharLayout, ArrowsStayOnTheLineWithTheirLabelInScriptStyle)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    for (const OPosition pos : {OPosition::bottom, OPosition::top}) {
        OGroupChar g;
        g.chr = QStringLiteral("\u2192");
        g.pos = pos;
        g.e = runs("f");
        const KTypoNodePtr node = layoutOne(context, makeOmmlNode(std::move(g)));
        ASSERT_TRUE(node);
        std::vector<PlacedGlyph> glyphs;
        collectGlyphs(*node, 0, 0, glyphs);
        ASSERT_GE(glyphs.size(), 2u);
        const PlacedGlyph& label = glyphs.back();
        EXPECT_LT(label.glyph->fontSize, size);
        // The arrow's baseline is the line's; the label reaches past neither end.
        EXPECT_NEAR(glyphs.front().baseline, node->ascent, 1e-6);
        EXPECT_GT(label.x, glyphs.front().x);
        if (pos == OPosition::bottom)
            EXPECT_LT(label.baseline, node->ascent);
        else
            EXPECT_GT(label.baseline, node->ascent);
    }
}

} // namespace
