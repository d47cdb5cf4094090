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

// Builders of OMML text: m("f", body) is <m:f>body</m:f>, v("chr", "x") is
// <m:chr m:val="x"/>, sr(mathProps, wordProps, text) a run with properties.
using S = const QString&;
const auto para = [](S body) { return kOpen + body + kClose; };
const auto m = [](S name, S body = {}) { return "<m:" + name + ">" + body + "</m:" + name + ">"; };
const auto v = [](S name, S value) { return "<m:" + name + " m:val=\"" + value + "\"/>"; };
const auto r = [](S text) { return m("r", m("t", text)); };
const auto e = [](S text) { return m("e", r(text)); };
const auto sr = [](S mp, S wp, S text = "x") {
    return "<m:r><m:rPr>" + mp + "</m:rPr><w:rPr>" + wp + "</w:rPr><m:t xml:space=\"preserve\">" + text +
           "</m:t></m:r>";
};
const auto font = [](S name) { return "<w:rFonts w:ascii=\"" + name + "\" w:hAnsi=\"" + name + "\"/>"; };
const auto colour = [](S hex) { return "<w:color w:val=\"" + hex + "\"/>"; };
const auto ctrl = [](S mp, S wp) {
    return m("ctrlPr", "<m:rPr>" + mp + "</m:rPr><w:rPr>" + wp + "</w:rPr>");
};
const QString ab = m("num", r("a")) + m("den", r("b"));
const QString x = e("x");
const QString hidden = v("hideTop", "1") + v("hideBot", "1") + v("hideLeft", "1") + v("hideRight", "1");
const auto frac = [](S type) { return m("f", m("fPr", v("type", type)) + ab); };
const auto nary = [](S pr, S limits = m("sub", r("a")) + m("sup", r("b"))) {
    return m("nary", m("naryPr", pr) + limits + x);
};
const auto func = [](S name) { return m("func", m("fName", name) + x); };
const auto delim = [](S beg, S end, S body) {
    return m("d", m("dPr", v("begChr", beg) + v("endChr", end)) + m("e", body));
};
const auto box = [](S pr) { return m("borderBox", m("borderBoxPr", pr) + x); };
const auto groupChr = [](S chr, S pos) {
    return m("groupChr", m("groupChrPr", v("chr", chr) + v("pos", pos)) + x);
};

QString toLatex(const QString& omml)
{
    return KFormulaConverterHelper().ommlToLatex(omml);
}

struct TextCase {
    QString body; // the content of m:oMath
    QString expected;
};

void expectAll(std::initializer_list<TextCase> cases)
{
    for (const TextCase& c : cases)
        EXPECT_EQ(toLatex(para(c.body)), c.expected) << c.body.toStdString();
}

TEST(OmmlTextToLatex, Runs)
{
    expectAll({
        {"", ""},
        {r("sin x+1"), "sin\\ x+1"},
        {r("50%&#x26;{a}_#~$\\"), "50\\%\\&\\{a\\}\\_\\#\\~\\$\\backslash"},
        // Characters with a command are written as it; a math italic letter is a letter.
        {r(u8"αβx x²٣ 12.5 a≤b±c𝑥"), QString::fromUtf8(u8"\\alpha\\beta x\\ x²٣\\ 12.5\\ a\\le b\\pm c x")},
        {r(u8"a\u0085b\u00A0c\u2003d\u3000e"), "a b~c\\quad d\\quad e"},
        // Run text that is only white space is content and is kept.
        {r("a") + r("  ") + r("b"), "a\\ \\ b"},
        {r(u8"a\u2009b\u200Ac\u2005d\u205Fe\u2004f"), "a\\,b\\,c\\:d\\:e\\;f"},
        {r(u8"a\u2003\u2003b\u2003\u2003\u2003c\u2002d"), "a\\qquad b\\qquad \\quad c\\enspace d"},
        {r(u8"\U0001D465 \U0001D466\t\n"), "x\\ y"},
        {m("sSup", x + m("sup", r("a b"))), "x^{a\\ b}"},
        {m("f", m("num", r(" a")) + m("den", r("b "))), "\\frac{\\ a}{b\\ }"},
        {r(" ") + r(" "), "\\ \\ "},
        {m("f", ab) + r("x"), "\\frac{a}{b} x"},
    });
}

