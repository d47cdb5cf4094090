#include "omml_text.h"

using namespace omml_text;

namespace {

const QString a = r("a"), b = r("b"), c = r("c"), dd = r("d"), kDoubleBar = QStringLiteral("\u2016");
const QStringList centre = {"center"}, centre2 = {"center", "center"};
const Look bold = sty("b");

// The strut runs keep default properties whatever the surrounding style is.
const QString bigStrut = phant(r("|"), {"zeroWid"});
const QString BigStrut = phant(frac(r(" "), r(" "), "noBar"), {"zeroWid"});
const QString biggStrut = phant(frac(frac(r(" "), r(" "), "noBar"), r(" "), "noBar"), {"zeroWid"});

INSTANTIATE_TEST_SUITE_P(
    Environments, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\begin{pmatrix} a & b \\\\ c & d \\end{pmatrix}",
                  d("(", ")", matrix(centre2, {{a, b}, {c, dd}}))},
        LatexCase{"\\begin{matrix}\\end{matrix}", matrix(centre, {{""}})},
        LatexCase{"\\begin{bmatrix}a&b&c\\\\d\\end{bmatrix}",
                  d("[", "]", matrix({"center", "center", "center"}, {{a, b, c}, {dd}}))},
        // The spacing of the line break travels as an extra cell, which converts to nothing.
        LatexCase{"\\begin{vmatrix}a\\\\[2pt]b\\end{vmatrix}", d("|", "|", matrix(centre2, {{a, ""}, {b}}))},
        LatexCase{"\\begin{pmatrix}a\\\\\\end{pmatrix}", d("(", ")", matrix(centre, {{a}, {""}}))},
        LatexCase{"\\begin{array}{cc}a&b\\end{array}", matrix(centre2, {{a, b}})},
        LatexCase{"\\mathbf{\\begin{matrix}a\\end{matrix}}", matrix(centre, {{r("a", bold)}}, ctrlOf(bold))},
        LatexCase{"\\begin{cases} x & x>0 \\\\ -x & x\\le 0 \\end{cases}",
                  d("{", "", eqArr({r("x") + r("&amp;") + r("x&gt;0"), r("-x") + r("&amp;") + r(QStringLiteral("x\u22640"))}))},
        LatexCase{"\\mathbf{\\begin{dcases}a\\end{dcases}}",
                  d("{", "", eqArr({r("a", bold)}, ctrlOf(bold)), ctrlOf(bold))},
        LatexCase{"\\begin{cases}\\end{cases}", d("{", "", eqArr({""}))},
        LatexCase{"\\begin{aligned}a&=b\\\\[2pt]c\\end{aligned}",
                  matrix({"right", "left", "right"}, {{a, r("=b"), ""}, {c}})},
        LatexCase{"\\begin{align*}a\\end{align*}\\begin{gather}b\\end{gather}\\begin{split}c&d\\end{split}",
                  matrix({"right"}, {{a}}) + matrix({"right"}, {{b}}) +
                      matrix({"right", "left"}, {{c, dd}})}));

INSTANTIATE_TEST_SUITE_P(MatrixCommands, LatexToOmml,
                         ::testing::Values(LatexCase{"\\pmatrix{a&b\\cr c&d}",
                                                     d("(", ")", matrix(centre2, {{a, b}, {c, dd}}))},
                                           LatexCase{"\\matrix{a}", d(" ", " ", matrix(centre, {{a}}))},
                                           LatexCase{"\\bmatrix{}", d("[", "]", matrix(centre, {{""}}))},
                                           LatexCase{"\\matrix x", r("x")}));

INSTANTIATE_TEST_SUITE_P(
    BigDelimiters, LatexToOmml,
    ::testing::Values(LatexCase{"\\bigl{(} x \\bigr{)}",
                                d("(", "", bigStrut) + r("x") + d("", ")", bigStrut)},
                      // Without braces the delimiter is still the argument, as TeX reads it.
                      LatexCase{"\\bigl( x \\bigr)", d("(", "", bigStrut) + r("x") + d("", ")", bigStrut)},
                      LatexCase{"\\Bigl{(}", d("(", "", BigStrut)},
                      LatexCase{"\\bigg{(}", d("(", "", biggStrut)},
                      LatexCase{"\\Big{\\|}", d(kDoubleBar, "", BigStrut)}, LatexCase{"\\big{}", ""},
                      LatexCase{"\\big{\\frac{a}{b}}", frac(a, b)}));

TEST(Tables, NullCellsAndEntriesAndBareArguments)
{
    const auto row = [](KLatexNodePtr first, KLatexNodePtr second) {
        return makeRow(list(std::move(first), std::move(second)));
    };
    EXPECT_EQ(convertTree(makeEnvironment("matrix", {}, list(row(group(text("a")), nullptr)))),
              matrix(centre2, {{a, ""}}));
    EXPECT_EQ(convertTree(makeEnvironment("matrix", {}, list(group(text("a")), nullptr, text("b")))),
              matrix(centre, {{a}, {b}}));
    EXPECT_EQ(convertTree(command("vmatrix", arg(text("ab")))), d("|", "|", matrix(centre, {{r("ab")}})));
    EXPECT_EQ(convertTree(command("pmatrix")), "");
}

TEST(Tables, ManyRowsAreKeptInOrder)
{
    QString source = "\\begin{matrix}";
    std::vector<QStringList> rows;
    for (int i = 0; i < 500; ++i) {
        source += QString::number(i) + "\\\\";
        rows.push_back({r(QString::number(i))});
    }
    rows.push_back({""});
    EXPECT_EQ(convertLatex(source + "\\end{matrix}"), matrix(centre, rows));
}

} // namespace
