// Formulas of every family through LaTeX -> OMML -> LaTeX: the exact text of
// the first trip, and that a second trip gives the same text again.

#include "interface/converter_helper.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

struct TripCase {
    const char* name;
    const char* latex;
    const char* expected; // UTF-8
};

void PrintTo(const TripCase& c, std::ostream* os)
{
    *os << c.name;
}

class RoundTrip : public ::testing::TestWithParam<TripCase> {};

TEST_P(RoundTrip, IsExactAndStable)
{
    const KFormulaConverterHelper helper;
    const QString first = helper.ommlToLatex(helper.latexToOmml(QString::fromUtf8(GetParam().latex)));
    EXPECT_EQ(first, QString::fromUtf8(GetParam().expected));
    EXPECT_EQ(helper.ommlToLatex(helper.latexToOmml(first)), first);
}

INSTANTIATE_TEST_SUITE_P(
    Families, RoundTrip,
    ::testing::Values(
        TripCase{"Fraction", "\\frac{a}{b}", "\\frac{a}{b}"}, TripCase{"Scripts", "x^{2}_{i}", "x^2_i"},
        TripCase{"Root", "\\sqrt[3]{x}", "\\sqrt[3]{x}"},
        TripCase{"SquareRoot", "\\sqrt{x+1}", "\\sqrt{x+1}"},
        TripCase{"Sum", "\\sum_{i=1}^{n} i", "\\sum\\nolimits^n_{i=1}{i}"},
        TripCase{"Integral", "\\int_0^1 f", "\\int\\nolimits^1_0{f}"},
        TripCase{"Matrix", "\\begin{pmatrix} a & b \\\\ c & d \\end{pmatrix}",
                 "\\left(\\begin{matrix}\n\ta & b \\\\\n\tc & d\n\\end{matrix}\\right)"},
        TripCase{"Binomial", "\\binom{n}{k}", "\\binom{n}{k}"}, TripCase{"Accent", "\\hat{x}", "\\hat{x}"},
        TripCase{"Overline", "\\overline{x}", "\\overline{x}"},
        TripCase{"DoubleStruck", "\\mathbb{R}", "\\mathbb{R}"},
        TripCase{"Colour", "\\textcolor{red}{x}", "\\textcolor{red}{x}"},
        TripCase{"Function", "\\sin x", "\\sin{x}"},
        TripCase{"Limit", "\\lim_{n\\to\\infty} a_n", "\\lim_{n→∞}{a_n}"},
        TripCase{"AngleBrackets", "\\left\\langle x \\right\\rangle", "\\left\\langle x\\right\\rangle"},
        TripCase{"Boxed", "\\boxed{x}", "\\boxed{x}"}, TripCase{"Cancel", "\\cancel{x}", "\\cancel{x}"},
        TripCase{"Overset", "\\overset{a}{=}", "\\overset{a}{=}"},
        TripCase{"Floor", "\\left\\lfloor x \\right\\rfloor", "\\left\\lfloor x\\right\\rfloor"},
        TripCase{"Partial", "\\frac{\\partial f}{\\partial x}", "\\frac{∂f}{∂x}"},
        TripCase{"VectorArrow", "\\vec{v}", "\\overrightarrow{v}"},
        TripCase{"Bold", "\\textbf{x}", "\\textbf{x}"},
        TripCase{"Calligraphic", "\\mathcal{L}", "\\mathcal{L}"},
        TripCase{"Upright", "\\mathrm{d}x", "\\mathrm{d} x"},
        TripCase{"IntegralLimits", "\\int\\limits_0^1 x\\,dx", "\\int\\limits^1_0{x} dx"},
        TripCase{"TextFraction", "\\tfrac{1}{2}", "\\tfrac{1}{2}"},
        TripCase{"Underline", "\\underline{x}", "\\underline{x}"},
        TripCase{"BackCancel", "\\bcancel{x}", "\\bcancel{x}"},
        TripCase{"Mbox", "\\mbox{text}", "\\mbox{text}"}, TripCase{"Greek", "\\alpha+\\beta", "α+β"}),
    [](const ::testing::TestParamInfo<TripCase>& info) { return std::string(info.param.name); });

} // namespace