TEST(OmmlTextToLatex, Structures)
{
    expectAll({
        {m("f", ab), "\\frac{a}{b}"},
        {frac("noBar"), "{a\\atop b}"},
        {frac("lin"), "\\tfrac{a}{b}"},
        {frac("skw"), "\\sfrac{a}{b}"},
        {m("f", m("num") + m("den", r("D"))), "\\frac{}{D}"},
        {m("sSup", x + m("sup", r("2"))), "x^2"},
        {m("sSup", m("e") + m("sup", r("2"))), "{}^2"},
        {m("sSub", x + m("sub", r("ij"))), "x_{ij}"},
        {m("sSubSup", x + m("sub", r("i")) + m("sup", r("2"))), "x_i^2"},
        {m("sSubSup", x + m("sub") + m("sup")), "x_{}^{}"},
        {m("rad", m("deg", r("3")) + x), "\\sqrt[3]{x}"},
        {m("rad", x), "\\sqrt[]{x}"},
        {m("rad", m("radPr", v("degHide", "1")) + m("deg") + x), "\\sqrt{x}"},
        {nary(v("chr", u8"∑") + v("limLoc", "undOvr")), "\\sum_a^b x"},
        {nary(""), "\\int_a^b x"},
        {nary(v("chr", u8"∑")), "\\sum\\nolimits_a^b x"},
        {nary(v("chr", u8"∫") + v("limLoc", "undOvr")), "\\int\\limits_a^b x"},
        {m("nary", m("naryPr") + m("sub", r("a")) + m("sup", r("b")) + e("xy")), "\\int_a^b{xy}"},
        {nary(v("chr", u8"∑") + v("limLoc", "undOvr") + v("subHide", "1")), "\\sum^b x"},
        {nary(v("chr", u8"∮") + v("supHide", "1")), "\\oint_a x"},
        {nary("", m("sub") + m("sup")), "\\int_{}^{} x"},
        {nary("<m:chr/>") + r("y"), "y"},
        {nary(v("chr", u8"⨋") + v("subHide", "1") + v("supHide", "1")),
         QString::fromUtf8(u8"\\⨋\\nolimits x")},
        {m("limLow", e("lim ") + m("lim", r(u8"n→∞"))), "\\lim_{n\\rightarrow\\infty}"},
        // Names keep their spelling: a limit command writes "lim sup", not "Lim" or "limsup".
        {m("limLow", e("lim sup") + m("lim", r("n"))), "\\limsup_n"},
        {m("limLow", e("Lim") + m("lim", r("n"))), "\\underset{n}{Lim}"},
        {m("limLow", m("e", r("max") + r("f")) + m("lim", r("n"))), "\\max_n"},
        {m("limLow", x + m("lim", r("k"))), "\\underset{k}{x}"},
        {m("limLow", m("e") + m("lim", r("n"))), ""},
        {m("limUpp", x + m("lim", r("k"))), "\\overset{k}{x}"},
        {func(r("sin")), "\\sin x"},
        {func(r(" cos ")), "\\cos x"},
        {func(r("COS")), "\\operatorname{COS} x"},
        // \max reads back as a limit element: a function named max is an operator name.
        {func(r("max")), "\\operatorname{max} x"},
        {func(sr(v("sty", "p"), "", u8"arg min")), "\\mathop{arg\\,min} x"},
        {func(sr(v("sty", "p"), "", "di") + m("sSub", e("m") + m("sub", sr(v("sty", "p"), "", "H")))),
         "\\mathop{dim_H} x"},
        // No command of TeX's own for these, nor for \mod, which is a spacing binary operator.
        {func(r("sech")), "\\operatorname{sech} x"},
        {func(r("mod")), "\\operatorname{mod} x"},
        {func(r("sgn")), "\\operatorname{sgn} x"},
        {func(r(u8"⟶")), "\\longrightarrow x"},
        {func(r("  ")), "\\ \\ x"},
        {func(m("sSup", e("sin") + m("sup", r("2")))), "\\sin^2 x"},
        {func(m("sSub", e("log") + m("sub", r("2")))), "\\log_2 x"},
        {func(m("sSup", m("e", r("a") + r("b")) + m("sup", r("2")))), "{ab}^2 x"},
        {m("func", m("fName", r("sin")) + m("e", r("2x"))), "\\sin{2x}"},
        {m("func", m("fName", r("ReLU")) + m("e", r("("))) + r("X)"), "\\operatorname{ReLU}(X)"},
        {m("func", m("fName", r("tan"))), "\\tan{}"},
        {m("d", x), "\\left(x\\right)"},
        {delim(u8"⟨", u8"〉", r("x")), "\\left\\langle x\\right\\rangle"},
        {delim("{", "}", r("x")), "\\left\\{x\\right\\}"},
        {m("d", m("dPr", v("begChr", "|") + "<m:endChr/>") + x), "\\left|x\\right."},
        {delim("", "", r("x")), "\\left.x\\right."},
        {delim("(", ")", ""), "\\left(\\right)"},
        {m("d", m("e", frac("NOBAR"))), "\\left(\\frac{a}{b}\\right)"}, // not a fraction type
        {m("d", m("e", frac("noBar"))), "\\binom{a}{b}"},
        {m("d", m("e", frac("nobar"))), "\\binom{a}{b}"},
        {delim("[", "]", frac("noBar")), "\\left[{a\\atop b}\\right]"},
        {delim("{", "", m("eqArr", e("1") + e("0"))), "\\begin{cases}\n\t1 \\\\\n\t0\n\\end{cases}"},
        {delim("{", "", m("eqArr", e("1"))), "1"},
        {delim("{", "}", m("eqArr", e("1") + e("0"))),
         "\\left\\{\\begin{gathered}\n\t1 \\\\\n\t0\n\\end{gathered}\\right\\}"},
        {m("acc", x), "\\hat{x}"},
        {m("acc", m("accPr", v("chr", u8"\u20D7")) + x), "\\overrightarrow{x}"},
        {m("acc", m("accPr", v("chr", "~")) + x), "\\~{x}"},
        {m("acc", m("accPr", "<m:chr/>") + x), ""},
        {m("bar", x), "\\overline{x}"},
        {m("bar", "<m:barPr/>" + x), "\\underline{x}"},
        {m("borderBox", x), "\\boxed{x}"},
        {box(hidden + v("strikeH", "1") + v("strikeV", "1")),
         "\\enclose{horizontalstrike,verticalstrike}{x}"},
        {box(hidden + v("strikeBLTR", "1")), "\\cancel{x}"},
        {box(hidden + v("strikeTLBR", "1")), "\\bcancel{x}"},
        {m("borderBox", m("borderBoxPr", hidden + v("strikeTLBR", "1")) + e(u8"∈")), "\\not\\in"},
        {m("borderBox", m("borderBoxPr", hidden + v("strikeTLBR", "1")) + e("=")), "\\not="},
        {box(hidden + v("strikeBLTR", "1") + v("strikeTLBR", "1")), "\\xcancel{x}"},
        {box(v("strikeBLTR", "1") + v("strikeTLBR", "1")),
         "\\enclose{box,updiagonalstrike,downdiagonalstrike}{x}"},
        {box(v("hideTop", "1") + v("hideBot", "1") + v("hideRight", "1") + v("strikeBLTR", "1")),
         "\\enclose{left,updiagonalstrike}{x}"},
        {m("groupChr", x), "\\underbrace{x}"},
        {groupChr(u8"\u23DE", "bot"), "\\overbrace{x}"},
        {groupChr(u8"\u23B5", "bot"), "\\underbracket{x}"},
        {groupChr(u8"→", "top"), "\\overset{\\rightarrow}{x}"},
        {groupChr("=", "top"), "\\overset{=}{x}"},
        {m("groupChr", m("groupChrPr", "<m:chr/>") + x), "\\underset{}{x}"},
        {m("m", m("mr", e("a") + e("b")) + m("mr", e("c"))),
         "\\begin{matrix}\n\ta & b \\\\\n\tc & \n\\end{matrix}"},
        {m("m", m("mr", m("e") + e("b"))), "\\begin{matrix}\n\t & b\n\\end{matrix}"},
        {m("m"), ""},
        {m("d", m("e", m("m", m("mr", e("1"))))), "\\left(\\begin{matrix}\n\t1\n\\end{matrix}\\right)"},
        {m("box", x), "\\mbox{x}"},
        {m("box", m("boxPr", "<m:noBreak/>") + x), "x"},
        {m("eqArr", e("a") + m("e") + e("c")), "\\begin{gathered}\n\ta \\\\\n\t \\\\\n\tc\n\\end{gathered}"},
        {m("eqArr", e("a")), "a"},
        {m("eqArr"), ""},
        // Without m:show a phantom shows its content.
        {m("phant", x), "x"},
        {m("phant", m("phantPr", "<m:show/>") + x), "x"},
        {m("phant", m("phantPr", v("show", "0")) + x), "\\phantom{x}"},
        {m("phant", m("phantPr", v("show", "off")) + x), "\\phantom{x}"},
        {m("phant", m("phantPr", v("show", "false") + v("zeroAsc", "on") + v("zeroDesc", "1")) + x),
         "\\hphantom{x}"},
        {m("phant", m("phantPr", v("show", "off") + "<m:zeroWid/>") + x), "\\vphantom{x}"},
        {m("phant", m("phantPr", v("show", "off") + "<m:zeroWid/><m:zeroAsc/>") + x), "\\phantom{x}"},
        // A shown phantom without height or depth is \smash; without width it is its content.
        {m("phant", m("phantPr", "<m:zeroAsc/><m:zeroDesc/>") + x), "\\smash{x}"},
        {m("phant", m("phantPr", "<m:zeroAsc/>") + x), "\\smash[t]{x}"},
        {m("phant", m("phantPr", v("zeroDesc", "on")) + x), "\\smash[b]{x}"},
        {m("phant", m("phantPr", "<m:zeroWid/><m:zeroAsc/>") + x), "x"},
        {m("sPre", m("sub", r("a")) + m("sup", r("b")) + e("X")), "{}_a^b X"},
        {m("sPre"), "{}_{}^{}"},
    });
}

