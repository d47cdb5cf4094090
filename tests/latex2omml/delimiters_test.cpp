#include "handler_test_support.h"

#include <gtest/gtest.h>

#include <functional>

using namespace l2o_test;

namespace {

struct TreeCase {
    const char* name;
    std::function<KLatexNodePtr()> tree;
    QString expected;
};

void PrintTo(const TreeCase& c, std::ostream* os)
{
    *os << c.name;
}

class DelimiterTrees : public ::testing::TestWithParam<TreeCase> {};

TEST_P(DelimiterTrees, ConvertToExactOmml)
{
    EXPECT_EQ(convertTree(GetParam().tree()), GetParam().expected);
}

const QString a = run("a"), b = run("b"), c = run("c"), d = run("d");
const QStringList centred2 = {"center", "center"};
const Look bold = styled("b");

// The strut runs keep default properties whatever the surrounding style is.
const QString bigStrut = phant(run("|"));
const QString BigStrut = phant(frac("nobar", run(" "), run(" ")));
const QString biggStrut = phant(frac("nobar", frac("nobar", run(" "), run(" ")), run(" ")));

KLatexNodePtr lineBreak(const char* spacing)
{
    return C("\\\\", O(G(T(spacing))));
}

std::vector<TreeCase> environmentCases()
{
    return {
        {"Pmatrix", [] { return Env("pmatrix", L(Row(G(T("a")), G(T("b"))), Row(G(T("c")), G(T("d"))))); },
         delim("(", ")", matrix(centred2, {{a, b}, {c, d}}))},
        {"EmptyMatrixHasOneEmptyCell", [] { return Env("matrix", {}); }, matrix({"center"}, {{""}})},
        {"UnequalRowsAreNotPadded",
         [] { return Env("bmatrix", L(Row(G(T("a")), G(T("b")), G(T("c"))), Row(G(T("d"))))); },
         delim("[", "]", matrix({"center", "center", "center"}, {{a, b, c}, {d}}))},
        {"SpacedLineBreakIsAnEmptyCell",
         [] { return Env("vmatrix", L(Row(G(T("a")), lineBreak("2pt")), Row(G(T("b"))))); },
         delim("|", "|", matrix(centred2, {{a, ""}, {b}}))},
        {"NullCellIsEmpty", [] { return Env("Vmatrix", L(Row(G(T("a")), nullptr))); },
         delim(u8"\u2016", u8"\u2016", matrix(centred2, {{a, ""}}))},
        {"NonRowBodyNodeIsOneCell", [] { return Env("smallmatrix", L(G(T("a")), nullptr, T("b"))); },
         matrix({"center"}, {{a}, {b}})},
        {"ArraySpecificationIsIgnored",
         [] { return Env("array", L(Row(G(T("a")), G(T("b")))), Args_(A(G(T("cc"))))); },
         matrix(centred2, {{a, b}})},
        {"StarredMatrixKeepsFences", [] { return Env("pmatrix*", L(Row(G(T("a")))), Args_(O(G(T("r"))))); },
         delim("(", ")", matrix({"center"}, {{a}}))},
        {"SmallBracketMatrix", [] { return Env("smallbmatrix", L(Row(G(T("a"))))); },
         delim("[", "]", matrix({"center"}, {{a}}))},
        {"MatrixTakesTheCurrentStyle", [] { return C("mathbf", A(G(Env("matrix", L(Row(G(T("a")))))))); },
         matrix({"center"}, {{run("a", bold)}}, ctrl(bold))},
        {"Cases",
         [] {
             return Env("cases", L(Row(G(T("x")), G(T("x>0"))), Row(G(T("-x")), G(T("x"), C("le"), T("0")))));
         },
         delim("{", "", eqArr({run("x") + run("x&gt;0"), run("-x") + run(u8"x\u22640")}))},
        {"CasesFencesTakeTheCurrentStyle", [] { return C("mathbf", A(G(Env("dcases", L(Row(G(T("a")))))))); },
         delim("{", "", eqArr({run("a", bold)}, ctrl(bold)), ctrl(bold))},
        {"RightCases", [] { return Env("rcases", L(Row(G(T("a"))), Row(G(T("b"))))); },
         delim("", "}", eqArr({a, b}))},
        {"EmptyCases", [] { return Env("cases", {}); }, delim("{", "", eqArr({""}))},
        {"Aligned",
         [] { return Env("aligned", L(Row(G(T("a")), G(T("=b"))), Row(G(T("c")), G(T("=d")), G(T("e"))))); },
         matrix({"right", "left", "right"}, {{a, run("=b")}, {c, run("=d"), run("e")}})},
        {"AlignStarAndGatherAndSplit",
         [] {
             return G(Env("align*", L(Row(G(T("a"))))), Env("gather", L(Row(G(T("b"))))),
                      Env("split", L(Row(G(T("c")), G(T("d"))))));
         },
         matrix({"right"}, {{a}}) + matrix({"right"}, {{b}}) + matrix({"right", "left"}, {{c, d}})},
        {"EnvironmentWithoutTableEntry", [] { return Env("Bmatrix", L(G(T("a")))); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Environments, DelimiterTrees, ::testing::ValuesIn(environmentCases()),
                         [](const auto& info) { return std::string(info.param.name); });

std::vector<TreeCase> matrixCommandCases()
{
    return {
        {"Pmatrix", [] { return C("pmatrix", A(G(Row(G(T("a")), G(T("b"))), Row(G(T("c")), G(T("d")))))); },
         delim("(", ")", matrix(centred2, {{a, b}, {c, d}}))},
        {"BraceMatrixCommand", [] { return C("Bmatrix", A(G(Row(G(T("a")))))); },
         delim("{", "}", matrix({"center"}, {{a}}))},
        {"PlainMatrixGetsSpaceFences", [] { return C("matrix", A(G(Row(G(T("a")))))); },
         delim(" ", " ", matrix({"center"}, {{a}}))},
        {"DoubleBars", [] { return C("Vmatrix", A(G(Row(G(T("a")))))); },
         delim(u8"\u2016", u8"\u2016", matrix({"center"}, {{a}}))},
        {"EmptyGroup", [] { return C("bmatrix", A(G())); }, delim("[", "]", matrix({"center"}, {{""}}))},
        {"ArgumentThatIsNotAGroup", [] { return C("vmatrix", A(T("ab"))); },
         delim("|", "|", matrix({"center"}, {{run("ab")}}))},
        {"WithoutArgument", [] { return C("pmatrix"); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(MatrixCommands, DelimiterTrees, ::testing::ValuesIn(matrixCommandCases()),
                         [](const auto& info) { return std::string(info.param.name); });

std::vector<TreeCase> bigDelimiterCases()
{
    return {
        {"PairAroundContent", [] { return G(C("bigl", A(T("("))), T("x"), C("bigr", A(T(")")))); },
         delim("(", "", bigStrut) + run("x") + delim("", ")", bigStrut)},
        {"PlainFormOpens", [] { return C("big", A(T("["))); }, delim("[", "", bigStrut)},
        {"MiddleFormOpens", [] { return C("bigm", A(T("|"))); }, delim("|", "", bigStrut)},
        {"BigStrut", [] { return C("Bigl", A(T("("))); }, delim("(", "", BigStrut)},
        {"BigMiddle", [] { return C("Bigm", A(T("/"))); }, delim("/", "", BigStrut)},
        {"BiggStrut", [] { return C("biggr", A(T(")"))); }, delim("", ")", biggStrut)},
        {"BiggPlain", [] { return C("bigg", A(T("("))); }, delim("(", "", biggStrut)},
        {"BiggestStrut", [] { return C("Biggl", A(T("("))); }, delim("(", "", biggStrut)},
        {"BiggestMiddle", [] { return C("Biggm", A(T("("))); }, delim("(", "", biggStrut)},
        {"BiggestClosing", [] { return C("Biggr", A(T("]"))); }, delim("", "]", biggStrut)},
        {"EscapedDoubleBar", [] { return C("bigl", A(C("|"))); }, delim(u8"\u2016", "", bigStrut)},
        {"DotStaysADot", [] { return C("Bigr", A(T("."))); }, delim("", ".", BigStrut)},
        {"StrutIgnoresTheStyle", [] { return C("mathbf", A(G(C("bigl", A(T("(")))))); },
         delim("(", "", bigStrut)},
        {"ArgumentConvertingToNothing", [] { return C("big", A(G())); }, ""},
        {"WithoutArgument", [] { return C("Big"); }, ""},
        {"FirstNodeNotARunPassesThrough", [] { return C("big", A(G(C("frac", A(T("a")), A(T("b")))))); },
         frac("", a, b)},
    };
}

INSTANTIATE_TEST_SUITE_P(BigDelimiters, DelimiterTrees, ::testing::ValuesIn(bigDelimiterCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(DelimiterTables, ManyRowsAreKeptInOrder)
{
    KLatexNodeList rows;
    QStringList expected;
    std::vector<QStringList> expectedRows;
    for (int i = 0; i < 500; ++i) {
        rows.push_back(Row(G(T(QString::number(i)))));
        expectedRows.push_back({run(QString::number(i))});
    }
    EXPECT_EQ(convertTree(Env("matrix", std::move(rows))), matrix({"center"}, expectedRows));
}

TEST(DelimiterTables, NonBmpCellsSurvive)
{
    const QString clef = QString::fromUtf8(u8"\U0001D11E");
    EXPECT_EQ(convertTree(Env("pmatrix", L(Row(G(T(clef)), G(T(clef)))))),
              delim("(", ")", matrix(centred2, {{run(clef), run(clef)}})));
}

} // namespace
