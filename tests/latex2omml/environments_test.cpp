// Every environment people type: the OMML structure each converts to, and that no cell is lost.
#include "omml_text.h"

#include <QRegularExpression>

using namespace omml_text;

namespace {

const QString a = r("a"), b = r("b"), c = r("c"), dd = r("d");
// Where two cells of an equation line meet.
const QString amp = r("&amp;");
const QString kDown = QStringLiteral("\u2193"), kUp = QStringLiteral("\u2191"),
              kRight = QStringLiteral("\u2192");
const QStringList rl2 = {"right", "left"}, rl4 = {"right", "left", "right", "left"};
const QStringList centre2 = {"center", "center"};
const QString BigStrut = phant(frac(r(" "), r(" "), "noBar"), {"zeroWid"});

// A two-by-two body a b / c d, with the line break and cell separators of the environment.
QString twoByTwo(const QString& name, const QString& arguments = QString())
{
    return QStringLiteral("\\begin{%1}%2a&b\\\\c&d\\end{%1}").arg(name, arguments);
}

INSTANTIATE_TEST_SUITE_P(
    Displays, LatexToOmml,
    ::testing::Values(
        // A displayed equation is its content; lines broken in it are centred lines.
        LatexCase{"\\begin{equation}a+b\\end{equation}", r("a+b")},
        LatexCase{"\\begin{equation*}\\frac{a}{b}\\end{equation*}", frac(a, b)},
        LatexCase{"\\begin{multline}a\\\\b\\end{multline}", eqArr({a, b})},
        LatexCase{"\\begin{multline*}a+\\\\b\\\\c\\end{multline*}", eqArr({r("a+"), b, c})},
        LatexCase{"\\begin{gathered}a\\\\b\\end{gathered}", eqArr({a, b})},
        LatexCase{"\\begin{gather*}a\\\\b\\end{gather*}", matrix({"right"}, {{a}, {b}})},
        // The alignment environments: columns flush right against flush left, in pairs.
        LatexCase{"\\begin{align}a&=b\\\\c&=d\\end{align}", matrix(rl2, {{a, r("=b")}, {c, r("=d")}})},
        LatexCase{"\\begin{split}a&b\\end{split}", matrix(rl2, {{a, b}})},
        LatexCase{"\\begin{alignat}{2}a&b&c&d\\end{alignat}", matrix(rl4, {{a, b, c, dd}})},
        LatexCase{"\\begin{alignat*}{2}a&b&c&d\\end{alignat*}", matrix(rl4, {{a, b, c, dd}})},
        LatexCase{"\\begin{alignedat}{2}a&b&c&d\\end{alignedat}", matrix(rl4, {{a, b, c, dd}})},
        LatexCase{"\\begin{flalign}a&b\\end{flalign}", matrix(rl2, {{a, b}})},
        LatexCase{"\\begin{flalign*}a&b\\end{flalign*}", matrix(rl2, {{a, b}})},
        LatexCase{"\\begin{eqnarray*}a&=&b\\\\c&<&d\\end{eqnarray*}",
                  matrix({"right", "center", "left"}, {{a, r("="), b}, {c, r("&lt;"), dd}})}));

INSTANTIATE_TEST_SUITE_P(
    Matrices, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\begin{Bmatrix}a&b\\\\c&d\\end{Bmatrix}",
                  d("{", "}", matrix(centre2, {{a, b}, {c, dd}}))},
        LatexCase{"\\begin{Bmatrix*}a\\end{Bmatrix*}", d("{", "}", matrix({"center"}, {{a}}))},
        // The alignment option of the starred matrices justifies every column.
        LatexCase{"\\begin{matrix*}[r]a&b\\end{matrix*}", matrix({"right", "right"}, {{a, b}})},
        LatexCase{"\\begin{pmatrix*}[l]a&b\\end{pmatrix*}", d("(", ")", matrix({"left", "left"}, {{a, b}}))},
        LatexCase{"\\begin{bmatrix*}[c]a\\end{bmatrix*}", d("[", "]", matrix({"center"}, {{a}}))},
        LatexCase{"\\begin{vmatrix*}[r]a\\end{vmatrix*}", d("|", "|", matrix({"right"}, {{a}}))},
        LatexCase{"\\begin{Vmatrix*}[r]a\\end{Vmatrix*}",
                  d(QStringLiteral("\u2016"), QStringLiteral("\u2016"), matrix({"right"}, {{a}}))},
        LatexCase{"\\begin{Bmatrix*}[r]a\\end{Bmatrix*}", d("{", "}", matrix({"right"}, {{a}}))},
        LatexCase{"\\begin{matrix*}a&b\\end{matrix*}", matrix(centre2, {{a, b}})},
        LatexCase{"\\begin{smallmatrix}a&b\\\\c&d\\end{smallmatrix}", matrix(centre2, {{a, b}, {c, dd}})},
        // Array: the column format justifies; rules show nothing and take no cell.
        LatexCase{"\\begin{array}{l|r}a&b\\\\\\hline c&d\\end{array}",
                  matrix({"left", "right"}, {{a, b}, {c, dd}})},
        LatexCase{"\\begin{array}{|c:c|}\\hline a&b\\\\\\hdashline c&d\\\\\\hline\\end{array}",
                  matrix(centre2, {{a, b}, {c, dd}})},
        LatexCase{"\\begin{array}{*{2}{r}l}a&b&c\\end{array}",
                  matrix({"right", "right", "left"}, {{a, b, c}})},
        LatexCase{"\\begin{array}{@{}p{2cm}>{\\bf}c}a&b\\end{array}", matrix({"left", "center"}, {{a, b}})},
        LatexCase{"\\begin{array}{cc}a&b\\\\\\cline{1-2}c&d\\end{array}", matrix(centre2, {{a, b}, {c, dd}})},
        LatexCase{"\\begin{subarray}{l}a\\\\b\\end{subarray}", matrix({"left"}, {{a}, {b}})},
        // A column format shorter than the rows leaves the other columns centred.
        LatexCase{"\\begin{array}{r}a&b\\end{array}", matrix({"right", "center"}, {{a, b}})}));

