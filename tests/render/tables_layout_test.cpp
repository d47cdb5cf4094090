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

double axis(double size)
{
    return KMathFont::instance().constant(HB_OT_MATH_CONSTANT_AXIS_HEIGHT) * size;
}

TEST(MatrixLayout, ColumnsAnEmApartJustifiedAsTheOmmlSays)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    using J = OColumnJustification;
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a", "bbb", "c"}, {"dddd", "e", "ff"}}),
                                             {J::left, J::center, J::right});
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 6u);
    const double c1 = runWidth(context, "dddd");
    const double c2 = runWidth(context, "bbb");
    const double c3 = runWidth(context, "ff");
    const double gap = 1.0 * size;
    EXPECT_NEAR(node->width, c1 + c2 + c3 + 2 * gap, kEps);
    EXPECT_NEAR(node->children[0]->x, 0, kEps);                                     // left
    EXPECT_NEAR(node->children[1]->x, c1 + gap, kEps);                              // widest of its column
    EXPECT_NEAR(node->children[4]->x, c1 + gap + (c2 - runWidth(context, "e")) / 2, kEps); // centred
    EXPECT_NEAR(node->children[2]->x, c1 + c2 + 2 * gap + c3 - runWidth(context, "c"), kEps); // right
    EXPECT_NEAR(node->children[5]->x, c1 + c2 + 2 * gap, kEps);
}

TEST(MatrixLayout, RowsStandOnStrutsBackToBackCentredOnTheAxis)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a", "b"}, {"", ""}, {"x", "y"}}));
    ASSERT_TRUE(node);
    // Every row is at least a strut of 0.84 em over 0.36 em; the empty row keeps its place.
    EXPECT_NEAR(node->height, 3 * 1.2 * size, 1e-9);
    EXPECT_NEAR(node->ascent - node->height / 2, axis(size), 1e-9);
    const KTypoNode& a = *node->children[0];
    ASSERT_EQ(node->children.size(), 6u);
    const KTypoNode& x = *node->children[4];
    EXPECT_NEAR(a.y + a.ascent, 0.84 * size, 1e-9);
    EXPECT_NEAR(x.y + x.ascent - (a.y + a.ascent), 2 * 1.2 * size, 1e-9);
}

TEST(MatrixLayout, RaggedRowsLeaveTheirMissingCellsEmpty)
{
    const KLayoutContext context = makeLayoutContext(10);
    const KTypoNodePtr node = layoutMatrixOf(context, rowsOf({{"a", "b", "c"}, {"d"}}));
    ASSERT_TRUE(node);
    EXPECT_EQ(node->children.size(), 4u);
    const double widths = std::max(runWidth(context, "a"), runWidth(context, "d")) + runWidth(context, "b") +
                          runWidth(context, "c");
    EXPECT_NEAR(node->width, widths + 2 * 10, kEps);
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
}

// The left edges of the glyphs whose text is `text`, in reading order.
void glyphEdges(const KTypoNode& node, double x, const QString& text, std::vector<double>& out)
{
    x += node.x;
    if (node.kind == kTypoGlyph && node.text == text)
        out.push_back(x);
    for (const KTypoNodePtr& child : node.children)
        glyphEdges(*child, x, text, out);
}

TEST(AlignmentLayout, AlignmentPointsLineUpAcrossRows)
{
    const char* cases[] = {"\\begin{aligned} a &= b + c \\\\ d + e &= f \\end{aligned}",
                           "\\begin{aligned} x &= 1 & y &= 2 \\\\ xx &= 11 & yyy &= 22 \\end{aligned}"};
    for (const char* latex : cases) {
        SCOPED_TRACE(latex);
        const rendertest::Laid laid = rendertest::layoutLatex(latex, 10);
        ASSERT_TRUE(laid.root);
        std::vector<double> equals;
        glyphEdges(*laid.root, 0, QStringLiteral("="), equals);
        ASSERT_EQ(equals.size() % 2, 0u);
        const std::size_t perRow = equals.size() / 2;
        for (std::size_t i = 0; i < perRow; ++i)
            EXPECT_NEAR(equals[i], equals[perRow + i], 1e-9) << i;
    }
}

TEST(AlignmentLayout, CasesSetBothPartsFlushLeftAQuadApart)
{
    const double size = 10;
    const rendertest::Laid laid =
        rendertest::layoutLatex("\\begin{cases} x & x > 0 \\\\ -xyz & \\text{otherwise} \\end{cases}", size);
    ASSERT_TRUE(laid.root);
    std::vector<double> xs;
    std::vector<double> os;
    glyphEdges(*laid.root, 0, QString::fromUcs4(U"\U0001D465"), xs);
    glyphEdges(*laid.root, 0, QStringLiteral("o"), os);
    ASSERT_EQ(xs.size(), 3u);
    ASSERT_EQ(os.size(), 1u);
    // The second parts start together, a quad after the widest first part.
    const KLayoutContext context = makeLayoutContext(size);
    const double widest = layoutList(context, runs(QStringLiteral("-xyz")))->width;
    EXPECT_NEAR(xs[1], os[0], 1e-9);
    EXPECT_GT(xs[1] - xs[0], widest);
    EXPECT_NEAR(xs[1] - xs[0], widest + 1.0 * size, 0.5 * size);
}

TEST(EquationArrayLayout, WithoutRowsLaysOutToNothingAndLinesAreCentred)
{
    const double size = 10;
    const KLayoutContext context = makeLayoutContext(size);
    EXPECT_FALSE(layoutElement(context, *makeOmmlNode(OEquationArray{})));
    OEquationArray lines;
    lines.rows.push_back(runs("x"));
    lines.rows.push_back(runs("abc"));
    const KTypoNodePtr node = layoutElement(context, *makeOmmlNode(std::move(lines)));
    ASSERT_TRUE(node);
    ASSERT_EQ(node->children.size(), 2u);
    EXPECT_NEAR(node->width, runWidth(context, "abc"), kEps);
    EXPECT_NEAR(node->children[0]->x, (runWidth(context, "abc") - runWidth(context, "x")) / 2, kEps);
    EXPECT_NEAR(node->ascent - node->height / 2, axis(size), 1e-9);
}

} // namespace

TEST(MatrixLayout, CellsAreInTextStyleSoFractionsInThemShrink)
{
    const KLayoutContext context = makeLayoutContext(10);
    OFraction fraction;
    fraction.num = runs("a");
    fraction.den = runs("b");
    OMatrixRow row;
    row.push_back(makeOmmlList(makeOmmlNode(std::move(fraction))));
    std::vector<OMatrixRow> rows;
    rows.push_back(std::move(row));
    const KTypoNodePtr node = layoutMatrixOf(context, std::move(rows));
    ASSERT_TRUE(node);
    const KTypoNode* leaf = node.get();
    while (leaf->kind != kTypoGlyph && !leaf->children.empty())
        leaf = leaf->children.back().get();
    ASSERT_EQ(leaf->kind, kTypoGlyph);
    EXPECT_NEAR(leaf->fontSize, 10 * styleScale(KMathStyle::script), 1e-9);
    EXPECT_LT(styleScale(KMathStyle::script), 1.0);
}
