// Commands that carry visible content convert to their natural OMML, commands
// without visible content vanish, an unknown command keeps its arguments, and
// the letters and digits of the corpus formulas reach the OMML.

#include "omml_text.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

using namespace omml_text;

namespace {

const QString kNone, a = r("a"), b = r("b"), x = r("x");
const QString nobar = QStringLiteral("noBar"), kSum = QStringLiteral("\u2211");
const Look up = sty("p");

// The runs of \ce, \pu and labels are upright.
QString u(const QString& text)
{
    return r(text, up);
}

INSTANTIATE_TEST_SUITE_P(
    StructuralCommands, LatexToOmml,
    ::testing::Values(LatexCase{"\\operatorname*{arg\\,max}_x f",
                                func(limLow(rp(QStringLiteral("arg\u2009max")), x), r("f"))},
                      LatexCase{"\\operatorname*{sup}_a^b", func(limUpp(limLow(rp("sup"), a), b), kNone)},
                      LatexCase{"\\lcm x", func(limLow(rp("lcm"), kNone), x)},
                      LatexCase{"\\dbinom{n}{k}", d("(", ")", frac(r("n"), r("k"), nobar))},
                      LatexCase{"\\nicefrac{1}{2}", frac(r("1"), r("2"), "skw")},
                      LatexCase{"\\substack{i<j\\\\k}", eqArr({r("i&lt;j"), r("k")})},
                      LatexCase{"\\sum_{\\substack{a\\\\b\\\\}}",
                                nary(kSum, true, false, true, eqArr({a, b}), kNone, kNone)},
                      LatexCase{"\\substack{a}", a},
                      LatexCase{"\\phantom{x}\\hphantom{a}\\vphantom{b}",
                                phant(x) + phant(a, {"zeroAsc", "zeroDesc"}) + phant(b, {"zeroWid"})},
                      LatexCase{"\\smallmatrix{a}", matrix({"center"}, {{a}})},
                      LatexCase{"\\begin{gathered}a\\\\b\\end{gathered}", eqArr({a, b})},
                      // eqnarray sets its relation centred between a right and a left column.
                      LatexCase{"\\begin{eqnarray}a&=&b\\end{eqnarray}",
                                matrix({"right", "center", "left"}, {{a, r("="), b}})}));

INSTANTIATE_TEST_SUITE_P(
    Symbols, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\boxplus\\boxminus\\boxdot\\circledast\\circledcirc\\circleddash\\shortmid\\nshortmid",
                  r(QStringLiteral("\u229E\u229F\u22A1\u229B\u229A\u229D\u2223\u2224"))},
        LatexCase{"\\unicode{x2208}\\unicode{8712}\\unicode{X2209}", r(QStringLiteral("\u2208\u2208\u2209"))},
        LatexCase{"\\unicode{x1D400}", r(QString::fromUtf8("\xF0\x9D\x90\x80"))},
        LatexCase{"\\unicode{xD800}\\unicode{x110000}", r("xD800x110000")}));

INSTANTIATE_TEST_SUITE_P(
    StylesAndMarks, LatexToOmml,
    ::testing::Values(LatexCase{"\\bm{x}", r("x", sty("bi"))}, LatexCase{"\\mathbf{\\mathnormal{x}}", x},
                      LatexCase{"\\framebox{x}", frame(x)}, LatexCase{"\\makebox{x}", box(r("x", nor()))},
                      LatexCase{"\\bbox[red]{x}", x}, LatexCase{"\\bbox[border:1px]{x}", frame(x)},
                      // Only the letters keep the upright style: digits and signs look the same.
                      LatexCase{"\\tag{1.2}", r("(1.2)")},
                      LatexCase{"x\\eqref{a}\\ref{b}", r("x(") + u("a") + r(")") + u("b")},
                      LatexCase{"x\\label{a}\\nonumber\\notag\\allowbreak\\nobreak", x}));

INSTANTIATE_TEST_SUITE_P(
    Chemistry, LatexToOmml,
    ::testing::Values(LatexCase{"\\ce{H2O}", sSub(u("H"), u("2")) + u("O")},
                      LatexCase{"\\ce{A->B<=>C}", u("A") + r(QStringLiteral("\u2192")) + u("B") +
                                                      r(QStringLiteral("\u21CC")) + u("C")},
                      LatexCase{"\\ce{SO4^{2-}}", u("S") + sSubSup(u("O"), u("4"), r("2-"))},
                      LatexCase{"\\ce{(OH)2}", r("(") + u("OH") + sSub(u(")"), u("2"))},
                      LatexCase{"\\pu{kJ/mol}", u("kJ") + r("/") + u("mol")}));

