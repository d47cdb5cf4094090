#include "omml_text.h"

using namespace omml_text;

namespace {

const QString x = r("x");
const Look bold = sty("b"), red = colour("ff0000"), black = colour("000000");

Look sansSerifUpright()
{
    Look look = scr("sans-serif");
    look.sty = "p";
    return look;
}

INSTANTIATE_TEST_SUITE_P(
    Fonts, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\mathbb{R}", r("R", scr("double-struck"))}, LatexCase{"\\mathbf{x}", r("x", bold)},
        LatexCase{"\\boldsymbol{x}", r("x", sty("bi"))}, LatexCase{"\\mathcal{x}", r("x", scr("script"))},
        LatexCase{"\\mathit{x}", r("x", sty("i"))}, LatexCase{"\\mathrm{d}x", r("d", sty("p")) + x},
        // A letter outside the BMP keeps the alphabet; a symbol is the same in every alphabet.
        LatexCase{"\\mathcal{\xF0\x90\x90\x80}", r(QString::fromUtf8("\xF0\x90\x90\x80"), scr("script"))},
        LatexCase{"\\mathcal{\xF0\x9D\x84\x9E}", r(QString::fromUtf8("\xF0\x9D\x84\x9E"))},
        LatexCase{"\\mathbf{-1.5}+\\mathrm{h.c.}", r("-") + r("1", bold) + r(".") + r("5", bold) + r("+") +
                                                       r("h", sty("p")) + r(".") + r("c", sty("p")) + r(".")},
        // Spaces alone take no alphabet away from the plain text around them.
        LatexCase{"a\\mathrm{\\ }b", r("a b")},
        LatexCase{"\\mathrm{2\\,km\\,s}", r("2") + r(QStringLiteral("\u2009km\u2009s"), sty("p"))},
        LatexCase{"\\mathbf{\\mathit{x}}", r("x", sty("i"))},
        LatexCase{"\\mathbb{\\mathbf{R}}", r("R", bold)}, LatexCase{"\\mathbf{a}b", r("a", bold) + r("b")},
        LatexCase{"\\mathbf", ""}, LatexCase{"\\mathop{lim} x y", func(r("lim", sty("p")), x) + r("y")},
        LatexCase{"\\mathbf{\\mathop{f}x}", func(r("f", sty("p")), r("x", bold), ctrlOf(bold))},
        LatexCase{"\\text{if}x", r("if", nor()) + r("x")},
        LatexCase{"\\textbf{a}", r("a", nor(false, true))},
        LatexCase{"\\textit{a}\\emph{b}c", r("ab", nor(true)) + r("c")},
        LatexCase{"\\textrm{a}\\textnormal{b}\\textup{c}\\textmd{d}\\textsl{e}\\textsc{f}",
                  r("abcdef", nor())},
        LatexCase{"\\mathbf{\\text{a}}", r("a", nor())}, LatexCase{"\\mbox{a b}", box(r("a b", nor()))},
        LatexCase{"\\textsf{a}", r("a", sansSerifUpright())},
        LatexCase{"\\mathbb{\\textbf{a}}", [] {
            Look look = scr("double-struck");
            look.sty = "b";
            look.bold = true;
            return r("a", look);
        }()}));