INSTANTIATE_TEST_SUITE_P(
    Cases, LatexToOmml,
    ::testing::Values(LatexCase{"\\begin{cases*}a&b\\end{cases*}", d("{", "", eqArr({a + amp + b}))},
                      // In cases* the text column switches back to math between dollars.
                      LatexCase{"\\begin{cases*}a&if $b$\\end{cases*}", d("{", "", eqArr({a + amp + r("if") + b}))},
                      LatexCase{"\\begin{dcases}a&b\\\\c\\end{dcases}", d("{", "", eqArr({a + amp + b, c}))},
                      LatexCase{"\\begin{rcases}a\\\\b\\end{rcases}", d("", "}", eqArr({a, b}))},
                      LatexCase{"\\begin{drcases}a&b\\\\c&d\\end{drcases}",
                                d("", "}", eqArr({a + amp + b, c + amp + dd}))}));

// The arrows of a commutative diagram sit between the objects on one grid.
INSTANTIATE_TEST_SUITE_P(
    Diagrams, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\begin{CD}a@>>>b\\end{CD}", matrix({"center", "center", "center"}, {{a, r(kRight), b}})},
        LatexCase{"\\begin{CD}a@>f>>b\\\\@VVV@AgAhA\\\\c@<<<d\\end{CD}",
                  matrix({"center", "center", "center"},
                         {{a, groupChr(kRight, "bot", "top", r("f")), b},
                          {d(kDown, "", BigStrut), "", r("g") + d(kUp, "", BigStrut) + r("h")},
                          {c, r(QStringLiteral("\u2190")), dd}})},
        LatexCase{"\\begin{CD}a@=b\\\\@|@.\\end{CD}",
                  matrix({"center", "center", "center"},
                         {{a, r("="), b}, {d(QStringLiteral("\u2016"), "", BigStrut), "", ""}})},
        // An @ that starts no arrow is a character of its cell.
        LatexCase{"\\begin{CD}a@b\\end{CD}", matrix({"center"}, {{r("a@b")}})}));

INSTANTIATE_TEST_SUITE_P(UnknownEnvironments, LatexToOmml,
                         ::testing::Values(
                             // An environment we do not know keeps its content, its cells and its rows.
                             LatexCase{"\\begin{foo}a+b\\end{foo}", r("a+b")},
                             LatexCase{"\\begin{foo}a&b\\\\c\\end{foo}", matrix(centre2, {{a, b}, {c}})},
                             LatexCase{"\\begin{tabular}{ll}a&b\\end{tabular}", matrix(centre2, {{a, b}})}));