TEST(OmmlTextToLatex, StyleColourFont)
{
    const QString p = v("sty", "p");
    expectAll({
        {sr("", "<w:b/><w:i/>"), "\\textbf{\\textit{x}}"},
        {sr("", "<w:b w:val=\"0\"/>"), "\\textbf{x}"},
        {sr("", "<w:i/>"), "\\textit{x}"},
        {sr(p, "<w:b/>"), "\\textbf{x}"},
        {sr(p, ""), "\\mathrm{x}"},
        {sr("<m:nor/>", ""), "\\text{x}"},
        {sr("<m:nor/>", "<w:b/>"), "\\textbf{x}"},
        {sr(v("sty", "b"), ""), "\\mathbf{x}"},
        {sr(v("sty", "i"), ""), "\\mathit{x}"},
        {sr(v("sty", "bi"), ""), "\\boldsymbol{x}"},
        {sr(v("sty", "b"), font("Courier New")), "\\mathbf{x}"},
        {sr(v("scr", "double-struck"), ""), "\\mathbb{x}"},
        {sr(v("scr", "script"), ""), "\\mathcal{x}"},
        {sr(v("scr", "monospace"), ""), "\\mathtt{x}"},
        // Upright monospace and sans-serif text is what \texttt and \textsf write.
        {sr(v("scr", "monospace") + v("sty", "p"), "", "a.b"), "\\texttt{a.b}"},
        {sr(v("scr", "sans-serif") + v("sty", "p"), "", "k"), "\\textsf{k}"},
        // A relation struck through by a combining solidus is amssymb's negated relation.
        {r(u8"a≧̸b≦̸c"), "a\\ngeqq b\\nleqq c"},
        {sr(v("scr", "script"), font("")), "x"},
        {sr(p, font("")), "\\mathrm{x}"},
        {sr(v("scr", "fraktur"), font("Arial")), "\\mathsf{x}"},
        {sr("", font("Courier New")), "\\mathtt{x}"},
        {sr("", font("Monotype Corsiva")), "\\mathcal{x}"},
        {sr("", font("Cambria Math")), "x"},
        {sr("", colour("FF0000")), "\\textcolor{red}{x}"},
        {sr("", colour("1B1818")), "\\textcolor[HTML]{1B1818}{x}"},
        {sr("", colour("000000")), "x"},
        {sr("", colour("auto")), "x"},
        {sr("", "<w:b/>" + colour("0000FF")), "\\textcolor{blue}{\\textbf{x}}"},
        {sr(v("sty", "b"), colour("0000FF")), "\\textcolor{blue}{\\mathbf{x}}"},
        {sr("", "<w:b/><w:i/>", " "), "\\textbf{\\textit{\\ }}"},
        {sr(v("scr", "script"), "", "\t"), ""},
        // An alphabet wraps only what it changes; neighbouring runs of one style share it.
        {sr(p, "", "d+x") + sr(p, "", "y"), "\\mathrm{d}+\\mathrm{xy}"},
        {sr(p, "", u8"u″+p(α)"), "\\mathrm{u}''+\\mathrm{p}(\\mathrm{\\alpha})"},
        {sr(v("sty", "b"), "", "x+2"), "\\mathbf{x}+\\mathbf{2}"},
        {sr(p, "", u8"Γ+2"), "\\Gamma+2"},
        {m("f", m("fPr", ctrl(v("sty", "b"), "")) + ab), "\\mathbf{\\frac{a}{b}}"},
        {m("f", m("fPr", ctrl(v("scr", "double-struck"), font(""))) + ab), "\\mathbb{\\frac{a}{b}}"},
        {m("f", m("fPr", ctrl("", font(""))) + ab), "\\frac{a}{b}"},
        // Text fonts cannot hold a fraction: the control character's switches are not its style.
        {m("f", m("fPr", ctrl("", "<w:b/>")) + ab), "\\frac{a}{b}"},
        {m("f", m("fPr", ctrl(v("sty", "b"), "<w:b/>")) + ab), "\\mathbf{\\frac{a}{b}}"},
        {m("rad", m("radPr", v("degHide", "on") + ctrl("", colour("00FF00"))) + x),
         "\\textcolor{green}{\\sqrt{x}}"},
        {m("sSup", m("sSupPr", ctrl("", font("Cambria Math"))) + x + m("sup", r("2"))), "x^2"},
        // A binomial takes the properties of its delimiter, cases keep both.
        {m("d", m("dPr", ctrl("", colour("FF0000"))) +
                    m("e", m("f", m("fPr", v("type", "noBar") + ctrl("", colour("0000FF"))) + ab))),
         "\\textcolor{red}{\\binom{a}{b}}"},
        {m("d", m("dPr", v("begChr", "{") + v("endChr", "") + ctrl("", colour("FF0000"))) +
                    m("e", m("eqArr", m("eqArrPr", ctrl(p, "")) + e("a") + e("b")))),
         "\\textcolor{red}{\\mathrm{\\begin{cases}\n\ta \\\\\n\tb\n\\end{cases}}}"},
        {m("acc", m("accPr", "<m:chr/>" + ctrl(p, "")) + x), "\\mathrm{}"},
        {m("bar", m("e", sr("", "<w:b/>"))), "\\overline{\\textbf{x}}"},
    });
}

