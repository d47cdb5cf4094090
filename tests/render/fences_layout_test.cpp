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

TEST(DelimiterFences, EncloseTheBodyWithAMarginAndAGapPerDrawnFence)
{
    // Width factors of the fence drawn on each side; 0 when none is drawn.
    const struct {
        QString beg;
        QString end;
        double begFactor;
        double endFactor;
    } cases[] = {{"(", ")", 0.15, 0.15},
                 {"[", "]", 0.1, 0.1},
                 {"{", "}", 0.12, 0.12},
                 {"|", "|", 0.03, 0.03},
                 {"\u2016", "\u2016", 0.2, 0.2},
                 {"\u27E8", "\u27E9", 0.12, 0.12},
                 {"\u230A", "", 0.1, 0},
                 {"", "\u2309", 0, 0.1},
                 {"", "", 0, 0},
                 // U+27EA has no built shape: neither the fence nor its gap appears.
                 {"\u27EA", ")", 0, 0.15},
                 {"(x", "]]", 0.15, 0.1},
                 {"\U0001D400", "\U0001D400", 0, 0}};
    for (const auto& c : cases) {
        for (const double size : {10.0, 40.0}) {
            SCOPED_TRACE(qPrintable(c.beg + c.end + QString::number(size)));
            const KLayoutContext context = makeLayoutContext(size);
            const KTypoNodePtr node = layoutFence(context, c.beg, c.end, runs(QStringLiteral("x+1")));
            ASSERT_TRUE(node);
            const double u = 0.1 * size;
            const double gap = 0.25 * size;
            const double bodyWidth = runWidth(context, QStringLiteral("x+1"));
            const double height = runHeight(context, QStringLiteral("x+1")) + 2 * u;
            EXPECT_NEAR(node->height, height, kEps);
            EXPECT_NEAR(node->ascent, u + runAscent(context, QStringLiteral("x+1")), kEps);
            ASSERT_EQ(node->children.size(), (c.begFactor > 0) + (c.endFactor > 0) + 1u);
            std::size_t index = 0;
            double x = 0;
            if (c.begFactor > 0) {
                const KTypoNode& open = *node->children[index++];
                EXPECT_EQ(open.kind, kTypoStroke);
                EXPECT_NEAR(open.width, c.begFactor * height, kEps);
                EXPECT_NEAR(open.height, height, kEps);
                EXPECT_NEAR(open.penWidth, std::max(1.0, 0.04 * size), kEps);
                EXPECT_EQ(open.strokeColor, QStringLiteral("#000000"));
                const auto& path = static_cast<const KTypoStrokePath&>(open).path;
                EXPECT_EQ(path, outlines::buildDelimiter(height, c.beg.at(0).unicode()).path);
                x = open.width + gap;
            }
            const KTypoNode& body = *node->children[index++];
            EXPECT_NEAR(body.x, x, kEps);
            EXPECT_NEAR(body.y, u, kEps);
            EXPECT_NEAR(body.width, bodyWidth, kEps);
            x += bodyWidth;
            if (c.endFactor > 0) {
                const KTypoNode& close = *node->children[index++];
                EXPECT_EQ(close.kind, kTypoStroke);
                EXPECT_NEAR(close.x, x + gap, kEps);
                EXPECT_NEAR(close.width, c.endFactor * height, kEps);
                EXPECT_NEAR(close.height, height, kEps);
                EXPECT_EQ(static_cast<const KTypoStrokePath&>(close).path,
                          outlines::buildDelimiter(height, c.end.at(0).unicode()).path);
                x += gap + close.width;
            }
            EXPECT_NEAR(node->width, x, kEps);
        }
    }
}

TEST(DelimiterPlaceholder, IsARectangleThreeSpacesWideInItsOwnColour)
{
    KOmmlNodeList (*const bodies[])() = {
        [] { return KOmmlNodeList{}; }, [] { return makeOmmlList(KOmmlNodePtr()); },
        [] { return runs(QString()); },
        [] {
            // A hidden phantom with every dimension taken away.
            return makeOmmlList(makeOmmlNode(OPhantom{runs("x"), {}, false, true, true, true}));
        }};
    for (const auto body : bodies) {
        for (const double size : {10.0, 50.0}) {
            const KLayoutContext context = makeLayoutContext(size);
            const KTypoNodePtr node = layoutFence(context, "(", ")", body());
            ASSERT_TRUE(node);
            ASSERT_EQ(node->children.size(), 4u); // opening, placeholder, body, closing
            const double u = 0.1 * size;
            const double spaces = 3 * context.metrics.horizontalAdvance(QLatin1Char(' '));
            const double height = lineHeight(context) + 2 * u;
            const KTypoNode& inner = *node->children[2];
            EXPECT_TRUE(inner.children.empty());
            EXPECT_NEAR(inner.width, spaces, kEps);
            EXPECT_NEAR(inner.ascent, context.metrics.ascent(), kEps);
            EXPECT_NEAR(inner.bottom, context.metrics.descent(), kEps);
            const KTypoNode& placeholder = *node->children[1];
            EXPECT_EQ(placeholder.kind, kTypoStroke);
            EXPECT_EQ(placeholder.strokeColor, QStringLiteral("#1b1818"));
            EXPECT_NEAR(placeholder.penWidth, std::max(0.5, 0.02 * size), kEps);
            EXPECT_NEAR(placeholder.width, node->width, kEps);
            EXPECT_NEAR(placeholder.height, height, kEps);
            const QRectF rect = static_cast<const KTypoStrokePath&>(placeholder).path.boundingRect();
            EXPECT_EQ(rect, QRectF(inner.x, u, spaces, lineHeight(context)));
            EXPECT_NEAR(node->width, 2 * 0.15 * height + 2 * 0.25 * size + spaces, kEps);
            EXPECT_EQ(node->children[0]->strokeColor, QStringLiteral("#000000"));
        }
    }
}

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

} // namespace