// Every environment, written with four cells: each cell's letter is in the OMML, in order, and
// nothing of the markup (& or \\) shows as text.
class KeepsEveryCell : public ::testing::TestWithParam<const char*> {};

TEST_P(KeepsEveryCell, FourCellsInOrder)
{
    const QString name = QString::fromUtf8(GetParam());
    QString arguments;
    if (name == QLatin1String("array") || name == QLatin1String("subarray"))
        arguments = QStringLiteral("{c|c}");
    else if (name.startsWith(QLatin1String("alignat")) || name == QLatin1String("alignedat"))
        arguments = QStringLiteral("{1}");
    else if (name.endsWith(QLatin1Char('*')) && name.contains(QLatin1String("matrix")))
        arguments = QStringLiteral("[r]");
    const QString omml = convertLatex(twoByTwo(name, arguments));
    QString texts;
    const QRegularExpression text(QStringLiteral("<m:t>([^<]*)</m:t>"));
    for (auto match = text.globalMatch(omml); match.hasNext();)
        texts += match.next().captured(1);
    // Lines of an equation array mark where their cells meet with `&`.
    texts.remove(QStringLiteral("&amp;"));
    EXPECT_EQ(texts, QStringLiteral("abcd")) << omml.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Environments, KeepsEveryCell,
    ::testing::Values("equation", "equation*", "multline", "multline*", "gather", "gather*", "gathered",
                      "split", "align", "align*", "aligned", "alignat", "alignat*", "alignedat", "flalign",
                      "flalign*", "eqnarray", "eqnarray*", "matrix", "matrix*", "pmatrix", "pmatrix*",
                      "bmatrix", "bmatrix*", "Bmatrix", "Bmatrix*", "vmatrix", "vmatrix*", "Vmatrix",
                      "Vmatrix*", "smallmatrix", "smallpmatrix", "smallbmatrix", "cases", "cases*", "dcases",
                      "dcases*", "rcases", "drcases", "subarray", "array", "CD", "unknown", "tabular"));

TEST(Environments, MatrixCellsAreCellsNotOneRun)
{
    // Bmatrix used to run its cells into one.
    EXPECT_EQ(convertLatex(twoByTwo("Bmatrix")), d("{", "}", matrix(centre2, {{a, b}, {c, dd}})));
}

TEST(Environments, HostileBodies)
{
    // Unclosed, mismatched, deeply nested and huge bodies convert without losing what they hold.
    EXPECT_EQ(convertLatex("\\begin{CD}a@>"), matrix({"center", "center", "center"}, {{a, r(kRight), ""}}));
    EXPECT_EQ(convertLatex("\\begin{CD}@>\\end{CD}"),
              matrix({"center", "center", "center"}, {{"", r(kRight), ""}}));
    EXPECT_EQ(convertLatex("\\begin{CD}@V\\end{CD}"), matrix({"center"}, {{d(kDown, "", BigStrut)}}));
    EXPECT_EQ(convertLatex("\\begin{array}{*{999999}{c}}a\\end{array}"), matrix({"center"}, {{a}}));
    EXPECT_EQ(convertLatex("\\begin{array}{*{3}{*{3}{*{3}{*{3}{*{3}{l}}}}}}a\\end{array}"),
              matrix({"left"}, {{a}}));
    EXPECT_EQ(convertLatex("\\begin{array}{{{{"), matrix({"center"}, {{""}}));
    EXPECT_EQ(convertLatex("\\begin{matrix*}[\\end{matrix*}"), matrix({"center"}, {{""}}));
    QString wide = QStringLiteral("\\begin{foo}");
    for (int i = 0; i < 300; ++i)
        wide += QStringLiteral("x&");
    wide += QStringLiteral("\\end{foo}");
    const QString omml = convertLatex(wide);
    EXPECT_EQ(omml.count(QStringLiteral("<m:e>")), 300);
    QString nested = QStringLiteral("x");
    for (int i = 0; i < 400; ++i)
        nested = QStringLiteral("\\begin{CD}%1@>>>\\end{CD}").arg(nested);
    EXPECT_TRUE(convertLatex(nested).startsWith(QStringLiteral("<m:m>")));
}

} // namespace
