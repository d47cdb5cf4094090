// Formulas of every family through LaTeX -> OMML -> LaTeX: the exact text of
// the first trip, and that a second trip gives the same text again.

#include "interface/converter_helper.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

TEST(RoundTrip, IsExactAndStable)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\\frac{a}{b}", "\\frac{a}{b}"},
        {"\\sum_{i=1}^{n} i", "\\sum_{i=1}^n i"},
        {"\\int\\limits_0^1 x\\,dx", "\\int\\limits_0^1 x\\,dx"},
        {"\\int_0^1 x^2 dx", "\\int_0^1 x^2 dx"},
        {"a\\ b\\quad c\\qquad d~e\\;f\\:g", "a\\ b\\quad c\\qquad d~e\\;f\\:g"},
        {"x^{a\\ b}_{\\,c}", "x_{\\,c}^{a\\ b}"},
        {"\\enspace x\\hfill y", "\\enspace x\\quad y"},
        {"\\begin{pmatrix} a & b \\\\ c & d \\end{pmatrix}",
         "\\left(\\begin{matrix}\n\ta & b \\\\\n\tc & d\n\\end{matrix}\\right)"},
        {"\\vec{v}", "\\overrightarrow{v}"},
        {"\\mathrm{d}x", "\\mathrm{d} x"},
        {"\\textcolor{red}{x}", "\\textcolor{red}{x}"},
        {"\\sin x", "\\sin x"},
        {"\\operatorname{sgn}(x)+1", "\\operatorname{sgn}(x)+1"},
        {"\\operatorname{log} x", "\\log x"},
        {"{u_a^d}_\\mu", "{u_a^d}_\\mu"},
        {"0.304^{+0.015}", "0.304^{+0.015}"},
        {"x \\in \\mathbb{R}, \\theta \\le \\infty", "x\\in\\mathbb{R},\\theta\\le\\infty"},
        {"a \\not\\in B", "a\\not\\in B"},
        {"\\lim_{n\\to\\infty} a_n", "\\lim_{n\\rightarrow\\infty} a_n"},
        {"\\left\\langle x \\right\\rangle", "\\left\\langle x\\right\\rangle"},
        {"\\frac{\\partial f}{\\partial x}", "\\frac{\\partial f}{\\partial x}"},
        {"\\phantom{x}\\hphantom{y}\\vphantom{z}", "\\phantom{x}\\hphantom{y}\\vphantom{z}"},
        {"\\smash[b]{g}+\\smash{x_y}", "\\smash[b]{g}+\\smash{x_y}"},
        {"\\color{BurntOrange}{x}", "\\textcolor[HTML]{FF7D00}{x}"},
        {"\\textcolor[HTML]{1b1818}{x}", "\\textcolor[HTML]{1B1818}{x}"},
        {"\\left( a \\middle| b \\right)", "\\left(a\\middle|b\\right)"},
        {"\\left\\langle a \\middle\\| b \\right\\rangle", "\\left\\langle a\\middle\\Vert b\\right\\rangle"},
        {"\\bigl( x \\Bigr]", "\\bigl(x\\Bigr]"},
        // The plain form shows its fence on the opening side.
        {"\\bigg\\{ x \\Bigg\\}", "\\biggl\\{x\\Biggl\\}"},
        {"\\overbrace{a+b}^{n}", "\\overbrace{a+b}^n"},
        {"\\underbrace{x}_{k}^{m}", "\\underbrace{x}_k^m"},
        {"\\bigcup_{i} A_i", "\\bigcup_i A_i"},
        {"\\sum\\nolimits_{i} x", "\\sum\\nolimits_i x"},
    };
    const KFormulaConverterHelper helper;
    for (const auto& [latex, expected] : cases) {
        const QString first = helper.ommlToLatex(helper.latexToOmml(QString::fromUtf8(latex)));
        EXPECT_EQ(first, QString::fromUtf8(expected)) << latex;
        EXPECT_EQ(helper.ommlToLatex(helper.latexToOmml(first)), first) << latex;
    }
}

// Spaces a reader sees inside text survive LaTeX -> OMML -> LaTeX -> OMML: the
// OMML of the second trip is the OMML of the first.
TEST(RoundTrip, KeepsSpacesInText)
{
    const KFormulaConverterHelper helper;
    for (const char* latex : {"\\text{if } x", "\\text{ a  b }", "\\mathrm{~if~} x", "a\\ \\ b",
                              "\\textbf{x y}", "\\text{\xF0\xA0\x80\x80 y}"}) {
        const QString omml = helper.latexToOmml(QString::fromUtf8(latex));
        const QString back = helper.ommlToLatex(omml);
        EXPECT_EQ(helper.latexToOmml(back), omml) << latex << " -> " << back.toStdString();
    }
}

} // namespace