// An unknown command stays visible as its name and keeps what it was given.
INSTANTIATE_TEST_SUITE_P(UnknownCommands, LatexToOmml,
                         ::testing::Values(LatexCase{"\\foo{x}", r("\\foox")},
                                           LatexCase{"\\foo[a]{b}", r("\\foo[a]b")},
                                           LatexCase{"\\foo{\\frac{a}{b}}", r("\\foo") + frac(a, b)}));

// Commands the parser does not know but the command table does convert by their row:
// what TeX shows, never their name.
INSTANTIATE_TEST_SUITE_P(CommandsUnknownToTheParser, LatexToOmml,
                         ::testing::Values(LatexCase{"\\varphi\\colon[0,1]\\to[0,1]",
                                                     r(QStringLiteral("\u03C6:[0,1]\u2192[0,1]"))},
                                           LatexCase{"a\\textsubscript{r}", a + sSub(kNone, r("r"))},
                                           LatexCase{"x\\textsuperscript{th}", x + sSup(kNone, r("th"))},
                                           LatexCase{"\\smash[t]{x}", phant(x, {"zeroAsc"}, true)},
                                           LatexCase{"\\sgn x", func(rp("sgn"), x)},
                                           LatexCase{"x\\medskip\\mathstrut\\pagecolor{Black}", x},
                                           LatexCase{"x\\hfill y", r(QStringLiteral("x\u2003y"))},
                                           LatexCase{"a\\eqno(1)", r("a(1)")},
                                           LatexCase{"\\uppercase{h}\\MakeLowercase{AB}", r("Hab")},
                                           LatexCase{"\\uppercase{\\frac{a}{b}c}", frac(a, b) + r("C")}));

// Size and weight switches show nothing of their own; what follows them stays.
INSTANTIATE_TEST_SUITE_P(SwitchesWithoutContent, LatexToOmml,
                         ::testing::Values(LatexCase{"\\tiny x", x}, LatexCase{"a\\Huge{b}", r("ab")},
                                           LatexCase{"\\mathrm{\\small T}", r("T", sty("p"))},
                                           LatexCase{"\\boldmath x\\unboldmath", x},
                                           LatexCase{"\\scriptsize\\frac{a}{b}", frac(a, b)}));

TEST(VisibleContent, UnknownCommandArgumentsInRenderMode)
{
    EXPECT_EQ(convertLatex("\\foo{x}", true), r("\\foo", colour("ff0000")) + x);
}

// Commands of many arguments, read as TeX reads them.
INSTANTIATE_TEST_SUITE_P(
    ManyArguments, LatexToOmml,
    ::testing::Values(LatexCase{"\\genfrac(){0pt}{}ab", d("(", ")", frac(a, b, nobar))},
                      LatexCase{"\\genfrac{}{}{}{}ab", frac(a, b)},
                      LatexCase{"\\genfrac.|{0.0em}{}ab", d("", "|", frac(a, b, nobar))},
                      LatexCase{"\\genfrac\\langle\\}{0}{}ab",
                                d(QStringLiteral("\u27E8"), "}", frac(a, b, nobar))},
                      LatexCase{"\\genfrac(){}ab", kNone},
                      LatexCase{"\\unitfrac[3]{m}{s}", r("3") + frac(r("m"), r("s"), "skw")},
                      LatexCase{"\\fcolorbox{red}{blue}{x}", frame(x)},
                      LatexCase{"\\framebox[2cm][l]{x}", frame(x)}, LatexCase{"\\makebox[2cm]{x}", box(r("x", nor()))},
                      LatexCase{"\\multicolumn{2}{c}{x}", x},
                      LatexCase{"\\definecolor{a}{rgb}{1,0,0}", kNone}));

// The lexer drops the spaces between notations; they are still found.
INSTANTIATE_TEST_SUITE_P(
    EnclosureNotations, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\enclose{circle}[color:red]{x}", frame(x)},
        LatexCase{"\\enclose{updiagonalstrike}{x}", borderBox({"strikeBLTR"}, x)},
        LatexCase{"\\enclose{horizontalstrike,verticalstrike}{x}", borderBox({"strikeH", "strikeV"}, x)},
        LatexCase{"\\enclose{box horizontalstrike}{x}", borderBox({"strikeH"}, x, kCtrl, false)},
        LatexCase{"\\enclose{topbottom}{x}", borderBox({"hideLeft", "hideRight"}, x, kCtrl, false)},
        LatexCase{"\\enclose{actuarial}{x}", borderBox({"hideBot", "hideLeft"}, x, kCtrl, false)},
        LatexCase{"\\enclose{nonsense}{x}", frame(x)}, LatexCase{"\\enclose{circle}", kNone}));

