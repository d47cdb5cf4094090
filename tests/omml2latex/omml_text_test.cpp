// OMML XML text to LaTeX text through the host interface: reader, converter
// and writer together, with the writer options the interface uses.

#include "interface/converter_helper.h"
#include "omml/omml_reader.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

const QString kOpen =
    QStringLiteral("<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\" "
                   "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"><m:oMath>");
const QString kClose = QStringLiteral("</m:oMath></m:oMathPara>");

QString para(const QString& body)
{
    return kOpen + body + kClose;
}

QString r(const QString& text)
{
    return "<m:r><m:t>" + text + "</m:t></m:r>";
}

QString e(const QString& body)
{
    return "<m:e>" + body + "</m:e>";
}

QString toLatex(const QString& omml)
{
    return KFormulaConverterHelper().ommlToLatex(omml);
}

struct TextCase {
    const char* name;
    QString body; // the content of m:oMath
    QString expected;
};

void PrintTo(const TextCase& c, std::ostream* os)
{
    *os << c.name;
}

class OmmlTextToLatex : public ::testing::TestWithParam<TextCase> {};

TEST_P(OmmlTextToLatex, Exact)
{
    EXPECT_EQ(toLatex(para(GetParam().body)), GetParam().expected);
}

const QString ab = "<m:num>" + r("a") + "</m:num><m:den>" + r("b") + "</m:den>";

INSTANTIATE_TEST_SUITE_P(
    EveryKind, OmmlTextToLatex,
    ::testing::Values(
        TextCase{"Run", r("x+1"), "x+1"}, TextCase{"RunWordsAreSpaced", r("sin x"), "sin x"},
        TextCase{"RunEscapes", r("50%&#x26;{a}_#~$\\"), "50\\%\\&\\{a\\}\\_\\#\\~\\$\\\\"},
        TextCase{"RunKeepsUnicode", r(u8"α≤β𝑥"), QString::fromUtf8(u8"α≤β𝑥")},
        TextCase{"SeveralRuns", r("2") + r("3"), "2 3"},
        TextCase{"Fraction", "<m:f>" + ab + "</m:f>", "\\frac{a}{b}"},
        TextCase{"FractionNoBar", "<m:f><m:fPr><m:type m:val=\"nobar\"/></m:fPr>" + ab + "</m:f>",
                 "\\binom{a}{b}"},
        TextCase{"FractionLinear", "<m:f><m:fPr><m:type m:val=\"lin\"/></m:fPr>" + ab + "</m:f>",
                 "\\tfrac{a}{b}"},
        TextCase{"FractionSkewed", "<m:f><m:fPr><m:type m:val=\"skw\"/></m:fPr>" + ab + "</m:f>",
                 "\\sfrac{a}{b}"},
        TextCase{"FractionEmptyNumerator", "<m:f><m:num/><m:den>" + r("D") + "</m:den></m:f>", "\\frac{}{D}"},
        TextCase{"FractionThenLetter", "<m:f>" + ab + "</m:f>" + r("x"), "\\frac{a}{b} x"},
        TextCase{"Superscript", "<m:sSup>" + e(r("x")) + "<m:sup>" + r("2") + "</m:sup></m:sSup>", "x^2"},
        TextCase{"SuperscriptLong", "<m:sSup>" + e(r("e")) + "<m:sup>" + r("-x") + "</m:sup></m:sSup>",
                 "e^{-x}"},
        TextCase{"SuperscriptEmptyBase", "<m:sSup><m:e/><m:sup>" + r("2") + "</m:sup></m:sSup>", "^2"},
        TextCase{"Subscript", "<m:sSub>" + e(r("x")) + "<m:sub>" + r("ij") + "</m:sub></m:sSub>", "x_{ij}"},
        TextCase{"SubSuperscript",
                 "<m:sSubSup>" + e(r("x")) + "<m:sub>" + r("i") + "</m:sub><m:sup>" + r("2") +
                     "</m:sup></m:sSubSup>",
                 "x^2_i"},
        TextCase{"RadicalWithDegree", "<m:rad><m:deg>" + r("3") + "</m:deg>" + e(r("x")) + "</m:rad>",
                 "\\sqrt[3]{x}"},
        TextCase{"RadicalWithoutDegree", "<m:rad>" + e(r("x")) + "</m:rad>", "\\sqrt[]{x}"},
        TextCase{"RadicalDegreeHidden",
                 "<m:rad><m:radPr><m:degHide m:val=\"1\"/></m:radPr><m:deg/>" + e(r("x")) + "</m:rad>",
                 "\\sqrt{x}"},
        TextCase{"NarySum",
                 QString::fromUtf8(u8"<m:nary><m:naryPr><m:chr m:val=\"∑\"/><m:limLoc m:val=\"undOvr\"/>"
                                   u8"</m:naryPr><m:sub>") +
                     r("i=1") + "</m:sub><m:sup>" + r("n") + "</m:sup>" + e(r("i")) + "</m:nary>",
                 "\\sum\\limits^n_{i=1}{i}"},
        TextCase{"NaryDefaultIntegral",
                 "<m:nary><m:sub>" + r("0") + "</m:sub><m:sup>" + r("1") + "</m:sup>" + e(r("f")) +
                     "</m:nary>",
                 "\\int\\nolimits^1_0{f}"},
        TextCase{
            "NaryHiddenLimit",
            QString::fromUtf8(u8"<m:nary><m:naryPr><m:chr m:val=\"∏\"/><m:subHide m:val=\"on\"/></m:naryPr>"
                              u8"<m:sub/><m:sup>") +
                r("n") + "</m:sup>" + e(r("x")) + "</m:nary>",
            "\\prod\\nolimits^n{x}"},
        TextCase{"NaryEmptyLimits", "<m:nary><m:sub/><m:sup/>" + e(r("x")) + "</m:nary>",
                 "\\int\\nolimits^{}_{}{x}"},
        TextCase{"NaryWithoutChar",
                 "<m:nary><m:naryPr><m:chr/></m:naryPr>" + e(r("x")) + "</m:nary>" + r("y"), "y"},
        TextCase{"LimitLowerName",
                 "<m:limLow>" + e(r("lim")) + "<m:lim>" + r(u8"n→∞") + "</m:lim></m:limLow>",
                 QString::fromUtf8(u8"\\lim_{n→∞}")},
        TextCase{"LimitLowerOther", "<m:limLow>" + e(r("x")) + "<m:lim>" + r("k") + "</m:lim></m:limLow>",
                 "\\underset{k}{x}"},
        TextCase{"LimitUpper", "<m:limUpp>" + e(r("x")) + "<m:lim>" + r("k") + "</m:lim></m:limUpp>",
                 "\\overset{k}{x}"},
        TextCase{"FunctionKnown", "<m:func><m:fName>" + r("sin") + "</m:fName>" + e(r("x")) + "</m:func>",
                 "\\sin{x}"},
        TextCase{"FunctionOther", "<m:func><m:fName>" + r("sgn") + "</m:fName>" + e(r("x")) + "</m:func>",
                 "\\operatorname{sgn}{x}"},
        TextCase{"FunctionScriptedName",
                 "<m:func><m:fName><m:sSup>" + e(r("sin")) + "<m:sup>" + r("2") +
                     "</m:sup></m:sSup></m:fName>" + e(r("x")) + "</m:func>",
                 "\\sin^2{x}"},
        TextCase{"DelimiterParentheses", "<m:d>" + e(r("x")) + "</m:d>", "\\left(x\\right)"},
        TextCase{"DelimiterNamed",
                 QString::fromUtf8(u8"<m:d><m:dPr><m:begChr m:val=\"⟨\"/><m:endChr m:val=\"⟩\"/></m:dPr>") +
                     e(r("x")) + "</m:d>",
                 "\\left\\langle x\\right\\rangle"},
        TextCase{"DelimiterBraces",
                 "<m:d><m:dPr><m:begChr m:val=\"{\"/><m:endChr m:val=\"}\"/></m:dPr>" + e(r("x")) + "</m:d>",
                 "\\left\\{x\\right\\}"},
        TextCase{"DelimiterMissingSide",
                 "<m:d><m:dPr><m:begChr m:val=\"|\"/><m:endChr/></m:dPr>" + e(r("x")) + "</m:d>",
                 "\\left|x\\right."},
        TextCase{"DelimiterBinomial",
                 "<m:d>" + e("<m:f><m:fPr><m:type m:val=\"noBar\"/></m:fPr>" + ab + "</m:f>") + "</m:d>",
                 "\\left(\\frac{a}{b}\\right)"},
        TextCase{"DelimiterBinomialNoBar",
                 "<m:d>" + e("<m:f><m:fPr><m:type m:val=\"nobar\"/></m:fPr>" + ab + "</m:f>") + "</m:d>",
                 "\\binom{a}{b}"},
        TextCase{"DelimiterCases",
                 "<m:d><m:dPr><m:begChr m:val=\"{\"/><m:endChr m:val=\"\"/></m:dPr>" +
                     e("<m:eqArr>" + e(r("1")) + e(r("0")) + "</m:eqArr>") + "</m:d>",
                 "\\begin{cases}\n\t1 \\\\\n\t0\n\\end{cases}"},
        TextCase{"Accent", "<m:acc>" + e(r("x")) + "</m:acc>", "\\hat{x}"},
        TextCase{"AccentVector",
                 QString::fromUtf8(u8"<m:acc><m:accPr><m:chr m:val=\"\u20D7\"/></m:accPr>") + e(r("v")) +
                     "</m:acc>",
                 "\\overrightarrow{v}"},
        TextCase{"AccentWithoutChar", "<m:acc><m:accPr><m:chr/></m:accPr>" + e(r("v")) + "</m:acc>", ""},
        TextCase{"BarTop", "<m:bar>" + e(r("x")) + "</m:bar>", "\\overline{x}"},
        TextCase{"BarBottom", "<m:bar><m:barPr/>" + e(r("x")) + "</m:bar>", "\\underline{x}"},
        TextCase{"BorderBox", "<m:borderBox>" + e(r("x")) + "</m:borderBox>", "\\boxed{x}"},
        TextCase{"BorderBoxStrike",
                 "<m:borderBox><m:borderBoxPr><m:hideTop m:val=\"1\"/><m:hideBot m:val=\"1\"/>"
                 "<m:hideLeft m:val=\"1\"/><m:hideRight m:val=\"1\"/><m:strikeTLBR m:val=\"1\"/>"
                 "</m:borderBoxPr>" +
                     e(r("x")) + "</m:borderBox>",
                 "\\bcancel{x}"},
        TextCase{"GroupCharDefault", "<m:groupChr>" + e(r("x")) + "</m:groupChr>", "\\underbrace{x}"},
        TextCase{"GroupCharArrow",
                 QString::fromUtf8(u8"<m:groupChr><m:groupChrPr><m:chr m:val=\"→\"/><m:pos m:val=\"top\"/>"
                                   u8"</m:groupChrPr>") +
                     e(r("x")) + "</m:groupChr>",
                 "\\overset{\\rightarrow}{x}"},
        TextCase{"Matrix",
                 "<m:m><m:mr>" + e(r("a")) + e(r("b")) + "</m:mr><m:mr>" + e(r("c")) + "</m:mr></m:m>",
                 "\\begin{matrix}\n\ta & b \\\\\n\tc & \n\\end{matrix}"},
        TextCase{"MatrixInParentheses", "<m:d>" + e("<m:m><m:mr>" + e(r("1")) + "</m:mr></m:m>") + "</m:d>",
                 "\\left(\\begin{matrix}\n\t1\n\\end{matrix}\\right)"},
        TextCase{"Box", "<m:box>" + e(r("x")) + "</m:box>", "\\mbox{x}"},
        TextCase{"BoxBreakable", "<m:box><m:boxPr><m:noBreak/></m:boxPr>" + e(r("x")) + "</m:box>", "x"},
        TextCase{"EquationArray", "<m:eqArr>" + e(r("a")) + e(r("b")) + "</m:eqArr>",
                 "\\begin{cases}\n\ta \\\\\n\tb\n\\end{cases}"},
        TextCase{"EquationArrayOneRow", "<m:eqArr>" + e(r("a")) + "</m:eqArr>", "a"},
        TextCase{"Phantom", "<m:phant>" + e(r("x")) + "</m:phant>", "\\phantom{x}"},
        TextCase{"PreSubSuperscript",
                 "<m:sPre><m:sub>" + r("a") + "</m:sub><m:sup>" + r("b") + "</m:sup>" + e(r("X")) +
                     "</m:sPre>",
                 "^b_a X"},
        TextCase{"UnknownElementsVanish", "<m:foo>" + r("z") + "</m:foo><mml:f/>" + r("x"), "x"},
        TextCase{"EmptyEquation", "", ""}),
    [](const ::testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

QString styled(const QString& mathProps, const QString& wordProps, const QString& text = "x")
{
    return "<m:r><m:rPr>" + mathProps + "</m:rPr><w:rPr>" + wordProps + "</w:rPr><m:t>" + text +
           "</m:t></m:r>";
}

INSTANTIATE_TEST_SUITE_P(
    StyleColourFont, OmmlTextToLatex,
    ::testing::Values(
        TextCase{"BoldItalic", styled("", "<w:b/><w:i/>"), "\\textbf{\\textit{x}}"},
        TextCase{"Bold", styled("", "<w:b w:val=\"0\"/>"), "\\textbf{x}"},
        TextCase{"Italic", styled("", "<w:i/>"), "\\textit{x}"},
        TextCase{"StylePlain", styled("<m:sty m:val=\"p\"/>", ""), "\\mathrm{x}"},
        TextCase{"StylePlainWords", styled("<m:sty m:val=\"p\"/>", "", "max"), "\\mathrm{max}"},
        TextCase{"StyleBold", styled("<m:sty m:val=\"b\"/>", ""), "\\mathbf{x}"},
        TextCase{"StyleItalic", styled("<m:sty m:val=\"i\"/>", ""), "\\mathit{x}"},
        TextCase{"StyleBoldItalic", styled("<m:sty m:val=\"bi\"/>", ""), "\\boldsymbol{x}"},
        TextCase{"ScriptDoubleStruck", styled("<m:scr m:val=\"double-struck\"/>", "", "R"), "\\mathbb{R}"},
        TextCase{"ScriptCalligraphic", styled("<m:scr m:val=\"script\"/>", "", "L"), "\\mathcal{L}"},
        TextCase{"ScriptFraktur", styled("<m:scr m:val=\"fraktur\"/>", "", "g"), "\\mathfrak{g}"},
        TextCase{"ScriptSansSerif", styled("<m:scr m:val=\"sans-serif\"/>", "", "A"), "\\mathsf{A}"},
        TextCase{"ScriptMonospace", styled("<m:scr m:val=\"monospace\"/>", "", "A"), "A"},
        TextCase{"ScriptWithEmptyFont",
                 styled("<m:scr m:val=\"script\"/>", "<w:rFonts w:ascii=\"\" w:hAnsi=\"\"/>", "L"), "L"},
        TextCase{"FontCourierNew", styled("", "<w:rFonts w:ascii=\"Courier New\" w:hAnsi=\"Courier New\"/>"),
                 "\\mathtt{x}"},
        TextCase{"FontMonotypeCorsiva", styled("", "<w:rFonts w:ascii=\"Monotype Corsiva\"/>"),
                 "\\mathcal{x}"},
        TextCase{"FontCambriaMath", styled("", "<w:rFonts w:ascii=\"Cambria Math\"/>"), "x"},
        TextCase{"FontUnderStyle", styled("<m:sty m:val=\"p\"/>", "<w:rFonts w:ascii=\"Arial\"/>"),
                 "\\mathrm{x}"},
        TextCase{"ColourRed", styled("", "<w:color w:val=\"FF0000\"/>"), "\\textcolor{red}{x}"},
        TextCase{"ColourLowerCaseHex", styled("", "<w:color w:val=\"ff0000\"/>"), "\\textcolor{red}{x}"},
        TextCase{"ColourUnlisted", styled("", "<w:color w:val=\"1B1818\"/>"), "\\textcolor{\\#1b1818}{x}"},
        TextCase{"ColourBlack", styled("", "<w:color w:val=\"000000\"/>"), "x"},
        TextCase{"ColourAuto", styled("", "<w:color w:val=\"auto\"/>"), "x"},
        TextCase{"ColourDuplicateName", styled("", "<w:color w:val=\"C0504D\"/>"), "\\textcolor{darkred}{x}"},
        TextCase{"ColourAndBold", styled("", "<w:b/><w:color w:val=\"0000FF\"/>"),
                 "\\textcolor{blue}{\\textbf{x}}"},
        TextCase{"StructureControlStyle",
                 "<m:f><m:fPr><m:ctrlPr><m:rPr><m:sty m:val=\"b\"/></m:rPr></m:ctrlPr></m:fPr>" + ab +
                     "</m:f>",
                 "\\mathbf{\\frac{a}{b}}"},
        TextCase{
            "StructureControlColour",
            "<m:rad><m:radPr><m:degHide m:val=\"on\"/><m:ctrlPr><w:rPr><w:color w:val=\"00FF00\"/></w:rPr>"
            "</m:ctrlPr></m:radPr>" +
                e(r("x")) + "</m:rad>",
            "\\textcolor{green}{\\sqrt{x}}"},
        TextCase{"StructureDefaultControl",
                 "<m:sSup><m:sSupPr><m:ctrlPr><w:rPr><w:rFonts w:ascii=\"Cambria Math\"/></w:rPr></m:ctrlPr>"
                 "</m:sSupPr>" +
                     e(r("x")) + "<m:sup>" + r("2") + "</m:sup></m:sSup>",
                 "x^2"}),
    [](const ::testing::TestParamInfo<TextCase>& info) { return std::string(info.param.name); });

TEST(OmmlTextToLatexRejects, WhatIsNotAParagraph)
{
    EXPECT_EQ(toLatex(""), "");
    EXPECT_EQ(toLatex("not xml"), "");
    EXPECT_EQ(toLatex("<m:oMathPara><m:oMath>" + r("x")), "");
    EXPECT_EQ(toLatex("<m:oMath>" + r("x") + "</m:oMath>"), "");
    EXPECT_EQ(toLatex("<m:r><m:t>x</m:t></m:r>"), "");
    EXPECT_EQ(toLatex("<m:oMathPara/>"), "");
    EXPECT_EQ(
        toLatex("<w:document><m:oMathPara><m:oMath>" + r("x") + "</m:oMath></m:oMathPara></w:document>"), "");
}

TEST(OmmlTextToLatex, KeepsOnlyTheLastEquation)
{
    EXPECT_EQ(toLatex(kOpen + r("a") + "</m:oMath><m:oMath>" + r("b") + kClose), "b");
}

TEST(OmmlTextToLatex, ReadsWordProcessorMarkup)
{
    // Indentation, xml:space, run properties in the w: vocabulary and unknown
    // elements, as word processors write them.
    const QString xml = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"\n"
        "    xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">\n"
        "  <m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr>\n"
        "  <m:oMath>\n"
        "    <m:sSup>\n"
        "      <m:sSupPr><m:ctrlPr><w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/>"
        "<w:i/></w:rPr></m:ctrlPr></m:sSupPr>\n"
        "      <m:e><m:r><w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/></w:rPr>"
        "<m:t xml:space=\"preserve\">x</m:t></m:r></m:e>\n"
        "      <m:sup><m:r><w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/></w:rPr>"
        "<m:t>2</m:t></m:r></m:sup>\n"
        "    </m:sSup>\n"
        "    <w:bookmarkStart w:id=\"0\" w:name=\"_GoBack\"/>\n"
        "    <m:r><m:rPr><m:sty m:val=\"p\"/></m:rPr><w:rPr><w:rFonts w:ascii=\"Cambria Math\"/></w:rPr>"
        "<m:t>+</m:t></m:r>\n"
        "    <m:r><m:t xml:space=\"preserve\"> 1 </m:t></m:r>\n"
        "  </m:oMath>\n"
        "</m:oMathPara>\n");
    EXPECT_EQ(toLatex(xml), "\\textit{x^2}\\mathrm{+}1");
}

QString nestedPhantoms(int depth)
{
    return para(QStringLiteral("<m:phant><m:e>").repeated(depth) + r("x") +
                QStringLiteral("</m:e></m:phant>").repeated(depth));
}

TEST(OmmlTextToLatex, HostileNestingGivesAResultOrNothing)
{
    // 100,000 nested phantoms: the reader may refuse, the converter and the
    // writer cut at their own limits; nothing may crash.
    const QString latex = toLatex(nestedPhantoms(100000));
    EXPECT_TRUE(latex.isEmpty() || latex.startsWith("\\phantom{")) << latex.left(40).toStdString();
}

TEST(OmmlTextToLatex, NestingWithinTheLimitsConvertsWhole)
{
    // The deepest phantom chain the reader accepts (paragraph, equation, two
    // elements per phantom, run and text): the converter must not cut earlier.
    const int deepest = (kMaxOmmlReadDepth - 4) / 2;
    for (const int depth : {100, deepest}) {
        EXPECT_EQ(toLatex(nestedPhantoms(depth)),
                  QString("\\phantom{").repeated(depth) + "x" + QString("}").repeated(depth))
            << depth;
    }
}

TEST(OmmlTextToLatex, MegabytesOfRunText)
{
    const QString text = QStringLiteral("ab+").repeated(400000);
    const QString latex = toLatex(para(r(text)));
    EXPECT_EQ(latex, text);
}

TEST(OmmlTextToLatex, ManySiblingStructures)
{
    QString body;
    for (int i = 0; i < 20000; ++i)
        body += "<m:f>" + ab + "</m:f>";
    EXPECT_EQ(toLatex(para(body)), QString("\\frac{a}{b}").repeated(20000));
}

} // namespace