TEST(OmmlTextToLatex, RejectsWhatIsNotAParagraph)
{
    for (const QString& text : {QString(), QString("not xml"), "<m:oMathPara><m:oMath>" + r("x"),
                                "<m:oMath>" + r("x") + "</m:oMath>", r("x"), QString("<m:oMathPara/>"),
                                "<w:document>" + para(r("x")) + "</w:document>"})
        EXPECT_EQ(toLatex(text), "") << text.toStdString();
    // Of several equations only the last one is kept.
    EXPECT_EQ(toLatex(kOpen + r("a") + "</m:oMath><m:oMath>" + r("b") + kClose), "b");
}

QString nestedPhantoms(int depth)
{
    return para(
        QStringLiteral("<m:phant><m:phantPr><m:show m:val=\"off\"/></m:phantPr><m:e>").repeated(depth) +
        r("x") + QStringLiteral("</m:e></m:phant>").repeated(depth));
}

TEST(OmmlTextToLatex, HostileAndHugeInput)
{
    // 100,000 nested phantoms: the reader may refuse, the converter and the
    // writer cut at their own limits; nothing may crash.
    const QString latex = toLatex(nestedPhantoms(100000));
    EXPECT_TRUE(latex.isEmpty() || latex.startsWith("\\phantom{")) << latex.left(40).toStdString();
    // The deepest phantom chain the reader accepts (paragraph, equation, two
    // elements per phantom, run and text): the converter must not cut earlier.
    const int deepest = (kMaxOmmlReadDepth - 4) / 2;
    for (const int depth : {100, deepest})
        EXPECT_EQ(toLatex(nestedPhantoms(depth)),
                  QString("\\phantom{").repeated(depth) + "x" + QString("}").repeated(depth));
    const QString text = QStringLiteral("ab+").repeated(400000);
    EXPECT_EQ(toLatex(para(r(text))), text);
    EXPECT_EQ(toLatex(para(m("f", ab).repeated(20000))), QString("\\frac{a}{b}").repeated(20000));
}

} // namespace
