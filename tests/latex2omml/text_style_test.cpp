#include "handler_test_support.h"

#include <gtest/gtest.h>

using namespace l2o_test;

namespace {

class TextStyleTrees : public HandlerTrees {};

TEST_P(TextStyleTrees, ConvertToExactOmml)
{
    check();
}

Look look(const char* scr, const char* sty)
{
    Look l = script(scr);
    l.sty = QString::fromUtf8(sty);
    return l;
}

// One case per math alphabet name: \name{x} gives the run x in that look.
std::vector<TreeCase> alphabetCases()
{
    const std::pair<const char*, Look> alphabets[] = {
        {"mathbb", script("double-struck")},
        {"mathbf", styled("b")},
        {"bf", styled("b")},
        {"boldsymbol", styled("bi")},
        {"pmb", styled("bi")},
        {"mathcal", script("script")},
        {"mathscr", script("script")},
        {"cal", script("script")},
        {"mathit", styled("i")},
        {"it", styled("i")},
        {"mathrm", styled("p")},
        {"rm", styled("p")},
        {"mathfrak", script("fraktur")},
        {"mathsf", script("sans-serif")},
        {"sf", script("sans-serif")},
        {"mathtt", script("monospace")},
        {"tt", script("monospace")},
        {"mathrel", styled("p")},
        {"mathbin", styled("p")},
        {"mathord", styled("p")},
        {"mathpunct", styled("p")},
        {"mathopen", styled("p")},
        {"mathclose", styled("p")},
        {"mathinner", styled("p")},
    };
    std::vector<TreeCase> cases;
    for (const auto& [name, expectedLook] : alphabets) {
        const char* alphabet = name;
        cases.push_back(
            {name, [alphabet] { return command(alphabet, arg(group(text("x")))); }, run("x", expectedLook)});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(MathAlphabets, TextStyleTrees, ::testing::ValuesIn(alphabetCases()), caseName);

std::vector<TreeCase> fontCases()
{
    return {
        {"InnerAlphabetResetsTheOuter",
         [] { return command("mathbf", arg(group(command("mathit", arg(group(text("x"))))))); },
         run("x", styled("i"))},
        {"ScriptResetByStyle",
         [] { return command("mathbb", arg(group(command("mathbf", arg(group(text("R"))))))); },
         run("R", styled("b"))},
        {"UprightDKeptApartFromX", [] { return group(command("mathrm", arg(group(text("d")))), text("x")); },
         run("d", styled("p")) + run("x")},
        {"StyleEndsWithTheArgument",
         [] { return group(command("mathbf", arg(group(text("a")))), text("b")); },
         run("a", styled("b")) + run("b")},
        {"AlphabetWithoutArgument", [] { return command("mathbf"); }, ""},
        {"OperatorNameTakesTheFollowingNode",
         [] { return group(command("mathop", arg(group(text("lim")))), text("x"), text("y")); },
         func(run("lim", styled("p")), run("x")) + run("y")},
        {"OperatorNameAtTheEnd", [] { return command("mathop", arg(group(text("lim")))); },
         func(run("lim", styled("p")), "")},
        {"OperatorNameTakesTheOuterStyle",
         [] { return command("mathbf", arg(group(command("mathop", arg(group(text("f")))), text("x")))); },
         func(run("f", styled("p")), run("x", styled("b")), ctrl(styled("b")))},
        {"OperatorNameWithoutArgument", [] { return command("mathop"); }, ""},
        {"TextMergesWithMath", [] { return group(command("text", arg(group(text("if")))), text("x")); },
         run("ifx")},
        {"TextBold", [] { return command("textbf", arg(group(text("a")))); },
         [] {
             Look l = styled("b");
             l.bold = true;
             return run("a", l);
         }()},
        {"TextItalicAndEmphasis",
         [] {
             return group(command("textit", arg(group(text("a")))), command("emph", arg(group(text("b")))));
         },
         [] {
             Look l = styled("i");
             l.italic = true;
             return run("ab", l);
         }()},
        {"TextSansAndTypewriter",
         [] {
             return group(command("textsf", arg(group(text("a")))), command("texttt", arg(group(text("b")))));
         },
         run("a", script("sans-serif")) + run("b", script("monospace"))},
        {"PlainTextForms",
         [] {
             return group(command("textrm", arg(group(text("a")))),
                          command("textnormal", arg(group(text("b")))),
                          command("textup", arg(group(text("c")))), command("textmd", arg(group(text("d")))),
                          command("textsl", arg(group(text("e")))), command("textsc", arg(group(text("f")))));
         },
         run("abcdef")},
        {"TextKeepsAnAlphabet",
         [] { return command("mathbf", arg(group(command("text", arg(group(text("a"))))))); },
         run("a", styled("b"))},
        {"TextBoldInsideDoubleStruck",
         [] { return command("mathbb", arg(group(command("textbf", arg(group(text("a"))))))); },
         [] {
             Look l = look("double-struck", "b");
             l.bold = true;
             return run("a", l);
         }()},
        {"TextWithoutArgument", [] { return command("textbf"); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Fonts, TextStyleTrees, ::testing::ValuesIn(fontCases()), caseName);

std::vector<TreeCase> colourCases()
{
    const QString red = QStringLiteral("ff0000");
    return {
        {"NamedColour", [] { return command("color", arg(group(text("red"))), arg(group(text("x")))); },
         run("x", coloured("ff0000"))},
        {"TextColour", [] { return command("textcolor", arg(group(text("blue"))), arg(group(text("x")))); },
         run("x", coloured("0000ff"))},
        {"HashTextUsedUnchanged",
         [] { return command("color", arg(group(text("#00ff80"))), arg(group(text("x")))); },
         run("x", coloured("00ff80"))},
        {"BareTextArgument", [] { return command("color", arg(text("green")), arg(group(text("x")))); },
         run("x", coloured("008000"))},
        {"EmptyColourIsBlack", [] { return command("color", arg(group()), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"EscapedHashMarksHex",
         [] { return command("color", arg(group(command("#"), text("FF8000"))), arg(group(text("x")))); },
         run("x", coloured("ff8000"))},
        {"HashMarkSurvivesLaterCommands",
         [] {
             return command("color", arg(group(command("#"), command("alpha"), text("FF8000"))),
                            arg(group(text("x"))));
         },
         run("x", coloured("ff8000"))},
        {"MarkedHexOfWrongLengthIsBlack",
         [] { return command("color", arg(group(command("#"), text("FF800"))), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"MarkedNonHexIsBlack",
         [] { return command("color", arg(group(command("#"), text("GG0000"))), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"MarkWithoutTextIsBlack",
         [] { return command("color", arg(group(command("#"))), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"LastTextWins",
         [] {
             return command("color", arg(group(text("red"), command("alpha"), text("blue"))),
                            arg(group(text("x"))));
         },
         run("x", coloured("0000ff"))},
        {"OtherNodeIsBlack", [] { return command("color", arg(command("alpha")), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"UnreadableNameGivesAnInvalidColour",
         [] { return command("color", arg(group(text("rgb(1,0,0)"))), arg(group(text("x")))); },
         run("x", coloured("000000"))},
        {"ColourReachesRunsInStructures",
         [] {
             return command("color", arg(group(text("red"))),
                            arg(group(command("frac", arg(group(text("a"))),
                                              arg(group(command("sqrt", arg(group(text("b"))))))))));
         },
         frac(run("a", coloured("ff0000")),
              rad(run("b", coloured("ff0000")), QString(), true, ctrl(colouredControl("ff0000"))), QString(),
              ctrl(colouredControl("ff0000")))},
        {"OuterColourRepaintsInner",
         [] {
             return command("textcolor", arg(group(text("red"))),
                            arg(group(text("a"), command("textcolor", arg(group(text("blue"))),
                                                         arg(group(text("b")))))));
         },
         run("ab", coloured("ff0000"))},
        {"ColourChangeSplitsRuns",
         [] { return group(text("a"), command("color", arg(group(text("red"))), arg(group(text("b"))))); },
         run("a") + run("b", coloured("ff0000"))},
        {"ColourKeepsTheAlphabet",
         [] {
             return command("color", arg(group(text("red"))),
                            arg(group(command("mathbf", arg(group(text("x")))))));
         },
         [] {
             Look l = styled("b");
             l.colour = "ff0000";
             return run("x", l);
         }()},
        {"MissingContent", [] { return command("color", arg(group(text("red")))); }, ""},
        {"ContentWithoutNode", [] { return command("color", arg(group(text("red"))), arg(nullptr)); }, ""},
        {"ThreeArguments",
         [] {
             return command("color", arg(group(text("red"))), arg(group(text("x"))), arg(group(text("y"))));
         },
         ""},
        {"ColourBoxKeepsContentOnly",
         [] { return command("colorbox", arg(group(text("yellow"))), arg(group(text("x")))); }, run("x")},
        {"ColourBoxWithoutSpec", [] { return command("colorbox", arg(nullptr), arg(group(text("x")))); }, ""},
        {"ColourBoxWithoutContentNode",
         [] { return command("colorbox", arg(group(text("yellow"))), arg(nullptr)); }, ""},
        {"ColourBoxWithOneArgument", [] { return command("colorbox", arg(group(text("yellow")))); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Colours, TextStyleTrees, ::testing::ValuesIn(colourCases()), caseName);

std::vector<TreeCase> boxCases()
{
    return {
        {"FrameBox", [] { return command("fbox", arg(group(text("x")))); }, borderBox({}, run("x"))},
        {"Boxed", [] { return command("boxed", arg(group(text("x")))); }, borderBox({}, run("x"))},
        {"TextBoxes",
         [] {
             return group(command("mbox", arg(group(text("a")))), command("hbox", arg(group(text("b")))),
                          command("vbox", arg(group(text("c")))));
         },
         boxEl(run("a")) + boxEl(run("b")) + boxEl(run("c"))},
        {"BoxTakesTheCurrentStyle",
         [] { return command("mathsf", arg(group(command("fbox", arg(group(text("x"))))))); },
         borderBox({}, run("x", script("sans-serif")), ctrl(script("sans-serif")))},
        {"BoxWithoutArgument", [] { return command("mbox"); }, ""},
        {"EmptyBox", [] { return command("mbox", arg(group())); }, boxEl("")},
    };
}

INSTANTIATE_TEST_SUITE_P(Boxes, TextStyleTrees, ::testing::ValuesIn(boxCases()), caseName);

// Spaces: (command, dimension, expected text; empty for no node at all).
struct SpaceCase {
    const char* command;
    const char* dimension;
    const char* expected;
};

class Spaces : public ::testing::TestWithParam<SpaceCase> {};

TEST_P(Spaces, PickTheWidthCharacter)
{
    const SpaceCase& c = GetParam();
    const QString expected = *c.expected ? run(QString::fromUtf8(c.expected)) : QString();
    EXPECT_EQ(convertTree(command(c.command, arg(group(text(c.dimension))))), expected)
        << c.command << " " << c.dimension;
}

INSTANTIATE_TEST_SUITE_P(
    Dimensions, Spaces,
    ::testing::Values(SpaceCase{"hspace", "1em", u8"\u2003"}, SpaceCase{"kern", "3mu", u8"\u2005"},
                      SpaceCase{"hspace", "-1em", ""}, SpaceCase{"kern", "abc", ""},
                      SpaceCase{"hspace", "2cm", u8"\u2003\u2003"}, SpaceCase{"hskip", "0.5em", u8"\u2002"},
                      SpaceCase{"mskip", "0.25em", u8"\u2004"}, SpaceCase{"mkern", "0.16", u8"\u2005"},
                      SpaceCase{"mkern", "0.15", u8"\u2009"}, SpaceCase{"hspace", "1.99", u8"\u2003"},
                      SpaceCase{"hspace", "12pt", u8"\u2003"}, SpaceCase{"hspace", "11pt", u8"\u2002"},
                      SpaceCase{"hspace", "1ex", u8"\u2002"}, SpaceCase{"hspace", "36mu", u8"\u2003\u2003"},
                      SpaceCase{"hspace", "0em", ""}, SpaceCase{"hspace", "-0.0", ""},
                      SpaceCase{"hspace", "1.", u8"\u2003"}, SpaceCase{"hspace", "width 3 pt", u8"\u2004"},
                      SpaceCase{"hspace", "1 in", u8"\u2003"}, SpaceCase{"hspace", "", ""},
                      SpaceCase{"hspace", "99999999999999999999999", u8"\u2003\u2003"}));

TEST(Spaces, WithoutArgumentIsThin)
{
    EXPECT_EQ(convertTree(command("kern")), run(u8"\u2009"));
}

TEST(Spaces, DimensionTextIsGatheredFromTheGroup)
{
    // "1", "e" and "m" as separate texts; the command between them is skipped.
    EXPECT_EQ(convertTree(command("hspace", arg(group(text("1"), command("alpha"), text("e"), text("m"))))),
              run(u8"\u2003"));
    EXPECT_EQ(convertTree(command("hspace", arg(text("0.5")))), run(u8"\u2002"));
    EXPECT_EQ(convertTree(command("hspace", arg(command("alpha")))), "");
}

TEST(Spaces, TakeTheCurrentStyle)
{
    EXPECT_EQ(convertTree(command("mathbf", arg(group(command("hspace", arg(group(text("1em")))))))),
              run(u8"\u2003", styled("b")));
}

std::vector<TreeCase> moduloCases()
{
    return {
        {"ParenthesisedModMergesWithNeighbours",
         [] { return group(text("a"), command("pmod", arg(group(text("n"))))); },
         run(u8"a\u2005(mod\u2009n)\u2009")},
        {"BinaryMod", [] { return group(text("a"), command("bmod"), text("b")); },
         run(u8"a\u2005mod\u2005b")},
        {"BinaryModIgnoresAnArgument", [] { return command("bmod", arg(group(text("n")))); },
         run(u8"\u2005mod\u2005")},
        {"ParenthesesOnly", [] { return command("pod", arg(group(text("n")))); }, run(u8"\u2005(n)\u2009")},
        {"Mod", [] { return command("mod", arg(group(text("n")))); }, run(u8"\u2005mod\u2009n\u2009")},
        {"StructureInsideMod",
         [] {
             return command("mod", arg(group(command("frac", arg(group(text("a"))), arg(group(text("b")))))));
         },
         run(u8"\u2005mod\u2009") + frac(run("a"), run("b")) + run(u8"\u2009")},
        {"ModTakesTheCurrentStyle",
         [] { return command("mathrm", arg(group(command("pmod", arg(group(text("n"))))))); },
         run(u8"\u2005(mod\u2009n)\u2009", styled("p"))},
        {"ModWithoutArgument", [] { return group(command("pmod"), command("pod"), command("mod")); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Modulo, TextStyleTrees, ::testing::ValuesIn(moduloCases()), caseName);

class TextStyleSources : public HandlerSources {};

TEST_P(TextStyleSources, ConvertToExactOmml)
{
    check();
}

const Look red = coloured("ff0000");
const QString redCtrl = ctrl(colouredControl("ff0000"));

INSTANTIATE_TEST_SUITE_P(
    FromLatex, TextStyleSources,
    ::testing::Values(
        SourceCase{"\\mathbf{x}", run("x", styled("b"))},
        SourceCase{"\\boldsymbol{x}", run("x", styled("bi"))},
        SourceCase{"\\mathbb{R}", run("R", script("double-struck"))},
        SourceCase{"\\mathbf{\\mathit{x}}", run("x", styled("i"))}, SourceCase{"\\text{if}x", run("ifx")},
        SourceCase{"\\mathrm{d}x", run("d", styled("p")) + run("x")},
        SourceCase{"\\mathop{lim} x", func(run("lim", styled("p")), run("x"))},
        SourceCase{"\\color{red}{x}", run("x", red)}, SourceCase{"\\textcolor{red}{x}", run("x", red)},
        SourceCase{"\\color{#ff0000}{x}", run("x", red)},
        SourceCase{"\\color{}{x}", run("x", coloured("000000"))},
        SourceCase{"\\textcolor{red}{\\frac{a}{b}}c",
                   frac(run("a", red), run("b", red), QString(), redCtrl) + run("c")},
        SourceCase{"\\textcolor{red}{\\sqrt{x_1}}",
                   rad(sSub(run("x", red), run("1", red)), QString(), true, redCtrl)},
        // Without its second argument the colour command converts to nothing.
        SourceCase{"\\color{red} x", run("x")}, SourceCase{"\\colorbox{yellow}{x}", run("x")},
        SourceCase{"\\hspace{1em}", run(u8"\u2003")}, SourceCase{"\\kern{3mu}", run(u8"\u2005")},
        SourceCase{"\\hspace{-1em}", ""}, SourceCase{"\\kern{abc}", ""},
        SourceCase{"\\hspace{2cm}", run(u8"\u2003\u2003")}, SourceCase{"\\hspace{0.5 em}", run(u8"\u2002")},
        SourceCase{"\\kern3mu", run(u8"\u20093mu")},
        SourceCase{"a \\pmod{n}", run(u8"a\u2005(mod\u2009n)\u2009")},
        SourceCase{"a\\bmod b", run(u8"a\u2005mod\u2005b")}, SourceCase{"\\fbox{x}", borderBox({}, run("x"))},
        SourceCase{"\\mbox{x}", boxEl(run("x"))}));

TEST(TextStyle, StyleStackIsBalancedAfterEveryHandler)
{
    // A style left on the stack would leak into the trailing run.
    KLatexAst2Omml converter;
    converter.prepare(false);
    const auto root =
        group(command("mathbf", arg(group(text("a")))), command("textit", arg(group(text("b")))),
              command("mathop", arg(group(text("c")))), command("mathbf"), text("z"));
    converter.convert(*root);
    const OControlProperties& style = converter.currentStyle();
    EXPECT_FALSE(style.mathProps.has_value());
    EXPECT_FALSE(style.wordProps.italic);
    EXPECT_FALSE(style.wordProps.bold);
}

TEST(TextStyle, NonBmpTextKeepsItsAlphabet)
{
    const QString clef = QString::fromUtf8(u8"\U0001D11E");
    EXPECT_EQ(convertTree(command("mathcal", arg(group(text(clef))))), run(clef, script("script")));
}

} // namespace
