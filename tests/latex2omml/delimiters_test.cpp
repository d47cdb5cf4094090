#include "handler_test_support.h"

#include <gtest/gtest.h>

using namespace l2o_test;

namespace {

class DelimiterTrees : public HandlerTrees {};

TEST_P(DelimiterTrees, ConvertToExactOmml)
{
    check();
}

const QString ra = run("a"), rb = run("b"), rc = run("c"), rd = run("d");
const QStringList centred2 = {"center", "center"};
const Look bold = styled("b");

// The strut runs keep default properties whatever the surrounding style is.
const QString bigStrut = phant(run("|"));
const QString BigStrut = phant(frac(run(" "), run(" "), "nobar"));
const QString biggStrut = phant(frac(frac(run(" "), run(" "), "nobar"), run(" "), "nobar"));

KLatexNodePtr lineBreak(const char* spacing)
{
    return command("\\\\", opt(group(text(spacing))));
}

std::vector<TreeCase> environmentCases()
{
    return {
        {"Pmatrix",
         [] {
             return env("pmatrix", list(row(group(text("a")), group(text("b"))),
                                        row(group(text("c")), group(text("d")))));
         },
         d("(", ")", matrix(centred2, {{ra, rb}, {rc, rd}}))},
        {"EmptyMatrixHasOneEmptyCell", [] { return env("matrix", {}); }, matrix({"center"}, {{""}})},
        {"UnequalRowsAreNotPadded",
         [] {
             return env("bmatrix", list(row(group(text("a")), group(text("b")), group(text("c"))),
                                        row(group(text("d")))));
         },
         d("[", "]", matrix({"center", "center", "center"}, {{ra, rb, rc}, {rd}}))},
        {"SpacedLineBreakIsAnEmptyCell",
         [] { return env("vmatrix", list(row(group(text("a")), lineBreak("2pt")), row(group(text("b"))))); },
         d("|", "|", matrix(centred2, {{ra, ""}, {rb}}))},
        {"NullCellIsEmpty", [] { return env("Vmatrix", list(row(group(text("a")), nullptr))); },
         d(u8"\u2016", u8"\u2016", matrix(centred2, {{ra, ""}}))},
        {"NonRowBodyNodeIsOneCell",
         [] { return env("smallmatrix", list(group(text("a")), nullptr, text("b"))); },
         matrix({"center"}, {{ra}, {rb}})},
        {"ArraySpecificationIsIgnored",
         [] {
             return env("array", list(row(group(text("a")), group(text("b")))), args(arg(group(text("cc")))));
         },
         matrix(centred2, {{ra, rb}})},
        {"StarredMatrixKeepsFences",
         [] { return env("pmatrix*", list(row(group(text("a")))), args(opt(group(text("r"))))); },
         d("(", ")", matrix({"center"}, {{ra}}))},
        {"SmallBracketMatrix", [] { return env("smallbmatrix", list(row(group(text("a"))))); },
         d("[", "]", matrix({"center"}, {{ra}}))},
        {"MatrixTakesTheCurrentStyle",
         [] { return command("mathbf", arg(group(env("matrix", list(row(group(text("a")))))))); },
         matrix({"center"}, {{run("a", bold)}}, ctrl(bold))},
        {"Cases",
         [] {
             return env("cases", list(row(group(text("x")), group(text("x>0"))),
                                      row(group(text("-x")), group(text("x"), command("le"), text("0")))));
         },
         d("{", "", eqArr({run("x") + run("x&gt;0"), run("-x") + run(u8"x\u22640")}))},
        {"CasesFencesTakeTheCurrentStyle",
         [] { return command("mathbf", arg(group(env("dcases", list(row(group(text("a")))))))); },
         d("{", "", eqArr({run("a", bold)}, ctrl(bold)), ctrl(bold))},
        {"RightCases", [] { return env("rcases", list(row(group(text("a"))), row(group(text("b"))))); },
         d("", "}", eqArr({ra, rb}))},
        {"EmptyCases", [] { return env("cases", {}); }, d("{", "", eqArr({""}))},
        {"Aligned",
         [] {
             return env("aligned", list(row(group(text("a")), group(text("=b"))),
                                        row(group(text("c")), group(text("=d")), group(text("e")))));
         },
         matrix({"right", "left", "right"}, {{ra, run("=b")}, {rc, run("=d"), run("e")}})},
        {"AlignStarAndGatherAndSplit",
         [] {
             return group(env("align*", list(row(group(text("a"))))),
                          env("gather", list(row(group(text("b"))))),
                          env("split", list(row(group(text("c")), group(text("d"))))));
         },
         matrix({"right"}, {{ra}}) + matrix({"right"}, {{rb}}) + matrix({"right", "left"}, {{rc, rd}})},
        {"EnvironmentWithoutTableEntry", [] { return env("Bmatrix", list(group(text("a")))); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Environments, DelimiterTrees, ::testing::ValuesIn(environmentCases()), caseName);

std::vector<TreeCase> matrixCommandCases()
{
    return {
        {"Pmatrix",
         [] {
             return command("pmatrix", arg(group(row(group(text("a")), group(text("b"))),
                                                 row(group(text("c")), group(text("d"))))));
         },
         d("(", ")", matrix(centred2, {{ra, rb}, {rc, rd}}))},
        {"BraceMatrixCommand", [] { return command("Bmatrix", arg(group(row(group(text("a")))))); },
         d("{", "}", matrix({"center"}, {{ra}}))},
        {"PlainMatrixGetsSpaceFences", [] { return command("matrix", arg(group(row(group(text("a")))))); },
         d(" ", " ", matrix({"center"}, {{ra}}))},
        {"DoubleBars", [] { return command("Vmatrix", arg(group(row(group(text("a")))))); },
         d(u8"\u2016", u8"\u2016", matrix({"center"}, {{ra}}))},
        {"EmptyGroup", [] { return command("bmatrix", arg(group())); },
         d("[", "]", matrix({"center"}, {{""}}))},
        {"ArgumentThatIsNotAGroup", [] { return command("vmatrix", arg(text("ab"))); },
         d("|", "|", matrix({"center"}, {{run("ab")}}))},
        {"WithoutArgument", [] { return command("pmatrix"); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(MatrixCommands, DelimiterTrees, ::testing::ValuesIn(matrixCommandCases()), caseName);

std::vector<TreeCase> bigDelimiterCases()
{
    return {
        {"PairAroundContent",
         [] { return group(command("bigl", arg(text("("))), text("x"), command("bigr", arg(text(")")))); },
         d("(", "", bigStrut) + run("x") + d("", ")", bigStrut)},
        {"PlainFormOpens", [] { return command("big", arg(text("["))); }, d("[", "", bigStrut)},
        {"MiddleFormOpens", [] { return command("bigm", arg(text("|"))); }, d("|", "", bigStrut)},
        {"BigStrut", [] { return command("Bigl", arg(text("("))); }, d("(", "", BigStrut)},
        {"BigMiddle", [] { return command("Bigm", arg(text("/"))); }, d("/", "", BigStrut)},
        {"BiggStrut", [] { return command("biggr", arg(text(")"))); }, d("", ")", biggStrut)},
        {"BiggPlain", [] { return command("bigg", arg(text("("))); }, d("(", "", biggStrut)},
        {"BiggestStrut", [] { return command("Biggl", arg(text("("))); }, d("(", "", biggStrut)},
        {"BiggestMiddle", [] { return command("Biggm", arg(text("("))); }, d("(", "", biggStrut)},
        {"BiggestClosing", [] { return command("Biggr", arg(text("]"))); }, d("", "]", biggStrut)},
        {"EscapedDoubleBar", [] { return command("bigl", arg(command("|"))); }, d(u8"\u2016", "", bigStrut)},
        {"DotStaysADot", [] { return command("Bigr", arg(text("."))); }, d("", ".", BigStrut)},
        {"StrutIgnoresTheStyle",
         [] { return command("mathbf", arg(group(command("bigl", arg(text("(")))))); }, d("(", "", bigStrut)},
        {"ArgumentConvertingToNothing", [] { return command("big", arg(group())); }, ""},
        {"WithoutArgument", [] { return command("Big"); }, ""},
        {"FirstNodeNotARunPassesThrough",
         [] { return command("big", arg(group(command("frac", arg(text("a")), arg(text("b")))))); },
         frac(ra, rb)},
    };
}

INSTANTIATE_TEST_SUITE_P(BigDelimiters, DelimiterTrees, ::testing::ValuesIn(bigDelimiterCases()), caseName);

class DelimiterSources : public HandlerSources {};

TEST_P(DelimiterSources, ConvertToExactOmml)
{
    check();
}

INSTANTIATE_TEST_SUITE_P(
    FromLatex, DelimiterSources,
    ::testing::Values(
        SourceCase{"\\begin{pmatrix} a & b \\\\ c & d \\end{pmatrix}",
                   d("(", ")", matrix(centred2, {{ra, rb}, {rc, rd}}))},
        SourceCase{"\\begin{matrix}\\end{matrix}", matrix({"center"}, {{""}})},
        SourceCase{"\\begin{bmatrix}a&b&c\\\\d\\end{bmatrix}",
                   d("[", "]", matrix({"center", "center", "center"}, {{ra, rb, rc}, {rd}}))},
        // The spacing of the line break travels as an extra cell, which converts to nothing.
        SourceCase{"\\begin{aligned}a&=b\\\\[2pt]c\\end{aligned}",
                   matrix({"right", "left", "right"}, {{ra, run("=b"), ""}, {rc}})},
        SourceCase{"\\begin{pmatrix}a\\\\\\end{pmatrix}", d("(", ")", matrix({"center"}, {{ra}, {""}}))},
        SourceCase{"\\begin{cases} x & x>0 \\\\ -x & x\\le 0 \\end{cases}",
                   d("{", "", eqArr({run("x") + run("x&gt;0"), run("-x") + run(u8"x\u22640")}))},
        SourceCase{"\\begin{rcases} a \\\\ b \\end{rcases}", d("", "}", eqArr({ra, rb}))},
        SourceCase{"\\begin{array}{cc}1&2\\end{array}", matrix(centred2, {{run("1"), run("2")}})},
        SourceCase{"\\begin{Bmatrix}a\\end{Bmatrix}", ""},
        SourceCase{"\\Bmatrix{a&b}", d("{", "}", matrix(centred2, {{ra, rb}}))},
        SourceCase{"\\pmatrix{a&b\\cr c&d}", d("(", ")", matrix(centred2, {{ra, rb}, {rc, rd}}))},
        SourceCase{"\\matrix{a}", d(" ", " ", matrix({"center"}, {{ra}}))},
        SourceCase{"\\matrix x", run("x")},
        SourceCase{"\\bigl{(} x \\bigr{)}", d("(", "", bigStrut) + run("x") + d("", ")", bigStrut)},
        // A delimiter written without braces is not an argument: the command gets none
        // and converts to nothing, the delimiter stays an ordinary character.
        SourceCase{"\\bigl( x \\bigr)", run("(x)")}, SourceCase{"\\Big{\\|}", d(u8"\u2016", "", BigStrut)},
        SourceCase{"\\Biggr{]}", d("", "]", biggStrut)}, SourceCase{"\\big{}", ""}));

TEST(DelimiterTables, ManyRowsAreKeptInOrder)
{
    KLatexNodeList rows;
    QStringList expected;
    std::vector<QStringList> expectedRows;
    for (int i = 0; i < 500; ++i) {
        rows.push_back(row(group(text(QString::number(i)))));
        expectedRows.push_back({run(QString::number(i))});
    }
    EXPECT_EQ(convertTree(env("matrix", std::move(rows))), matrix({"center"}, expectedRows));
}

TEST(DelimiterTables, NonBmpCellsSurvive)
{
    const QString clef = QString::fromUtf8(u8"\U0001D11E");
    EXPECT_EQ(convertTree(env("pmatrix", list(row(group(text(clef)), group(text(clef)))))),
              d("(", ")", matrix(centred2, {{run(clef), run(clef)}})));
}

} // namespace
