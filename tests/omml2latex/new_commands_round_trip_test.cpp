// Every command that converts to structured OMML reads back: the LaTeX written
// for its OMML converts to the same OMML again, and that LaTeX is one TeX accepts
// (no script stacked twice on one base). Upright digits and operators are written
// without \mathrm, which they do not need; where a formula has them the OMML read
// back lacks only that style, and a second trip changes nothing.

#include "interface/converter_helper.h"
#include "tests/omml2latex/qstring_printer.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace {

struct RoundTripCase {
    const char* latex;
    const char* element; // an element the first OMML must hold, so that the row tests that structure
    bool exact = true;   // false: upright digits or operators lose their style on the way
};

void PrintTo(const RoundTripCase& c, std::ostream* os)
{
    *os << c.latex;
}

class ReadsBack : public ::testing::TestWithParam<RoundTripCase> {};

// x^a^b, x_a_b, }^a^b: a second script of the same kind right after the first.
bool hasDoubleScript(const QString& latex)
{
    static const QRegularExpression twice(
        QStringLiteral("([\\^_])(\\{[^{}]*\\}|\\\\[A-Za-z]+|[^{}\\\\])\\1"));
    return twice.match(latex).hasMatch();
}

TEST_P(ReadsBack, ToTheSameOmml)
{
    const KFormulaConverterHelper helper;
    const QString omml = helper.latexToOmml(QString::fromUtf8(GetParam().latex));
    EXPECT_TRUE(omml.contains(QString::fromUtf8(GetParam().element))) << omml.toStdString();
    const QString latex = helper.ommlToLatex(omml);
    EXPECT_FALSE(latex.isEmpty());
    EXPECT_FALSE(hasDoubleScript(latex)) << latex.toStdString();
    const QString back = helper.latexToOmml(latex);
    if (GetParam().exact)
        EXPECT_EQ(back, omml) << latex.toStdString();
    else
        EXPECT_EQ(helper.latexToOmml(helper.ommlToLatex(back)), back) << latex.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    NewCommands, ReadsBack,
    ::testing::Values(
        RoundTripCase{"\\operatorname*{arg\\,max}_x f", "<m:limLow>"},
        RoundTripCase{"\\limsup_{n} a_n", "<m:limLow>"}, RoundTripCase{"\\max_a^b x", "<m:limUpp>"},
        RoundTripCase{"\\lcm(a,b)", "<m:limLow>"}, RoundTripCase{"\\ensuremath{\\eta}", "<m:t>"},
        RoundTripCase{"\\dbinom{n}{k}", "m:val=\"noBar\""}, RoundTripCase{"{a \\atop b}", "m:val=\"noBar\""},
        RoundTripCase{"\\nicefrac{1}{2}", "m:val=\"skw\""},
        RoundTripCase{"\\sum_{\\substack{i<j\\\\k}} a_{ij}", "<m:eqArr>"},
        RoundTripCase{"\\begin{gathered}a=b\\\\c\\end{gathered}", "<m:eqArr>"},
        RoundTripCase{"\\phantom{x}\\hphantom{y}\\vphantom{z}", "<m:phant>"},
        RoundTripCase{"\\boxplus\\boxminus\\boxdot\\circledast\\circledcirc\\circleddash", "\u229E"},
        RoundTripCase{"\\idotsint f", "\u22EF"}, RoundTripCase{"\\smallmatrix{a}", "<m:m>"},
        RoundTripCase{"\\bm{x}\\mathnormal{y}", "m:val=\"bi\""}, RoundTripCase{"\\widecheck{x}", "<m:acc>"},
        RoundTripCase{"\\wideparen{xy}", "<m:groupChr>"}, RoundTripCase{"\\framebox{x}", "<m:borderBox>"},
        RoundTripCase{"\\makebox{x}", "<m:box>"},
        RoundTripCase{"\\left\\uparrow \\frac{a}{b} \\right\\Downarrow", "m:val=\"\u2191\""},
        RoundTripCase{"\\left x \\frac{a}{b} \\right y", "m:val=\"x\""},
        RoundTripCase{"\\unicode{x2208}\\unicode{x1D4D0}", "\u2208"},
        RoundTripCase{"\\ce{H2SO4 -> 2H+ + SO4^{2-}}", "<m:sSub>", false},
        RoundTripCase{"x\\tag{1.2}", "(1.2)", false},
        RoundTripCase{"\\begin{Bmatrix}a\\end{Bmatrix}", "<m:m>"},
        RoundTripCase{"\\begin{eqnarray}a&=&b\\end{eqnarray}", "<m:m>"},
        RoundTripCase{"\\begin{aligned}a&=b\\\\c&=d\\end{aligned}", "<m:m>"},
        RoundTripCase{"\\overbrace{a+b}^n", "<m:groupChr>"}));

// OMML that only some LaTeX says: pre-scripts, partial frames, strokes, scripts
// on nothing, a bare array of lines and the tensor notation of index gymnastics.
INSTANTIATE_TEST_SUITE_P(
    OmmlShapes, ReadsBack,
    ::testing::Values(RoundTripCase{"u_a^d{}_\\mu", "<m:sSub>"}, RoundTripCase{"{}^{14}_{6}C", "<m:sSubSup>"},
                      RoundTripCase{"{x_a}_b", "<m:sSub>"}, RoundTripCase{"{x^a}^b", "<m:sSup>"},
                      RoundTripCase{"\\cancel{x}+\\bcancel{y}+\\xcancel{z}", "<m:borderBox>"}));

// Names of the wider vocabulary whose OMML reads back as the same OMML.
INSTANTIATE_TEST_SUITE_P(Vocabulary, ReadsBack,
                         ::testing::Values(RoundTripCase{"\\Ket{\\psi}+\\bra{\\phi}", "<m:d>"},
                                           RoundTripCase{"\\angl{n}", "<m:borderBox>"},
                                           RoundTripCase{"\\phase{\\theta}", "<m:borderBox>"},
                                           RoundTripCase{"\\sout{ab}", "<m:borderBox>"},
                                           RoundTripCase{"\\overgroup{AB}+\\undergroup{CD}", "<m:groupChr>"},
                                           RoundTripCase{"\\underlinesegment{AB}+\\underleftrightarrow{CD}",
                                                         "<m:acc>"},
                                           RoundTripCase{"\\utilde{x}+\\overlinesegment{y}", "<m:acc>"},
                                           RoundTripCase{"{n \\brace k}+{n \\brack k}", "m:val=\"noBar\""},
                                           RoundTripCase{"\\tg x+\\argmin_x f", "<m:func>"},
                                           RoundTripCase{"\\checkmark\\yen\\maltese\\lmoustache", "<m:t>"}));

} // namespace
