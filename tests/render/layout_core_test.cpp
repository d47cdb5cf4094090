// The math layout rules: letter shapes per kind of run, the spaces between atoms,
// the style sizes, and the placement of scripts, fractions, radicals and large
// operators, each checked against the constants read from the math font here.

#include "render/math_alphabet.h"
#include "render/math_font.h"
#include "render_test_support.h"

#include <cmath>

using namespace rendertest;

namespace {

constexpr double kEps = 1e-9;

double constant(hb_ot_math_constant_t c)
{
    return KMathFont::instance().constant(c);
}

// Every glyph of the tree, in painting order, with its absolute top-left.
struct Placed {
    const KTypoGlyph* glyph;
    double x;
    double baseline;
};
void collect(const KTypoNode& node, double x, double y, std::vector<Placed>& out)
{
    const double ax = x + node.x;
    const double ay = y + node.y;
    if (node.kind == kTypoGlyph)
        out.push_back({static_cast<const KTypoGlyph*>(&node), ax, ay + node.ascent});
    for (const KTypoNodePtr& child : node.children)
        collect(*child, ax, ay, out);
}
// The glyphs of a laid-out formula, with the tree they point into.
struct Glyphs : std::vector<Placed> {
    KTypoNodePtr root;
};
Glyphs glyphsOf(const char* latex, double size)
{
    Laid laid = layoutLatex(latex, size);
    Glyphs out;
    if (laid.root)
        collect(*laid.root, 0, 0, out);
    out.root = std::move(laid.root);
    return out;
}

TEST(MathFont, IsFoundAndHasItsConstants)
{
    const KMathFont& font = KMathFont::instance();
    ASSERT_TRUE(font.valid());
    EXPECT_EQ(font.family(), QStringLiteral("TeX Gyre Termes Math"));
    EXPECT_GT(constant(HB_OT_MATH_CONSTANT_AXIS_HEIGHT), 0);
    EXPECT_GT(constant(HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN), 0.5);
    EXPECT_LT(constant(HB_OT_MATH_CONSTANT_SCRIPT_SCRIPT_PERCENT_SCALE_DOWN),
              constant(HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN));
    const KMathGlyph x = font.glyph(U'\U0001D465');
    ASSERT_TRUE(x.valid());
    EXPECT_FALSE(font.info(x).outline.isEmpty());
    EXPECT_GT(font.info(x).advance, 0);
    EXPECT_FALSE(font.glyph(U'\U0010FFFD').valid());
    EXPECT_GT(font.variants(font.glyph(U'\u221A'), true).size(), 2u);
    EXPECT_FALSE(font.assembly(font.glyph(U'\u221A'), true).empty());
}

TEST(RunLayout, LettersTakeTheShapeOfTheirKindOfRun)
{
    struct Case {
        const char* latex;
        char32_t drawn;
        int italic;
    } const cases[] = {
        {"x", U'\U0001D465', 1},
        {"h", U'\u210E', 1},
        {"\\alpha", U'\U0001D6FC', 1},
        {"\\Gamma", U'\u0393', 0},
        {"2", U'2', 0},
        {"\\mathrm{x}", U'x', 0},
        {"\\sin", U's', 0},
        {"\\mathbb{R}", U'\u211D', 0},
        {"\\mathcal{L}", U'\u2112', 0},
        {"\\mathbf{A}", U'\U0001D400', 0},
        {"\\mathfrak{g}", U'\U0001D524', 0},
        {"-", U'\u2212', 0},
        {"\\mathsf{A}", U'\U0001D5A0', 0},
        {"\\mathtt{A}", U'\U0001D670', 0},
        {"\\text{if}", U'i', 0},
        {"\\textbf{a}", U'\U0001D41A', 0},
        {"\\textit{a}", U'\U0001D44E', 1},
        {"\\operatorname{arg\\,max}", U'a', 0},
        {"\\Beta", U'B', 0},
        {"a \\bmod b", U'\U0001D44E', 1},
    };
    for (const Case& c : cases) {
        const auto glyphs = glyphsOf(c.latex, 10);
        ASSERT_FALSE(glyphs.empty()) << c.latex;
        EXPECT_EQ(glyphs.front().glyph->text.toUcs4().front(), uint(c.drawn)) << c.latex;
        EXPECT_EQ(glyphs.front().glyph->italic, c.italic) << c.latex;
    }
    // An OMML run without a style sets letters in italic, digits upright.
    const KTypoNodePtr root = layoutOf(runs(QStringLiteral("a1")), 10);
    ASSERT_TRUE(root);
    std::vector<Placed> glyphs;
    collect(*root, 0, 0, glyphs);
    ASSERT_EQ(glyphs.size(), 2u);
    EXPECT_EQ(glyphs[0].glyph->italic, 1);
    EXPECT_EQ(glyphs[1].glyph->italic, 0);
    // Normal text keeps its hyphen and puts no math spaces between its characters.
    const auto words = glyphsOf("\\text{a-b, c}", 10);
    ASSERT_EQ(words.size(), 6u);
    EXPECT_EQ(words[1].glyph->text, QStringLiteral("-"));
    for (size_t i = 1; i < words.size(); ++i)
        EXPECT_NEAR(words[i].x, words[i - 1].x + words[i - 1].glyph->width, 1e-9) << i;
    int uprightM = 0;
    for (const Placed& placed : glyphsOf("a \\bmod b", 10))
        uprightM += placed.glyph->text == QStringLiteral("m") && placed.glyph->italic == 0;
    EXPECT_EQ(uprightM, 1);
    EXPECT_EQ(mathAlphanumeric(U'7', OScript::doubleStruck, KLetterShape::upright), U'\U0001D7DF');
    EXPECT_EQ(mathAlphanumeric(U'!', OScript::fraktur, KLetterShape::bold), U'!');
    EXPECT_EQ(mathAlphanumeric(U'\u2202', OScript::roman, KLetterShape::italic), U'\U0001D715');
    EXPECT_EQ(mathAlphanumeric(U'\u2202', OScript::roman, KLetterShape::boldItalic), U'\U0001D74F');
    EXPECT_EQ(mathAlphanumeric(U'\u03C9', OScript::roman, KLetterShape::bold), U'\U0001D6DA');
}

TEST(Spacing, TableOfThinMediumAndThickSpaces)
{
    using C = KAtomClass;
    using S = KMathStyle;
    struct Case {
        C left, right;
        S style;
        int mu;
    } const cases[] = {
        {C::ord, C::ord, S::display, 0},  {C::ord, C::op, S::script, 3},
        {C::ord, C::bin, S::text, 4},     {C::ord, C::bin, S::script, 0},
        {C::ord, C::rel, S::display, 5},  {C::rel, C::ord, S::scriptScript, 0},
        {C::op, C::op, S::script, 3},     {C::open, C::ord, S::text, 0},
        {C::close, C::op, S::text, 3},    {C::punct, C::ord, S::text, 3},
        {C::punct, C::ord, S::script, 0}, {C::inner, C::inner, S::text, 3},
        {C::inner, C::close, S::text, 0}, {C::rel, C::rel, S::display, 0},
        {C::bin, C::open, S::text, 4},    {C::op, C::ord, S::text, 3},
        {C::ord, C::open, S::text, 0},    {C::inner, C::op, S::scriptScript, 3},
    };
    for (const Case& c : cases)
        EXPECT_EQ(interAtomSpace(c.left, c.right, c.style), c.mu) << int(c.left) << ' ' << int(c.right);

    const C rel = C::rel, ord = C::ord, open = C::open, close = C::close;
    EXPECT_TRUE(binaryActsAsOrdinary(nullptr, &ord));
    EXPECT_TRUE(binaryActsAsOrdinary(&rel, &ord));
    EXPECT_TRUE(binaryActsAsOrdinary(&open, &ord));
    EXPECT_TRUE(binaryActsAsOrdinary(&ord, &close));
    EXPECT_TRUE(binaryActsAsOrdinary(&ord, nullptr));
    EXPECT_FALSE(binaryActsAsOrdinary(&ord, &ord));
    EXPECT_FALSE(binaryActsAsOrdinary(&close, &open));
}

// The space between the boxes of the first and second glyph, in mu of a 10 pt size.
double spaceAfterFirst(const char* latex)
{
    const auto g = glyphsOf(latex, 18);
    if (g.size() < 2)
        return -1;
    return g[1].x - (g[0].x + g[0].glyph->width);
}

TEST(Spacing, ListsPutTheTableBetweenTheirAtoms)
{
    EXPECT_NEAR(spaceAfterFirst("a+b"), 4, kEps);
    EXPECT_NEAR(spaceAfterFirst("a=b"), 5, kEps);
    EXPECT_NEAR(spaceAfterFirst(",b"), 3, kEps);
    EXPECT_NEAR(spaceAfterFirst("a,b"), 0, kEps);
    EXPECT_NEAR(spaceAfterFirst("ab"), 0, kEps);
    EXPECT_NEAR(spaceAfterFirst("-a"), 0, kEps);  // a leading minus is a sign
    EXPECT_NEAR(spaceAfterFirst("(-a"), 0, kEps); // and after an opening
    EXPECT_NEAR(spaceAfterFirst("=-a"), 5, kEps); // only the relation's own space
    // Scripts have no medium or thick spaces.
    const auto g = glyphsOf("x^{a+b}", 18);
    ASSERT_EQ(g.size(), 4u);
    EXPECT_NEAR(g[2].x, g[1].x + g[1].glyph->width, kEps);
}

TEST(Styles, ScriptsShrinkByTheFontsScaleDowns)
{
    const auto g = glyphsOf("x^{y^{z^w}}", 20);
    ASSERT_EQ(g.size(), 4u);
    EXPECT_NEAR(g[0].glyph->fontSize, 20, kEps);
    EXPECT_NEAR(g[1].glyph->fontSize, 20 * constant(HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN), kEps);
    EXPECT_NEAR(g[2].glyph->fontSize, 20 * constant(HB_OT_MATH_CONSTANT_SCRIPT_SCRIPT_PERCENT_SCALE_DOWN),
                kEps);
    EXPECT_NEAR(g[3].glyph->fontSize, g[2].glyph->fontSize, kEps);
    EXPECT_EQ(styleScale(KMathStyle::display), 1.0);
    EXPECT_EQ(styleScale(KMathStyle::text), 1.0);
    EXPECT_EQ(fractionStyle(KMathStyle::display), KMathStyle::text);
    EXPECT_EQ(fractionStyle(KMathStyle::text), KMathStyle::script);
    EXPECT_EQ(scriptStyle(KMathStyle::script), KMathStyle::scriptScript);
}

TEST(ScriptLayout, ShiftsFollowTheFontsConstants)
{
    const double s = 10;
    {
        const auto g = glyphsOf("x^2", s);
        ASSERT_EQ(g.size(), 2u);
        const double up =
            std::max(constant(HB_OT_MATH_CONSTANT_SUPERSCRIPT_SHIFT_UP) * s,
                     g[1].glyph->bottom + constant(HB_OT_MATH_CONSTANT_SUPERSCRIPT_BOTTOM_MIN) * s);
        EXPECT_NEAR(g[0].baseline - g[1].baseline, up, kEps);
        // After the italic letter and its correction.
        EXPECT_NEAR(g[1].x, g[0].x + g[0].glyph->width, kEps);
        EXPECT_GT(g[0].glyph->width,
                  KMathFont::instance().info(KMathFont::instance().glyph(U'\U0001D465')).advance * s - kEps);
    }
    {
        const auto g = glyphsOf("f_2", s);
        ASSERT_EQ(g.size(), 2u);
        const double down =
            std::max(constant(HB_OT_MATH_CONSTANT_SUBSCRIPT_SHIFT_DOWN) * s,
                     g[1].glyph->ascent - constant(HB_OT_MATH_CONSTANT_SUBSCRIPT_TOP_MAX) * s);
        EXPECT_NEAR(g[1].baseline - g[0].baseline, down, kEps);
        // The subscript tucks under the italic overhang.
        EXPECT_NEAR(g[1].x, g[0].x + g[0].glyph->width - g[0].glyph->italicCorrection, kEps);
    }
    {
        const auto g = glyphsOf("x_a^b", s);
        ASSERT_EQ(g.size(), 3u);
        const Placed& sup = g[1].baseline < g[2].baseline ? g[1] : g[2];
        const Placed& sub = &sup == &g[1] ? g[2] : g[1];
        const double gap = (sub.baseline - sub.glyph->ascent) - (sup.baseline + sup.glyph->bottom);
        EXPECT_GE(gap, constant(HB_OT_MATH_CONSTANT_SUB_SUPERSCRIPT_GAP_MIN) * s - kEps);
    }
}

TEST(ScriptLayout, PrimesKeepTheBaseSizeAndTheFontsRaise)
{
    for (const char* latex : {"f'", "f^{\\prime}"}) {
        const auto g = glyphsOf(latex, 10);
        ASSERT_EQ(g.size(), 2u) << latex;
        EXPECT_EQ(g[1].glyph->text, QStringLiteral("\u2032")) << latex;
        EXPECT_NEAR(g[1].glyph->fontSize, 10, kEps) << latex;
        EXPECT_NEAR(g[1].baseline, g[0].baseline, kEps) << latex;
        // The glyph itself stands above the baseline.
        EXPECT_LT(KMathFont::instance().info(KMathFont::instance().glyph(U'\u2032')).depth, 0) << latex;
    }
}

TEST(ScriptLayout, XSquaredIsAboutOneEmTall)
{
    const Laid laid = layoutLatex("x^2", 12);
    ASSERT_TRUE(laid.root);
    EXPECT_GT(laid.root->height, 0.6 * 12);
    EXPECT_LT(laid.root->height, 1.1 * 12);
}

TEST(FractionLayout, GapsAroundTheRuleOnTheAxis)
{
    const double s = 10;
    const Laid laid = layoutLatex("\\frac{a}{b}", s);
    ASSERT_TRUE(laid.node);
    const KTypoNode* rule = nullptr;
    for (const KTypoNodePtr& child : laid.node->children)
        if (child->kind == kTypoStroke)
            rule = child.get();
    ASSERT_TRUE(rule);
    const double t = constant(HB_OT_MATH_CONSTANT_FRACTION_RULE_THICKNESS) * s;
    EXPECT_NEAR(rule->penWidth, t, kEps);
    // The rule's middle lies on the axis.
    EXPECT_NEAR(laid.node->ascent - (rule->y + t / 2), constant(HB_OT_MATH_CONSTANT_AXIS_HEIGHT) * s, kEps);
    const auto g = glyphsOf("\\frac{a}{b}", s);
    ASSERT_EQ(g.size(), 2u);
    const double ruleTop = rule->y;
    const double ruleBottom = rule->y + t;
    // Display style: at least the display gaps, and at least the display shifts.
    EXPECT_GE(ruleTop - (g[0].baseline + g[0].glyph->bottom),
              constant(HB_OT_MATH_CONSTANT_FRACTION_NUM_DISPLAY_STYLE_GAP_MIN) * s - kEps);
    EXPECT_GE((g[1].baseline - g[1].glyph->ascent) - ruleBottom,
              constant(HB_OT_MATH_CONSTANT_FRACTION_DENOM_DISPLAY_STYLE_GAP_MIN) * s - kEps);
    EXPECT_GE(laid.node->ascent - g[0].baseline,
              constant(HB_OT_MATH_CONSTANT_FRACTION_NUMERATOR_DISPLAY_STYLE_SHIFT_UP) * s - kEps);
    EXPECT_GE(g[1].baseline - laid.node->ascent,
              constant(HB_OT_MATH_CONSTANT_FRACTION_DENOMINATOR_DISPLAY_STYLE_SHIFT_DOWN) * s - kEps);
    // Numerator and denominator in text style: the main size.
    EXPECT_NEAR(g[0].glyph->fontSize, s, kEps);
    // A fraction inside a fraction is in script size.
    const auto nested = glyphsOf("\\frac{\\frac{a}{b}}{c}", s);
    ASSERT_EQ(nested.size(), 3u);
    EXPECT_NEAR(nested[0].glyph->fontSize, s * constant(HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN), kEps);
}

TEST(RadicalLayout, SignCoversTheRadicandUnderTheRule)
{
    const double s = 10;
    for (const char* latex :
         {"\\sqrt{x}", "\\sqrt{\\frac{a}{b}}", "\\sqrt{\\frac{\\frac{a}{b}}{\\frac{c}{d}}}"}) {
        const Laid laid = layoutLatex(latex, s);
        ASSERT_TRUE(laid.node) << latex;
        const KTypoNode& sign = *laid.node->children[0];
        const KTypoNode& rule = *laid.node->children[1];
        const KTypoNode& body = *laid.node->children.back();
        const double t = constant(HB_OT_MATH_CONSTANT_RADICAL_RULE_THICKNESS) * s;
        EXPECT_NEAR(rule.penWidth, t, kEps);
        EXPECT_NEAR(sign.y, rule.y, kEps) << latex;
        EXPECT_GE(body.y - (rule.y + t),
                  constant(HB_OT_MATH_CONSTANT_RADICAL_DISPLAY_STYLE_VERTICAL_GAP) * s - kEps)
            << latex;
        EXPECT_GE(sign.height, body.height + t - kEps) << latex;
        EXPECT_NEAR(rule.x, sign.x + sign.width, kEps);
        EXPECT_NEAR(rule.width, body.width, kEps);
    }
}

TEST(NaryLayout, DisplayOperatorWithLimitsUnderAndOver)
{
    const double s = 10;
    KOmmlNodeList list;
    ONaryOperator nary;
    nary.chr = QStringLiteral("\u2211");
    nary.limLoc = OLimitLocation::undOvr;
    nary.sub = runs(QStringLiteral("k"));
    nary.sup = runs(QStringLiteral("n"));
    nary.e = runs(QStringLiteral("k"));
    const Laid laid = layoutOne(makeOmmlNode(std::move(nary)), s);
    ASSERT_TRUE(laid.node);
    std::vector<Placed> g;
    collect(*laid.node, 0, 0, g);
    ASSERT_EQ(g.size(), 4u);
    const Placed& op = g[0];
    const double opHeight = op.glyph->ascent + op.glyph->bottom;
    EXPECT_GE(opHeight, constant(HB_OT_MATH_CONSTANT_DISPLAY_OPERATOR_MIN_HEIGHT) * s - kEps);
    // Centred on the axis.
    const double centre = op.baseline - op.glyph->ascent + opHeight / 2;
    EXPECT_NEAR(laid.node->ascent - centre, constant(HB_OT_MATH_CONSTANT_AXIS_HEIGHT) * s, 1e-6);
    const Placed& upper = g[1];
    const Placed& lower = g[2];
    EXPECT_GE((op.baseline - op.glyph->ascent) - (upper.baseline + upper.glyph->bottom),
              constant(HB_OT_MATH_CONSTANT_UPPER_LIMIT_GAP_MIN) * s - kEps);
    EXPECT_GE((lower.baseline - lower.glyph->ascent) - (op.baseline + op.glyph->bottom),
              constant(HB_OT_MATH_CONSTANT_LOWER_LIMIT_GAP_MIN) * s - kEps);
    EXPECT_LT(upper.baseline, op.baseline);
    EXPECT_GT(lower.baseline, op.baseline);
    // The body follows after a thin space.
    EXPECT_NEAR(g[3].x - (laid.node->children[0]->width), 3 * s / 18, kEps);
}

TEST(NaryLayout, IntegralScriptsBesideItAfterItsItalicCorrection)
{
    const auto g = glyphsOf("\\int_0^1 x", 10);
    ASSERT_EQ(g.size(), 4u);
    const Placed& op = g[0];
    const Placed& sub = g[1].glyph->text == QStringLiteral("0") ? g[1] : g[2];
    const Placed& sup = &sub == &g[1] ? g[2] : g[1];
    EXPECT_NEAR(sup.x - sub.x, op.glyph->italicCorrection, kEps);
    EXPECT_GT(sub.x, op.x);
    EXPECT_LT(sup.baseline, op.baseline);
}

TEST(LimitLayout, LimStacksItsLimitUnderTheName)
{
    const auto g = glyphsOf("\\lim_{x\\to 0} f", 10);
    ASSERT_GE(g.size(), 5u);
    EXPECT_EQ(g[0].glyph->text, QStringLiteral("l"));
    EXPECT_EQ(g[0].glyph->italic, 0);
    // The limit's first glyph sits below the name's baseline.
    EXPECT_GT(g[3].baseline, g[0].baseline + g[0].glyph->bottom);
}

TEST(Phantoms, TakeTheirContentsSpaceLessTheZeroFlags)
{
    const KTypoNodePtr plain = layoutOf(runs(QStringLiteral("xy")), 10);
    ASSERT_TRUE(plain);
    struct Case {
        OPhantom phantom;
        bool draws;
        double width, ascent, bottom;
    };
    const double w = plain->width, a = plain->ascent, b = plain->bottom;
    Case cases[] = {
        {{runs(QStringLiteral("xy")), {}, true}, true, w, a, b},
        {{runs(QStringLiteral("xy")), {}, false}, false, w, a, b},
        {{runs(QStringLiteral("xy")), {}, false, false, true, true}, false, w, 0, 0},
        {{runs(QStringLiteral("xy")), {}, false, true}, false, 0, a, b},
        {{runs(QStringLiteral("xy")), {}, true, true}, true, 0, a, b},
    };
    for (Case& c : cases) {
        const Laid laid = layoutOne(makeOmmlNode(std::move(c.phantom)), 10);
        ASSERT_TRUE(laid.node);
        EXPECT_EQ(!laid.node->children.empty(), c.draws);
        EXPECT_NEAR(laid.node->width, c.width, kEps);
        EXPECT_NEAR(laid.node->ascent, c.ascent, kEps);
        EXPECT_NEAR(laid.node->bottom, c.bottom, kEps);
    }
}

TEST(NothingKinds, PrescriptsAndNestedEquationsTakeNoSpace)
{
    KOmmlNodeList list;
    OPreSubSuperscript pre;
    pre.e = runs(QStringLiteral("x"));
    list.push_back(makeOmmlNode(std::move(pre)));
    list.push_back(makeOmmlNode(OMathEquation{runs(QStringLiteral("x"))}));
    const KTypoNodePtr root = layoutOf(std::move(list), 10);
    ASSERT_NE(root, nullptr);
    EXPECT_TRUE(root->children.empty());
    EXPECT_EQ(root->width, 0);
    EXPECT_EQ(root->height, 0);

    const Laid box = layoutOne(makeOmmlNode(OBox{runs(QStringLiteral("ab"))}), 10);
    const KTypoNodePtr plain = layoutOf(runs(QStringLiteral("ab")), 10);
    ASSERT_TRUE(box.node && plain);
    EXPECT_NEAR(box.node->width, plain->width, kEps);
}

TEST(Painting, MathGlyphsDrawTheirOutlines)
{
    const QString svg = renderEquation(makeOmmlNode(OMathEquation{runs(QStringLiteral("x"))}).get(), 12);
    EXPECT_TRUE(svg.contains(QStringLiteral("<path"))) << qPrintable(svg);
    EXPECT_TRUE(svg.contains(QStringLiteral("Math Formula")));
}

} // namespace
