// The converter on models that OMML text cannot express: null entries, values
// outside their enumerations, colours with alpha, and nesting or sizes beyond
// what the reader accepts.

#include "latex/latex_writer.h"
#include "omml2latex/omml_to_latex.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

KOmmlNodePtr run(const QString& text, const OWordRunProperties& wordProps = {})
{
    return makeOmmlNode(ORun{text, {}, wordProps});
}

KOmmlNodeList one(const QString& text)
{
    return makeOmmlList(run(text));
}

// The LaTeX text of a converted tree, "null" when the converter gives none.
QString latexOf(const KLatexNodePtr& tree)
{
    return tree ? KLatexWriter::write(tree.get()) : QStringLiteral("null");
}

QString convert(const KOmmlNodePtr& node)
{
    return latexOf(KOmmlToLatexConverter().convert(node.get()));
}

KOmmlNodePtr coloured(const QColor& colour)
{
    OWordRunProperties props;
    props.color = colour;
    return run("x", props);
}

TEST(ConvertsModel, ValuesTextCannotReach)
{
    OFraction f;
    f.num = one("a");
    f.den = one("b");
    f.type = static_cast<OFractionType>(9);
    ORadical root;
    root.e = one("x");
    root.deg = makeOmmlList(KOmmlNodePtr());
    OMatrix matrix;
    matrix.rows.push_back(OMatrixRow{});
    const std::pair<KOmmlNodePtr, QString> cases[] = {
        {makeOmmlNode(OMathParagraph{makeOmmlNode(OMathEquation{one("x")})}), "null"},
        {makeOmmlNode(OMathEquation{makeOmmlList(KOmmlNodePtr(), run("x"), KOmmlNodePtr())}), "x"},
        {run("\t\n\r\v\f"), "null"},
        // Spaces a reader sees keep their width; line layout characters do not show.
        {run(" \t\n"), "\\ "},
        {run(u8"\u2003\u2003\u2003\u00A0"), "\\qquad \\quad ~"},
        {run(u8"\u3000\u2000\u2006\u205F"), "\\quad \\enspace\\,\\:"},
        {makeOmmlNode(std::move(f)), "\\frac{a}{b}"},
        {makeOmmlNode(std::move(root)), "\\sqrt[]{x}"},
        // No blank line, which TeX would take for the end of a paragraph.
        {makeOmmlNode(std::move(matrix)), "\\begin{matrix}\n\\end{matrix}"},
        {coloured(QColor(0, 0, 0, 128)), "\\textcolor{black}{x}"},
        {coloured(QColor()), "\\textcolor{}{x}"},
    };
    for (const auto& [node, expected] : cases)
        EXPECT_EQ(convert(node), expected);
}

TEST(ConvertsModel, ListsDropBlanksAndNullsAndUnwrapOne)
{
    KOmmlToLatexConverter converter;
    EXPECT_EQ(converter.convert(nullptr), nullptr);
    const KLatexNodePtr empty = converter.convertList({});
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(latexOf(empty), "");
    EXPECT_EQ(latexOf(converter.convertList(makeOmmlList(run("\n"), run("x")))), "x");
    EXPECT_EQ(latexOf(converter.convertList(makeOmmlList(run("\t"), KOmmlNodePtr()))), "");
}

// A chain of phantoms `depth` deep, dismantled iteratively so that neither
// building nor destroying the model recurses.
struct PhantomChain {
    explicit PhantomChain(int depth) : root(run("x"))
    {
        for (int i = 0; i < depth; ++i)
            root = makeOmmlNode(OPhantom{makeOmmlList(std::move(root)), {}, false});
    }
    ~PhantomChain()
    {
        while (root) {
            KOmmlNodePtr next;
            if (auto* p = ommlAs<OPhantom>(root.get()); p && !p->e.empty())
                next = std::move(p->e.front());
            root = std::move(next);
        }
    }
    KOmmlNodePtr root;
};

int countPhantoms(const KLatexNode* node)
{
    int count = 0;
    for (const KLatexCommand* c;
         (c = latexAs<KLatexCommand>(node)) && c->name == "phantom" && c->args.size() == 1;
         node = c->args.front().node.get())
        ++count;
    return count;
}

TEST(ConvertsModel, DepthGuardCutsOnlyHostileNesting)
{
    KOmmlToLatexConverter converter;
    EXPECT_EQ(countPhantoms(converter.convert(PhantomChain(50).root.get()).get()), 50);
    const KLatexNodePtr tree = converter.convert(PhantomChain(100000).root.get());
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(countPhantoms(tree.get()), KOmmlToLatexConverter::kMaxDepth);
    // The converter is reusable after hitting the limit.
    EXPECT_EQ(latexOf(converter.convert(makeOmmlNode(OPhantom{one("y"), {}, false}).get())), "\\phantom{y}");
}

// `rows` rows, row i of cells(i) cells; the converted rows' cell counts.
std::vector<size_t> paddedRowLengths(int rows, int (*cells)(int))
{
    OMatrix m;
    for (int r = 0; r < rows; ++r)
        m.rows.push_back(OMatrixRow(cells(r)));
    for (OMatrixRow& row : m.rows)
        for (KOmmlNodeList& cell : row)
            cell = one("a");
    const KLatexNodePtr tree = KOmmlToLatexConverter().convert(makeOmmlNode(std::move(m)).get());
    std::vector<size_t> lengths;
    if (const auto* env = latexAs<KLatexEnv>(tree.get()))
        for (const KLatexNodePtr& row : env->body)
            lengths.push_back(latexAs<KLatexRow>(row.get())->cells.size());
    return lengths;
}

TEST(ConvertsModel, PadsMatrixRowsOnlyWithinABudget)
{
    // 500 rows of up to 500 cells are padded.
    EXPECT_EQ(paddedRowLengths(500, [](int r) { return r + 1; }), std::vector<size_t>(500, 500));
    // One row of 3000 cells over 3000 rows of one: padding would need nine
    // million cells, so the rows keep their own lengths.
    std::vector<size_t> expected(3001, 1);
    expected[0] = 3000;
    EXPECT_EQ(paddedRowLengths(3001, [](int r) { return r == 0 ? 3000 : 1; }), expected);
}

} // namespace
