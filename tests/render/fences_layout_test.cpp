// Delimiters: fences grown from the font's forms to cover their body as TeX covers it,
// the gap of a missing fence, separators, the \big sizes, and the placeholder drawn for
// an empty body.

#include "fence_table_support.h"

#include <gtest/gtest.h>

namespace {

using namespace fence_test;

constexpr double kEps = 1e-9;

KTypoNodePtr layoutFence(const KLayoutContext& context, const QString& beg, const QString& end,
                         KOmmlNodeList body)
{
    ODelimiter d;
    d.begChr = beg;
    d.endChr = end;
    d.e = std::move(body);
    return layoutElement(context, *makeOmmlNode(std::move(d)));
}

// A fraction a over b, nested `depth` times in its numerator.
KOmmlNodeList tower(int depth)
{
    KOmmlNodeList list = runs("a");
    for (int i = 0; i < depth; ++i) {
        OFraction f;
        f.num = std::move(list);
        f.den = runs("b");
        list = makeOmmlList(makeOmmlNode(std::move(f)));
    }
    return list;
}

double axis(double size)
{
    return KMathFont::instance().constant(HB_OT_MATH_CONSTANT_AXIS_HEIGHT) * size;
}

// The least total height TeX lets a fence have around a body: 0.901 of twice its reach from
// the axis, and at most half an em short of it.
double required(double size, double ascent, double bottom)
{
    const double reach = std::max(ascent - axis(size), bottom + axis(size));
    return std::max(2 * reach * 0.901, 2 * reach - 0.5 * size);
}

TEST(DelimiterFences, TheSmallestFormOfTheFontThatCoversTheBody)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    const KMathFont& font = KMathFont::instance();
    const auto variants = font.variants(font.glyph(U'('), true);
    ASSERT_GT(variants.size(), 2u);
    for (int depth = 0; depth <= 4; ++depth) {
        SCOPED_TRACE(depth);
        const KTypoNodePtr body = layoutList(context, tower(depth));
        const KTypoNodePtr node = layoutFence(context, "(", ")", tower(depth));
        ASSERT_TRUE(node);
        ASSERT_EQ(node->children.size(), 3u);
        const KTypoNode& open = *node->children[0];
        const double needed = required(size, body->ascent, body->bottom);
        const double total = open.ascent + open.bottom;
        // Centred on the axis.
        EXPECT_NEAR((open.ascent - open.bottom) / 2, axis(size), 1e-9);
        const KTypoGlyph* glyph = singleGlyph(open);
        if (needed <= variants.back().second * size) {
            // One form: the first of the font's steps that is tall enough, and no smaller one would do.
            ASSERT_TRUE(glyph);
            std::size_t step = 0;
            while (variants[step].first.index != glyph->glyphIndex)
                ++step;
            EXPECT_GE(variants[step].second * size, needed);
            if (step > 0) {
                EXPECT_LT(variants[step - 1].second * size, needed);
            }
            EXPECT_GT(total, 0);
        } else {
            // Beyond the largest form: the assembly, at least as tall as required.
            EXPECT_FALSE(glyph);
            EXPECT_GE(total, needed - 1e-6);
        }
        // Opening, body and closing touch: no space between an opening, an ordinary atom and a closing.
        EXPECT_NEAR(node->children[1]->x, open.width, kEps);
        EXPECT_NEAR(node->children[2]->x, open.width + node->children[1]->width, kEps);
    }
}

TEST(DelimiterFences, AMissingFenceLeavesTheNullDelimiterSpace)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutFence(context, "", "|", runs("x"));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 3u);
    EXPECT_NEAR(node->children[0]->width, 0.12 * size, kEps);
    EXPECT_TRUE(node->children[0]->children.empty());
    EXPECT_NEAR(node->children[1]->x, 0.12 * size, kEps);
}

TEST(DelimiterFences, SeparatorsAreSizedLikeTheFences)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    ODelimiter d;
    d.begChr = QStringLiteral("\u27E8");
    d.endChr = QStringLiteral("\u27E9");
    d.sepChr = QStringLiteral("|");
    d.e = tower(2);
    d.separated.push_back(runs("b"));
    const KTypoNodePtr node = layoutElement(context, *makeOmmlNode(std::move(d)));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 5u);
    const KTypoNode& open = *node->children[0];
    const KTypoNode& bar = *node->children[2];
    EXPECT_NEAR(bar.ascent - bar.bottom, 2 * axis(size), 1e-9);
    EXPECT_GE(bar.ascent + bar.bottom, required(size, node->children[1]->ascent, node->children[1]->bottom) - 1e-6);
    EXPECT_LE(bar.ascent, open.ascent + 1e-6 + size);
}

TEST(DelimiterFences, TheBigFamilyGrowsInTeXsSteps)
{
    const double size = 10;
    double previous = 0;
    for (const char* latex : {"\\big(", "\\Big(", "\\bigg(", "\\Bigg("}) {
        SCOPED_TRACE(latex);
        const rendertest::Laid laid = rendertest::layoutLatex(latex, size);
        ASSERT_TRUE(laid.node);
        const KTypoNode& open = *laid.node->children.front();
        const double total = open.ascent + open.bottom;
        EXPECT_GT(total, previous);
        previous = total;
        // No null delimiter on the side the \big family leaves out.
        EXPECT_NEAR(laid.node->width, open.width, kEps);
    }
    // \big covers 1.2 em less TeX's shortfall.
    const rendertest::Laid big = rendertest::layoutLatex("\\big(", size);
    const KTypoNode& open = *big.node->children.front();
    EXPECT_GE(open.ascent + open.bottom, std::max(1.2 * size * 0.901, 1.2 * size - 0.5 * size) - 1e-6);
}

TEST(DelimiterPlaceholder, IsARectangleThreeSpacesWideInItsOwnColour)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutFence(context, "(", ")", {});
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 3u);
    const auto& slot = static_cast<const KTypoStrokePath&>(*node->children[1]);
    EXPECT_EQ(slot.kind, kTypoStroke);
    EXPECT_EQ(slot.strokeColor, QStringLiteral("#1b1818"));
    EXPECT_NEAR(slot.width, 3 * context.metrics.horizontalAdvance(QLatin1Char(' ')), kEps);
    EXPECT_NEAR(slot.penWidth, std::max(0.5, 0.02 * size), kEps);
    EXPECT_EQ(slot.path.boundingRect(), QRectF(0, 0, slot.width, slot.height));
}

} // namespace
