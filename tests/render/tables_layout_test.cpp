// Matrices and equation arrays: column widths, justification, empty rows,
// stacking and centring on the math axis.

#include "fence_table_support.h"

#include <gtest/gtest.h>

namespace {

using namespace fence_test;

constexpr double kEps = 1e-9;

OMatrixRow cells(std::initializer_list<const char*> texts)
{
    OMatrixRow row;
    // "" stands for a cell with nothing in it.
    for (const char* text : texts)
        row.push_back(*text ? runs(QString::fromUtf8(text)) : KOmmlNodeList{});
    return row;
}

std::vector<OMatrixRow> rowsOf(std::initializer_list<std::initializer_list<const char*>> texts)
{
    std::vector<OMatrixRow> rows;
    for (const auto& row : texts)
        rows.push_back(cells(row));
    return rows;
}

KTypoNodePtr layoutMatrixOf(const KLayoutContext& context, std::vector<OMatrixRow> rows,
                            std::vector<OColumnJustification> columns = {})
{
    OMatrix m;
    m.rows = std::move(rows);
    for (const OColumnJustification j : columns)
        m.columns.push_back(OMatrixColumn{QStringLiteral("1"), j});
    return layoutElement(context, *makeOmmlNode(std::move(m)));
}

TEST(MatrixLayout, TwoByTwoIsTwoPaddedColumnsAndOneGapWide)
{
    const KLayoutContext context = makeLayoutContext(10);
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a", "b"}, {"b", "a"}}));
    ASSERT_TRUE(node);
    const double cell = std::max(runWidth(context, "a"), runWidth(context, "b"));
    EXPECT_NEAR(node->width, 2 * (cell + 3) + 3, kEps);
    ASSERT_EQ(node->children.size(), 4u);

    // Each row: 1 pt margin, a line, 1 pt margin; 2 pt between rows.
    const double rowHeight = 1 + runHeight(context, "ab") + 1;
    const double total = 2 * rowHeight + 2;
    EXPECT_NEAR(node->height, total, kEps);
    EXPECT_NEAR(node->ascent, total / 2 + 2.5, kEps);
    // Cells share their row's baseline: the shorter letter starts lower.
    EXPECT_NEAR(node->children[0]->y, 1 + runAscent(context, "ab") - runAscent(context, "a"), kEps);
    EXPECT_NEAR(node->children[2]->y, rowHeight + 2 + 1 + runAscent(context, "ab") - runAscent(context, "b"),
                kEps);
}

TEST(MatrixLayout, ColumnsTakeTheirWidestCellAndTheirJustification)
{
    const double size = 20;
    const KLayoutContext context = makeLayoutContext(size);
    const double pad = 3;
    const double gap = 6;
    // Column three has no description: it is centred.
    const KTypoNodePtr node =
        layoutMatrixOf(context, rowsOf({{"x", "y", "z"}, {"wide+1", "wider+22", "widest+333"}}),
                       {OColumnJustification::left, OColumnJustification::right});
    ASSERT_TRUE(node);
    const double c1 = runWidth(context, "wide+1");
    const double c2 = runWidth(context, "wider+22");
    const double c3 = runWidth(context, "widest+333");
    EXPECT_NEAR(node->width, c1 + c2 + c3 + 6 * pad + 2 * gap, kEps);

    ASSERT_EQ(node->children.size(), 6u);
    const double slot2 = c1 + 2 * pad + gap;
    const double slot3 = slot2 + c2 + 2 * pad + gap;
    EXPECT_NEAR(node->children[0]->x, pad, kEps);                                                 // left
    EXPECT_NEAR(node->children[1]->x, slot2 + c2 + pad - runWidth(context, "y"), kEps);           // right
    EXPECT_NEAR(node->children[2]->x, slot3 + (c3 + 2 * pad - runWidth(context, "z")) / 2, kEps); // centre
    EXPECT_NEAR(node->children[3]->x, pad, kEps);
    EXPECT_NEAR(node->children[4]->x, slot2 + pad, kEps);
    EXPECT_NEAR(node->children[5]->x, slot3 + pad, kEps);
}

TEST(MatrixLayout, EmptyRowTakesTheRoomOfALine)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a"}, {""}, {"a"}}));
    ASSERT_TRUE(node);
    const double full = 2 + runHeight(context, "a");
    const double empty = 2 + 0.7 * size + 0.3 * size;
    EXPECT_NEAR(node->height, 2 * full + empty + 2 * 2, kEps);
    // The empty cell's baseline: its row top, the margin and the assumed ascent.
    EXPECT_NEAR(node->children[1]->y, full + 2 + 1 + 7, kEps);
    EXPECT_NEAR(node->children[2]->y, full + 2 + empty + 2 + 1, kEps);
}