// Colours as LaTeX documents give them: xcolor's models, the PostScript palette names and
// mixes; what does not fit paints black.
INSTANTIATE_TEST_SUITE_P(
    ColourForms, LatexToOmml,
    ::testing::Values(LatexCase{"\\textcolor[HTML]{1B1818}{x}", r("x", colour("1b1818"))},
                      LatexCase{"\\textcolor[rgb]{0.1,0.5,0.2}{x}", r("x", colour("1a8033"))},
                      LatexCase{"\\textcolor[RGB]{255,128,0}{x}", r("x", colour("ff8000"))},
                      LatexCase{"\\textcolor[gray]{0.5}{x}", r("x", colour("808080"))},
                      LatexCase{"\\textcolor[cmyk]{0,0.51,1,0}{x}", r("x", colour("ff7d00"))},
                      LatexCase{"\\textcolor[cmy]{0,1,1}{x}", r("x", red)},
                      LatexCase{"\\color{BurntOrange}{x}", r("x", colour("ff7d00"))},
                      LatexCase{"\\color{CarnationPink}{x}", r("x", colour("ff5eff"))},
                      LatexCase{"\\textcolor{red!30}{x}", r("x", colour("ffb3b3"))},
                      LatexCase{"\\textcolor{red!50!blue}{x}", r("x", colour("800080"))},
                      LatexCase{"\\textcolor{red!50!blue!50}{x}", r("x", colour("c080c0"))},
                      LatexCase{"\\textcolor{orange}{x}", r("x", colour("ffa500"))},
                      LatexCase{"\\textcolor[rgb]{2,0,0}{x}", r("x", black)},
                      LatexCase{"\\textcolor[HTML]{12345}{x}", r("x", black)},
                      LatexCase{"\\textcolor[rgb]{1,0}{x}", r("x", black)},
                      LatexCase{"\\textcolor[wave]{500}{x}", r("x", black)},
                      LatexCase{"\\textcolor{red!abc}{x}", r("x", black)},
                      LatexCase{"\\textcolor{Nonsense!50}{x}", r("x", black)}));

// The old font switches act up to the end of their group, cell or row; braces right after
// one are its argument, as before.
INSTANTIATE_TEST_SUITE_P(
    FontSwitches, LatexToOmml,
    ::testing::Values(LatexCase{"{\\rm const}+x", r("const", sty("p")) + r("+x")},
                      LatexCase{"{\\bf ab}c", r("ab", bold) + r("c")},
                      LatexCase{"\\rm d x", r("dx", sty("p"))},
                      LatexCase{"\\rm{d}x", r("d", sty("p")) + x},
                      LatexCase{"{\\cal AB}_i", sSub(r("AB", scr("script")), r("i"))},
                      LatexCase{"\\left(\\bf ab\\right)c", d("(", ")", r("ab", bold)) + r("c")},
                      LatexCase{"x\\rm", x}));

// Names sharing a row of the alphabet table convert alike (some only reach the
// converter as trees, because the parser does not know them).
TEST(TextStyle, AlphabetAliases)
{
    const std::pair<const char*, const char*> aliases[] = {
        {"bf", "mathbf"}, {"pmb", "boldsymbol"}, {"mathscr", "mathcal"}, {"mathbin", "mathrm"}};
    for (const auto& [alias, name] : aliases)
        EXPECT_EQ(convertTree(command(alias, braced("x"))), convertTree(command(name, braced("x")))) << alias;
    // A handler without its argument leaves the style stack as it found it.
    for (const char* name : {"mathbf", "textit", "mathop", "color", "fbox", "pmod", "pod", "mod"})
        EXPECT_EQ(convertTree(group(command(name), text("z"))), r("z")) << name;
}

INSTANTIATE_TEST_SUITE_P(
    Colours, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\color{red}{x}", r("x", red)}, LatexCase{"\\color{#00ff80}{x}", r("x", colour("00ff80"))},
        LatexCase{"\\color{}{x}", r("x", black)},
        LatexCase{"\\color{\\#FF8000}{x}", r("x", colour("ff8000"))},
        LatexCase{"\\color{red\\alpha blue}{x}", r("x", colour("0000ff"))},
        LatexCase{"\\color{red}{\\frac{a}{\\sqrt{b}}}c",
                  frac(r("a", red), rad(r("b", red), QString(), true, ctrl(red)), "", ctrl(red)) + r("c")},
        LatexCase{"\\textcolor{red}{a\\textcolor{blue}{b}}", r("ab", red)},
        LatexCase{"a\\color{red}{b}", r("a") + r("b", red)},
        LatexCase{"\\color{red}{\\mathbf{x}}", r("x", colour("ff0000", bold))},
        // Without braces the second argument is the one character that follows.
        LatexCase{"\\color{red} x", r("x", red)}, LatexCase{"\\color{red}", ""},
        LatexCase{"\\colorbox{yellow}{x}", x}));

