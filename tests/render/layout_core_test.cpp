// Geometry of the core layout rules, with expectations derived from the metrics
// of the font Qt resolves here, never from one machine's glyph sizes.

#include "render_test_support.h"

#include <cmath>

using namespace rendertest;

namespace {

constexpr double kEps = 1e-9;

const KTypoNode* child(const KTypoNode* node, size_t index)
{
    return node && index < node->children.size() ? node->children[index].get() : nullptr;
}

// The baseline of `node`, measured from its parent's top.
double baselineOf(const KTypoNode* node)
{
    return node->y + node->ascent;
}

TEST(RunLayout, WidthIsTheAdvancePlusATenthOfTheSizePerGap)
{
    // gaps: the spaces between characters, where a surrogate pair is one character and a
    // lone surrogate is one character of its own.
    const struct {
        const char16_t* text;
        double size;
        int gaps;
    } cases[] = {{u"ab", 10, 1},
                 {u"sin", 7, 2},
                 {u"a\U0001D465b", 12, 2},
                 {u"\xDC65\xD835", 10, 1},
                 {u"\xD835\xD835\xDC65", 10, 1},
                 {u"", 10, 0}};
    for (const auto& c : cases) {
        const QString text = QString::fromUtf16(c.text);
        const QFontMetricsF m = metricsAt(c.size);
        const Laid laid = layoutOne(run(text), c.size);
        ASSERT_NE(laid.node, nullptr) << text.size();
        const double expected = text.isEmpty() ? 0 : m.horizontalAdvance(text) + c.gaps * 0.1 * c.size;
        EXPECT_NEAR(laid.node->width, expected, kEps) << qPrintable(text);
        EXPECT_NEAR(laid.node->ascent, m.ascent(), kEps) << qPrintable(text);
        EXPECT_NEAR(laid.node->bottom, m.descent(), kEps) << qPrintable(text);
        const KTypoNode* glyph = glyphOf(laid.node);
        ASSERT_NE(glyph, nullptr) << qPrintable(text);
        EXPECT_EQ(glyph->text, text);
        EXPECT_EQ(glyph->fontSize, c.size);
    }
}

TEST(RunLayout, StyleAndColourComeFromTheRunProperties)
{
    const struct {
        std::optional<OStyle> style;
        int italic;
        int bold;
    } cases[] = {{std::nullopt, 0, 0}, {OStyle::italic, 1, 0}, {OStyle::boldItalic, 1, 1}};
    for (const auto& c : cases) {
        ORun r;
        r.text = QStringLiteral("x");
        r.mathProps.style = c.style;
        r.wordProps.italic = true; // the w:rPr flags do not count
        r.wordProps.color = QColor(200, 16, 1);
        const Laid laid = layoutOne(makeOmmlNode(std::move(r)), 10);
        const KTypoNode* glyph = glyphOf(laid.node);
        ASSERT_NE(glyph, nullptr);
        EXPECT_EQ(glyph->italic, c.italic);
        EXPECT_EQ(glyph->bold, c.bold);
        EXPECT_EQ(glyph->fillColor, QStringLiteral("#c81001"));
        EXPECT_EQ(glyph->fontFamily, QStringLiteral("Times New Roman"));
    }
    const Laid plain = layoutOne(run(QStringLiteral("x")), 10);
    EXPECT_TRUE(glyphOf(plain.node)->fillColor.isEmpty());
}

TEST(ListLayout, NeighboursAreATenthOfTheSizeApartOnOneBaseline)
{
    KOmmlNodeList list = makeOmmlList(run(QStringLiteral("a")), nullptr, run(QStringLiteral("bc")));
    OFraction f;
    f.num = runs(QStringLiteral("1"));
    f.den = runs(QStringLiteral("2"));
    list.push_back(makeOmmlNode(std::move(f)));
    const KTypoNodePtr root = layoutOf(std::move(list), 10);
    ASSERT_EQ(root->children.size(), 3u);
    const KTypoNode* a = child(root.get(), 0);
    const KTypoNode* bc = child(root.get(), 1);
    const KTypoNode* frac = child(root.get(), 2);
    EXPECT_NEAR(bc->x, a->width + 1.0, kEps);
    EXPECT_NEAR(frac->x, bc->x + bc->width + 1.0, kEps);
    EXPECT_NEAR(root->width, frac->x + frac->width, kEps);
    EXPECT_NEAR(root->ascent, frac->ascent, kEps);
    for (const KTypoNode* c : {a, bc, frac})
        EXPECT_NEAR(baselineOf(c), root->ascent, kEps);
}

TEST(ScriptLayout, SuperscriptIsRaisedAndShrunkOnTheFirstLevelOnly)
{
    const double size = 10;
    const double a = metricsAt(size).ascent();
    const double scriptAscent = metricsAt(0.7 * size).ascent();
    const Laid laid = layoutLatex("x^{x^2}", size);
    ASSERT_NE(laid.node, nullptr);
    ASSERT_EQ(laid.node->children.size(), 2u);
    const KTypoNode* base = child(laid.node, 0);
    const KTypoNode* sup = child(laid.node, 1);
    EXPECT_NEAR(baselineOf(base) - baselineOf(sup), 0.7 * a, kEps);
    EXPECT_NEAR(sup->x, base->width, kEps);
    EXPECT_NEAR(laid.node->width, base->width + sup->width, kEps);
    EXPECT_NEAR(laid.node->ascent, std::max(0.7 * a + sup->ascent, a), kEps);
    // The script of the script is still 7 pt.
    const KTypoNode* innerScripts = child(sup, 0);
    ASSERT_NE(innerScripts, nullptr);
    const KTypoNode* innerSup = child(innerScripts, 1);
    ASSERT_NE(innerSup, nullptr);
    EXPECT_EQ(glyphOf(child(innerScripts, 0))->fontSize, 0.7 * size);
    EXPECT_EQ(glyphOf(child(innerSup, 0))->fontSize, 0.7 * size);
    EXPECT_NEAR(baselineOf(child(innerScripts, 0)) - baselineOf(innerSup), 0.7 * scriptAscent, kEps);
}

TEST(ScriptLayout, SubscriptDropsHalfTheBaseDepth)
{
    const double size = 12;
    const QFontMetricsF m = metricsAt(size);
    const Laid laid = layoutLatex("x_i", size);
    const KTypoNode* base = child(laid.node, 0);
    const KTypoNode* sub = child(laid.node, 1);
    ASSERT_NE(sub, nullptr);
    EXPECT_NEAR(baselineOf(sub) - baselineOf(base), 0.5 * m.descent(), kEps);
    EXPECT_NEAR(laid.node->ascent, m.ascent(), kEps);
    EXPECT_NEAR(laid.node->bottom, std::max(m.descent(), 0.5 * m.descent() + sub->height), kEps);
    EXPECT_EQ(glyphOf(child(sub, 0))->fontSize, 0.7 * size);
}

TEST(ScriptLayout, BothScriptsAreKeptATenthOfTheSizeApart)
{
    for (double size : {8.0, 10.0, 24.0}) {
        const QFontMetricsF m = metricsAt(size);
        const QFontMetricsF sm = metricsAt(0.7 * size);
        const Laid laid = layoutLatex("x_i^2", size);
        ASSERT_EQ(laid.node->children.size(), 3u);
        const KTypoNode* base = child(laid.node, 0);
        const KTypoNode* sup = child(laid.node, 1);
        const KTypoNode* sub = child(laid.node, 2);
        double raise = 0.5 * m.ascent();
        double drop = 0.5 * m.descent();
        const double t = -raise - drop + sm.ascent();
        if (0.1 * size > t) {
            raise += (0.1 * size - t) / 2;
            drop += (0.1 * size - t) / 2;
        }
        EXPECT_NEAR(baselineOf(base) - baselineOf(sup), raise, kEps) << size;
        EXPECT_NEAR(baselineOf(sub) - baselineOf(base), drop, kEps) << size;
        EXPECT_NEAR(sub->x, base->width, kEps);
        EXPECT_NEAR(laid.node->width, base->width + std::max(sup->width, sub->width), kEps);
    }
}

TEST(FractionLayout, RuleAndGapFollowTheType)
{
    const double size = 10;
    const struct {
        const char* latex;
        double thickness;
        bool rule;
    } cases[] = {
        {"\\frac{a}{bbb}", 1.0, true}, {"{a \\atop bbb}", 0.0, false}, {"\\tfrac{a}{bbb}", 0.8, false}};
    for (const auto& c : cases) {
        const Laid laid = layoutLatex(c.latex, size);
        ASSERT_EQ(laid.node->children.size(), c.rule ? 3u : 2u);
        const KTypoNode* num = child(laid.node, c.rule ? 1 : 0);
        const KTypoNode* den = child(laid.node, c.rule ? 2 : 1);
        const double width = den->width;
        EXPECT_NEAR(laid.node->width, width, kEps);
        EXPECT_NEAR(num->x, (width - num->width) / 2, kEps);
        EXPECT_NEAR(den->x, 0, kEps);
        EXPECT_NEAR(num->y, 0, kEps);
        EXPECT_NEAR(den->y - (num->y + num->height), c.thickness, kEps);
        // The middle of the bar is on the axis, a quarter of the size above the baseline.
        EXPECT_NEAR(laid.node->ascent - (num->height + c.thickness / 2), 0.25 * size, kEps);
        EXPECT_NEAR(laid.node->bottom, c.thickness / 2 - 0.25 * size + den->height, kEps);
        if (c.rule) {
            const KTypoNode* rule = child(laid.node, 0);
            EXPECT_EQ(rule->kind, kTypoStroke);
            EXPECT_NEAR(rule->y, num->height, kEps);
            EXPECT_NEAR(rule->penWidth, 1.0, kEps);
            EXPECT_NEAR(rule->width, width, kEps);
        }
    }
}

TEST(NaryLayout, OperatorIsTwiceTheSizeTallAndCentredOnTheAxis)
{
    const struct {
        const char* chr;
        char16_t c;
    } cases[] = {{"\xE2\x88\x91", u'\u2211'}, {"", u'\u222B'}, {"\xE2\xA8\x8C", u'\u2A0C'}, {"x", u'x'}};
    for (const auto& c : cases) {
        const double size = 12;
        ONaryOperator nary;
        nary.chr = QString::fromUtf8(c.chr);
        nary.e = runs(QStringLiteral("x"));
        const Laid laid = layoutOne(makeOmmlNode(std::move(nary)), size);
        ASSERT_EQ(laid.node->children.size(), 2u) << c.chr;
        const KTypoNode* op = child(laid.node, 0);
        const KTypoNode* body = child(laid.node, 1);
        ASSERT_EQ(op->kind, kTypoGrow) << c.chr;
        EXPECT_EQ(op->text, QString(QChar(c.c)));
        EXPECT_NEAR(op->height, 24, kEps);
        EXPECT_NEAR(op->ascent - 12, 3, kEps) << "centre 3 pt above the baseline";
        EXPECT_EQ(op->growColor, QStringLiteral("#000000"));
        EXPECT_EQ(static_cast<const KTypoGrowGlyph*>(op)->scale, 2.0);
        EXPECT_NEAR(body->x, op->width + 1.2, kEps);
        EXPECT_NEAR(baselineOf(body), baselineOf(op), kEps);
        EXPECT_NEAR(laid.node->width, op->width + 1.2 + body->width, kEps);
    }
}

TEST(NaryLayout, LimitsAboveAndBelowTheOperator)
{
    const double size = 10;
    const Laid laid = layoutLatex("\\sum\\limits_{i=1}^{n} x", size);
    ASSERT_EQ(laid.node->children.size(), 4u);
    const KTypoNode* op = child(laid.node, 0);
    const KTypoNode* over = child(laid.node, 1);
    const KTypoNode* under = child(laid.node, 2);
    const KTypoNode* body = child(laid.node, 3);
    const double stack = std::max({op->width, over->width, under->width});
    EXPECT_NEAR(over->y, 0, kEps);
    EXPECT_NEAR(op->y, over->height, kEps) << "the operator touches the upper limit";
    EXPECT_NEAR(under->y - (op->y + op->height), 2.0, kEps) << "2g below the operator";
    EXPECT_NEAR(op->x, (stack - op->width) / 2, kEps);
    EXPECT_NEAR(under->x, (stack - under->width) / 2, kEps);
    EXPECT_NEAR(body->x, stack + 1.0, kEps);
    EXPECT_NEAR(baselineOf(body), laid.node->ascent, kEps);
    EXPECT_NEAR(baselineOf(op), laid.node->ascent - 1.0, kEps) << "the operator's baseline is g higher";
    EXPECT_EQ(glyphOf(child(under, 0))->fontSize, 7.0);
}

TEST(NaryLayout, HiddenOrEmptyLimitsAreLeftOut)
{
    ONaryOperator nary;
    nary.sub = runs(QStringLiteral("0"));
    nary.subHide = true;
    nary.sup.clear();
    nary.e = runs(QStringLiteral("x"));
    const Laid laid = layoutOne(makeOmmlNode(std::move(nary)), 10);
    ASSERT_EQ(laid.node->children.size(), 2u);
    EXPECT_EQ(child(laid.node, 0)->kind, kTypoGrow);
}

TEST(NaryLayout, AttachedLimitsAreScriptsOfTheOperator)
{
    const double size = 10;
    const Laid laid = layoutLatex("\\int_0^1 f", size);
    ASSERT_EQ(laid.node->children.size(), 2u);
    const KTypoNode* scripted = child(laid.node, 0);
    const KTypoNode* body = child(laid.node, 1);
    ASSERT_EQ(scripted->children.size(), 3u);
    const KTypoNode* op = child(scripted, 0);
    const KTypoNode* sup = child(scripted, 1);
    const KTypoNode* sub = child(scripted, 2);
    EXPECT_NEAR(sup->x, op->width, kEps);
    EXPECT_NEAR(sub->x, op->width, kEps);
    EXPECT_GE(baselineOf(op) - baselineOf(sup), 0.5 * op->ascent - kEps);
    EXPECT_NEAR(body->x, scripted->width + 1.0, kEps);
    EXPECT_NEAR(scripted->y + baselineOf(op), body->y + body->ascent, kEps);
}

TEST(RadicalLayout, SignPathAndPenFollowTheSize)
{
    for (double size : {10.0, 99.0}) {
        const double u = 0.1 * size;
        const double pen = std::max(1.0, std::floor(size / 20));
        const Laid laid = layoutLatex("\\sqrt{x}", size);
        ASSERT_EQ(laid.node->children.size(), 2u);
        const auto* sign = static_cast<const KTypoStrokePath*>(child(laid.node, 0));
        const KTypoNode* body = child(laid.node, 1);
        ASSERT_EQ(sign->kind, kTypoStroke);
        EXPECT_EQ(sign->penWidth, pen);
        EXPECT_NEAR(body->x, 6 * u, kEps);
        EXPECT_NEAR(body->y, 2 * u + pen, kEps);
        const double yBar = u + pen;
        const double yBot = yBar + body->height;
        const double ex = 6 * u;
        const QPointF expected[] = {{ex + body->width + 0.5 * u, yBar},
                                    {ex - 0.5 * u, yBar},
                                    {ex - 4 * u, yBot},
                                    {ex - 5.5 * u, yBot - 3 * u},
                                    {ex - 6 * u, yBot - 2 * u}};
        ASSERT_EQ(sign->path.elementCount(), 5);
        for (int i = 0; i < 5; ++i) {
            EXPECT_NEAR(sign->path.elementAt(i).x, expected[i].x(), kEps) << size << " " << i;
            EXPECT_NEAR(sign->path.elementAt(i).y, expected[i].y(), kEps) << size << " " << i;
        }
        EXPECT_NEAR(sign->width, ex + body->width + 0.5 * u, kEps);
        EXPECT_NEAR(sign->height, yBot + u, kEps);
        EXPECT_NEAR(laid.node->width, sign->width, kEps);
        EXPECT_NEAR(laid.node->ascent, body->ascent + 2 * u + pen, kEps);
        EXPECT_NEAR(laid.node->bottom, body->bottom, kEps);
    }
}

TEST(RadicalLayout, DegreeWidensTheSignUnlessHiddenOrEmpty)
{
    const double size = 10;
    const struct {
        std::optional<const char*> degree;
        bool hide;
        bool shown;
    } cases[] = {{"3", false, true}, {"3", true, false}, {"", false, false}, {std::nullopt, false, false}};
    for (const auto& c : cases) {
        ORadical radical;
        radical.e = runs(QStringLiteral("x"));
        if (c.degree)
            radical.deg = **c.degree ? runs(QString::fromUtf8(*c.degree)) : KOmmlNodeList{};
        radical.degHide = c.hide;
        const Laid laid = layoutOne(makeOmmlNode(std::move(radical)), size);
        ASSERT_EQ(laid.node->children.size(), c.shown ? 3u : 2u);
        const KTypoNode* body = laid.node->children.back().get();
        if (c.shown) {
            const KTypoNode* degree = child(laid.node, 1);
            EXPECT_NEAR(degree->x, -1.0, kEps);
            EXPECT_NEAR(degree->y, 0, kEps);
            EXPECT_EQ(glyphOf(child(degree, 0))->fontSize, 7.0);
            EXPECT_NEAR(body->x, 2.0 + degree->width, kEps);
        } else {
            EXPECT_NEAR(body->x, 6.0, kEps);
        }
    }
}

TEST(LimitLayout, LimitStacksUnderOrOverTheBase)
{
    const double size = 10;
    const Laid low = layoutLatex("\\underset{x}{lim}", size);
    ASSERT_EQ(low.node->children.size(), 2u);
    const KTypoNode* base = child(low.node, 0);
    const KTypoNode* under = child(low.node, 1);
    EXPECT_NEAR(base->y, -1.0, kEps);
    EXPECT_NEAR(under->y - (base->y + base->height), 2.0, kEps);
    EXPECT_NEAR(low.node->ascent, base->ascent, kEps);
    EXPECT_NEAR(low.node->bottom, base->bottom + 1.0 + under->height, kEps);
    EXPECT_NEAR(under->x, (base->width - under->width) / 2, kEps);

    const Laid up = layoutLatex("\\overset{def}{x}", size);
    ASSERT_EQ(up.node->children.size(), 2u);
    const KTypoNode* upBase = child(up.node, 0);
    const KTypoNode* over = child(up.node, 1);
    EXPECT_NEAR(over->y, 0, kEps);
    EXPECT_NEAR(upBase->y, over->height, kEps);
    EXPECT_NEAR(up.node->width, over->width, kEps);
    EXPECT_NEAR(up.node->ascent, upBase->ascent + 1.0 + over->height, kEps);
}

TEST(FunctionLayout, ArgumentFollowsHalfTheSizeAfterTheName)
{
    const Laid laid = layoutLatex("\\sin x", 14);
    ASSERT_EQ(laid.node->children.size(), 2u);
    const KTypoNode* name = child(laid.node, 0);
    const KTypoNode* argument = child(laid.node, 1);
    EXPECT_NEAR(argument->x, name->width + 7.0, kEps);
    EXPECT_NEAR(laid.node->width, name->width + 7.0 + argument->width, kEps);
    EXPECT_NEAR(baselineOf(name), baselineOf(argument), kEps);

    const Laid alone = layoutLatex("\\cos", 14);
    EXPECT_NEAR(alone.node->width, metricsAt(14).horizontalAdvance(QStringLiteral("cos")) + 2.8, kEps);
}

TEST(NothingKinds, PhantomsPrescriptsAndNestedEquationsTakeNoSpace)
{
    KOmmlNodeList list;
    list.push_back(makeOmmlNode(OPhantom{runs(QStringLiteral("x"))}));
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
    EXPECT_NEAR(box.node->width, metricsAt(10).horizontalAdvance(QStringLiteral("ab")) + 1.0, kEps);
}

} // namespace