// \sideset takes the node after it as the operator it decorates.
INSTANTIATE_TEST_SUITE_P(
    MiddleDelimiterAndSideScripts, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\left(a\\middle|b\\right)", dSep("(", "|", ")", {r("a"), r("b")})},
        LatexCase{"\\left(a\\middle\\|b\\right)", dSep("(", QStringLiteral("\u2016"), ")", {r("a"), r("b")})},
        LatexCase{"\\left(a\\middle.b\\right)", dSep("(", "", ")", {r("a"), r("b")})},
        LatexCase{"\\left\\langle a\\middle|b\\middle|c\\right\\rangle",
                  dSep(QStringLiteral("\u27E8"), "|", QStringLiteral("\u27E9"), {r("a"), r("b"), r("c")})},
        // Separators that differ cannot be one delimiter's: they stay characters.
        LatexCase{"\\left(a\\middle|b\\middle\\|c\\right)", d("(", ")", r(QStringLiteral("a|b\u2016c")))},
        LatexCase{"\\middle", kNone},
        LatexCase{"\\sideset{_a^b}{_c^d}\\sum x",
                  sPre(nary(kSum, false, false, false, r("c"), r("d"), kNone), a, b) + x},
        LatexCase{"\\sideset{_a^b}{}M", sPre(r("M"), a, b)},
        LatexCase{"\\sideset{}{_c^d}M", sSubSup(r("M"), r("c"), r("d"))},
        LatexCase{"\\sideset{}{}\\sum", nary(kSum, true, true, true, kNone, kNone, kNone)},
        LatexCase{"\\sideset{}", kNone}));

// Every letter and digit a reader sees in a corpus formula reaches the OMML text. Seen are the
// letters and digits outside command names and outside the arguments that only set something up
// (environment names and column specs, colours, labels, dimensions, character codes, line-break
// spacing); they are compared without case, as \uppercase and its kin change it.
TEST(VisibleContent, CorpusLettersAndDigitsReachTheOmml)
{
    static const QRegularExpression setup(QStringLiteral(
        R"(\\begin\{(?:array|alignat\*?|alignedat|subarray)\}\s*(?:\[[^\]]*\])?\s*\{[^{}]*\}|)"
        R"(\\definecolor(?:\s*\{[^{}]*\}){3}|\\(?:begin|end|color|textcolor|colorbox|pagecolor|label|)"
        R"([hv]space\*?|kern|mkern|mskip|hskip|rule|unicode)\s*(?:\[[^\]]*\])?\s*\{[^{}]*\}|)"
        R"(\\(?:kern|mkern|mskip|hskip)\s*-?[0-9.]+\s*[a-z]{2}|\\\\\s*\[[^\]]*\]|\\[A-Za-z]+\*?)"));
    static const QRegularExpression runText(QStringLiteral("<m:t[^>]*>([^<]*)</m:t>"));
    static const QRegularExpression entity(QStringLiteral("&[a-z]+;"));
    const QDir corpus(QStringLiteral(FC_CORPUS_DIR));
    ASSERT_FALSE(corpus.entryList({QStringLiteral("*.txt")}, QDir::Files).isEmpty())
        << "the formula corpus is missing from " << FC_CORPUS_DIR;
    int formulas = 0;
    int losing = 0;
    for (const QString& name : corpus.entryList({QStringLiteral("*.txt")}, QDir::Files)) {
        QFile file(corpus.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QString& latex :
             QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
            QHash<uint, int> unmatched;
            for (const uint c : QString(latex).remove(setup).toCaseFolded().toUcs4())
                unmatched[c] += QChar::isLetterOrNumber(c);
            QString shown;
            for (auto runs = runText.globalMatch(convertLatex(latex)); runs.hasNext();)
                shown += runs.next().captured(1).remove(entity);
            for (const uint c : shown.toCaseFolded().toUcs4())
                --unmatched[c];
            ++formulas;
            losing += std::any_of(unmatched.cbegin(), unmatched.cend(), [](int n) { return n > 0; });
        }
    }
    std::printf("letters or digits lost: %d of %d corpus formulas (%.3f%%)\n", losing, formulas,
                100.0 * losing / std::max(formulas, 1));
    EXPECT_GT(formulas, 16000);
    EXPECT_LT(losing, 0.005 * formulas);
}

} // namespace