TEST(TextStyle, ColourArgumentsTextCannotGive)
{
    EXPECT_EQ(convertTree(command("color", arg(text("green")), braced("x"))), r("x", colour("008000")));
    EXPECT_EQ(convertTree(command("color", braced("red"), arg(nullptr))), "");
    EXPECT_EQ(convertTree(command("color", braced("red"), braced("x"), braced("y"))), "");
    EXPECT_EQ(convertTree(command("colorbox", braced("yellow"), arg(nullptr))), "");
}

INSTANTIATE_TEST_SUITE_P(
    BoxesAndModulo, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\fbox{x}\\boxed{y}", frame(x) + frame(r("y"))},
        LatexCase{"\\mbox{a}\\hbox{b}\\vbox{}", box(r("a", nor())) + box(r("b", nor())) + box("")},
        LatexCase{"\\mathsf{\\fbox{x}}", frame(r("x", scr("sans-serif")), ctrlOf(scr("sans-serif")))},
        LatexCase{"a \\pmod{n}",
                  r(QStringLiteral("a\u2005(")) + rp(QStringLiteral("mod\u2009")) + r(QStringLiteral("n)\u2009"))},
        LatexCase{"a\\bmod b", r(QStringLiteral("a\u2005")) + rp("mod") + r(QStringLiteral("\u2005b"))},
        LatexCase{"\\mod{\\frac{a}{b}}", r(QStringLiteral("\u2005")) + rp(QStringLiteral("mod\u2009")) +
                                             frac(r("a"), r("b")) + r(QStringLiteral("\u2009"))}));

// Explicit spaces: the dimension, read as em after unit conversion, picks the character.
INSTANTIATE_TEST_SUITE_P(Spaces, LatexToOmml,
                         ::testing::Values(LatexCase{"\\hspace{1em}", r(QStringLiteral("\u2003"))},
                                           LatexCase{"\\kern{3mu}", r(QStringLiteral("\u2005"))},
                                           LatexCase{"\\hspace{-1em}", ""}, LatexCase{"\\kern{abc}", ""},
                                           LatexCase{"\\hspace{2cm}", r(QStringLiteral("\u2003\u2003"))},

                                           LatexCase{"\\mskip{0.25em}", r(QStringLiteral("\u2004"))},
                                           LatexCase{"\\mkern{0.15}", r(QStringLiteral("\u2009"))},
                                           LatexCase{"\\hspace{12pt}", r(QStringLiteral("\u2003"))},
                                           LatexCase{"\\hspace{11pt}", r(QStringLiteral("\u2002"))},
                                           LatexCase{"\\hspace{1ex}", r(QStringLiteral("\u2002"))},
                                           LatexCase{"\\hspace{width 3 pt}", r(QStringLiteral("\u2004"))},

                                           LatexCase{"\\hspace{99999999999999999999999}",
                                                     r(QStringLiteral("\u2003\u2003"))},
                                           LatexCase{"\\kern3mu", r(QStringLiteral("\u2005"))}));

TEST(TextStyle, SpaceAndModuloArgumentsTextCannotGive)
{
    EXPECT_EQ(convertTree(command("hspace", arg(text("0.5")))), r(QStringLiteral("\u2002")));
    EXPECT_EQ(convertTree(command("hspace", arg(command("alpha")))), "");
    EXPECT_EQ(convertTree(group(command("bmod", braced("n")))),
              r(QStringLiteral("\u2005")) + rp("mod") + r(QStringLiteral("\u2005")));
}

} // namespace
