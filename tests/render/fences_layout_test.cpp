// Delimiters: fence heights, the gaps beside the body, fences without a shape,
// and the placeholder drawn for an empty body.

#include "fence_table_support.h"
#include "render/outlines.h"

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

struct FenceCase {
    const char* name;
    QString beg;
    QString end;
    double begFactor; // 0 when no fence is drawn on that side
    double endFactor;
};
void PrintTo(const FenceCase& c, std::ostream* os)
{
    *os << c.name;
}

class DelimiterFences : public ::testing::TestWithParam<FenceCase> {};

TEST_P(DelimiterFences, EncloseTheBodyWithAMarginAndAGapPerDrawnFence)
{
    const FenceCase& c = GetParam();
    for (const double size : {10.0, 12.0, 40.0}) {
        const KLayoutContext context = makeLayoutContext(size);
        const KTypoNodePtr node = layoutFence(context, c.beg, c.end, runs(QStringLiteral("x+1")));
        ASSERT_TRUE(node);
        const double u = 0.1 * size;
        const double gap = 0.25 * size;
        const double bodyWidth = runWidth(context, QStringLiteral("x+1"));
        const double height = lineHeight(context) + 2 * u;

        EXPECT_EQ(node->kind, kTypoLine);
        EXPECT_NEAR(node->height, height, kEps);
        EXPECT_NEAR(node->ascent, u + lineAscent(context), kEps);
        EXPECT_NEAR(node->bottom, node->height - node->ascent, kEps);

        const std::size_t fences = (c.begFactor > 0) + (c.endFactor > 0);
        ASSERT_EQ(node->children.size(), fences + 1);
        std::size_t index = 0;
        double x = 0;
        if (c.begFactor > 0) {
            const KTypoNode& open = *node->children[index++];
            EXPECT_EQ(open.kind, kTypoStroke);
            EXPECT_NEAR(open.width, c.begFactor * height, kEps);
            EXPECT_NEAR(open.height, height, kEps);
            EXPECT_NEAR(open.x, 0, kEps);
            EXPECT_NEAR(open.y, 0, kEps);
            EXPECT_NEAR(open.penWidth, std::max(1.0, 0.04 * size), kEps);
            EXPECT_EQ(open.strokeColor, QStringLiteral("#000000"));
            const auto& path = static_cast<const KTypoStrokePath&>(open).path;
            EXPECT_EQ(path, outlines::buildDelimiter(height, c.beg.at(0).unicode()).path);
            x = open.width + gap;
        }
        const KTypoNode& body = *node->children[index++];
        EXPECT_EQ(body.kind, kTypoLine);
        EXPECT_NEAR(body.x, x, kEps);
        EXPECT_NEAR(body.y, u, kEps);
        EXPECT_NEAR(body.width, bodyWidth, kEps);
        x += bodyWidth;
        if (c.endFactor > 0) {
            const KTypoNode& close = *node->children[index++];
            EXPECT_EQ(close.kind, kTypoStroke);
            EXPECT_NEAR(close.x, x + gap, kEps);
            EXPECT_NEAR(close.y, 0, kEps);
            EXPECT_NEAR(close.width, c.endFactor * height, kEps);
            EXPECT_NEAR(close.height, height, kEps);
            x += gap + close.width;
        }
        EXPECT_NEAR(node->width, x, kEps);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, DelimiterFences,
    ::testing::Values(FenceCase{"Parentheses", "(", ")", 0.15, 0.15},
                      FenceCase{"Brackets", "[", "]", 0.1, 0.1}, FenceCase{"Braces", "{", "}", 0.12, 0.12},
                      FenceCase{"Bars", "|", "|", 0.03, 0.03},
                      FenceCase{"DoubleBars", "\u2016", "\u2016", 0.2, 0.2},
                      FenceCase{"Angles", "\u27E8", "\u27E9", 0.12, 0.12},
                      FenceCase{"FloorWithOpenEnd", "\u230A", "", 0.1, 0},
                      FenceCase{"OpenStartCeiling", "", "\u2309", 0, 0.1},
                      // U+27EA has no built shape: neither the fence nor its gap appears.
                      FenceCase{"UnbuiltOpening", "\u27EA", ")", 0, 0.15},
                      FenceCase{"UnbuiltBothSides", "\u27EA", "\u27EB", 0, 0},
                      FenceCase{"OnlyTheFirstCharacterCounts", "(x", "]]", 0.15, 0.1},
                      FenceCase{"NonBmpCharacter", "\U0001D400", "\U0001D400", 0, 0}),
    [](const ::testing::TestParamInfo<FenceCase>& info) { return std::string(info.param.name); });

struct EmptyBodyCase {
    const char* name;
    KOmmlNodeList (*body)();
};
void PrintTo(const EmptyBodyCase& c, std::ostream* os)
{
    *os << c.name;
}

class DelimiterPlaceholder : public ::testing::TestWithParam<EmptyBodyCase> {};

TEST_P(DelimiterPlaceholder, IsARectangleThreeSpacesWideInItsOwnColour)
{
    for (const double size : {10.0, 50.0}) {
        const KLayoutContext context = makeLayoutContext(size);
        const KTypoNodePtr node = layoutFence(context, "(", ")", GetParam().body());
        ASSERT_TRUE(node);
        ASSERT_EQ(node->children.size(), 4u); // opening, placeholder, body, closing
        const double u = 0.1 * size;
        const double spaces = 3 * context.metrics.horizontalAdvance(QLatin1Char(' '));
        const double height = lineHeight(context) + 2 * u;

        const KTypoNode& body = *node->children[2];
        EXPECT_TRUE(body.children.empty());
        EXPECT_NEAR(body.width, spaces, kEps);
        EXPECT_NEAR(body.ascent, context.metrics.ascent(), kEps);
        EXPECT_NEAR(body.bottom, context.metrics.descent(), kEps);

        const KTypoNode& placeholder = *node->children[1];
        EXPECT_EQ(placeholder.kind, kTypoStroke);
        EXPECT_EQ(placeholder.strokeColor, QStringLiteral("#1b1818"));
        EXPECT_TRUE(placeholder.growColor.isEmpty());
        EXPECT_NEAR(placeholder.penWidth, std::max(0.5, 0.02 * size), kEps);
        EXPECT_NEAR(placeholder.x, 0, kEps);
        EXPECT_NEAR(placeholder.y, 0, kEps);
        EXPECT_NEAR(placeholder.width, node->width, kEps);
        EXPECT_NEAR(placeholder.height, height, kEps);
        const QRectF rect = static_cast<const KTypoStrokePath&>(placeholder).path.boundingRect();
        EXPECT_NEAR(rect.x(), body.x, kEps);
        EXPECT_NEAR(rect.y(), u, kEps);
        EXPECT_NEAR(rect.width(), spaces, kEps);
        EXPECT_NEAR(rect.height(), lineHeight(context), kEps);

        EXPECT_NEAR(node->height, height, kEps);
        EXPECT_NEAR(node->width, 2 * 0.15 * height + 2 * 0.25 * size + spaces, kEps);
        EXPECT_EQ(node->children[0]->strokeColor, QStringLiteral("#000000"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, DelimiterPlaceholder,
    ::testing::Values(EmptyBodyCase{"NoElements", [] { return KOmmlNodeList{}; }},
                      EmptyBodyCase{"OnlyNullEntries",
                                    [] {
                                        KOmmlNodeList l;
                                        l.push_back(nullptr);
                                        return l;
                                    }},
                      EmptyBodyCase{"AnEmptyRun", [] { return runs(QString()); }},
                      EmptyBodyCase{"APhantom",
                                    [] {
                                        KOmmlNodeList l;
                                        l.push_back(makeOmmlNode(OPhantom{runs("x"), {}}));
                                        return l;
                                    }}),
    [](const ::testing::TestParamInfo<EmptyBodyCase>& info) { return std::string(info.param.name); });

TEST(DelimiterLayout, TallBodyStretchesTheFences)
{
    const KLayoutContext context = makeLayoutContext(12);
    OFraction f;
    f.num = runs("a");
    f.den = runs("b");
    KOmmlNodeList body;
    body.push_back(makeOmmlNode(std::move(f)));
    const double fractionHeight = layoutList(context, body)->height;
    const KTypoNodePtr node = layoutFence(context, "[", "]", std::move(body));
    ASSERT_TRUE(node);
    EXPECT_NEAR(node->children.front()->height, fractionHeight + 2 * 1.2, kEps);
    EXPECT_NEAR(node->children.back()->height, fractionHeight + 2 * 1.2, kEps);
    EXPECT_GT(fractionHeight, lineHeight(context));
}

TEST(DelimiterLayout, WithoutFencesIsTheBodyWithItsMargin)
{
    const KLayoutContext context = makeLayoutContext(10);
    const KTypoNodePtr node = layoutFence(context, "", "", runs("y"));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 1u);
    EXPECT_NEAR(node->width, runWidth(context, "y"), kEps);
    EXPECT_NEAR(node->children[0]->x, 0, kEps);
    EXPECT_NEAR(node->children[0]->y, 1, kEps);
}

} // namespace