TEST(MatrixLayout, RaggedRowsLeaveTheirMissingCellsEmpty)
{
    const KLayoutContext context = makeLayoutContext(10);
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a", "b", "c"}, {"d"}}));
    ASSERT_TRUE(node);
    EXPECT_EQ(node->children.size(), 4u);
    const double widths = std::max(runWidth(context, "a"), runWidth(context, "d")) + runWidth(context, "b") +
                          runWidth(context, "c");
    EXPECT_NEAR(node->width, widths + 3 * 3 + 2 * 3, kEps);
}

TEST(MatrixLayout, WithoutCellsLaysOutToNothing)
{
    const KLayoutContext context = makeLayoutContext(10);
    EXPECT_FALSE(layoutMatrixOf(context, {}));
    std::vector<OMatrixRow> rows(3);
    EXPECT_FALSE(layoutMatrixOf(context, std::move(rows)));
    // Inside a list it simply takes no room.
    KOmmlNodeList list;
    list.push_back(makeOmmlNode(OMatrix{}));
    list.push_back(run("x"));
    EXPECT_NEAR(layoutList(context, list)->width, runWidth(context, "x"), kEps);
}

TEST(MatrixLayout, CellBaselinesLineUpAcrossARow)
{
    const rendertest::Laid laid = rendertest::layoutLatex("\\begin{matrix}x & \\frac{1}{2}\\end{matrix}", 12);
    ASSERT_TRUE(laid.node);
    const KTypoNode* node = laid.node;
    const KTypoNode& a = *node->children[0];
    const KTypoNode& b = *node->children[1];
    EXPECT_NEAR(a.y + a.ascent, b.y + b.ascent, kEps);
    EXPECT_NEAR(b.y, 1.2, kEps); // the taller cell starts right under the row margin
}

// ---- equation arrays ----

TEST(EquationArrayLayout, RowsStackFlushLeftWithAGapAndCentreOnTheAxis)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    OEquationArray array;
    array.rows.push_back(runs("a=b"));
    array.rows.push_back(KOmmlNodeList{});
    array.rows.push_back(runs("c=dddd"));
    const KTypoNodePtr node = layoutElement(context, *makeOmmlNode(std::move(array)));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 3u);
    const double first = runHeight(context, "a=b");
    const double last = runHeight(context, "c=dddd");
    const double total = first + 10 + last + 2 * 3;
    EXPECT_NEAR(node->height, total, kEps);
    EXPECT_NEAR(node->ascent, total / 2 + 2.5, kEps);
    EXPECT_NEAR(node->width, runWidth(context, "c=dddd"), kEps);
    const double ys[] = {0, first + 3, first + 3 + 10 + 3};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(node->children[i]->x, 0, kEps) << i;
        EXPECT_NEAR(node->children[i]->y, ys[i], kEps) << i;
    }
    EXPECT_NEAR(node->children[1]->width, 0, kEps);
    EXPECT_NEAR(node->children[1]->ascent, 7, kEps);
}

TEST(EquationArrayLayout, WithoutRowsLaysOutToNothingAndOneRowIsThatRow)
{
    const KLayoutContext context = makeLayoutContext(10);
    EXPECT_FALSE(layoutElement(context, *makeOmmlNode(OEquationArray{})));
    OEquationArray one;
    one.rows.push_back(runs("x"));
    const KTypoNodePtr node = layoutElement(context, *makeOmmlNode(std::move(one)));
    ASSERT_TRUE(node);
    EXPECT_NEAR(node->height, runHeight(context, "x"), kEps);
    EXPECT_NEAR(node->ascent, runHeight(context, "x") / 2 + 2.5, kEps);
}

} // namespace
