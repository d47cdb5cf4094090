#include "handler_test_support.h"

#include <gtest/gtest.h>

#include <functional>

using namespace l2o_test;

namespace {

struct TreeCase {
    const char* name;
    std::function<KLatexNodePtr()> tree;
    QString expected;
};

void PrintTo(const TreeCase& c, std::ostream* os)
{
    *os << c.name;
}

class TextStyleTrees : public ::testing::TestWithParam<TreeCase> {};

TEST_P(TextStyleTrees, ConvertToExactOmml)
{
    EXPECT_EQ(convertTree(GetParam().tree()), GetParam().expected);
}

std::string caseName(const ::testing::TestParamInfo<TreeCase>& info)
{
    return info.param.name;
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
        const char* command = name;
        cases.push_back({name, [command] { return C(command, A(G(T("x")))); }, run("x", expectedLook)});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(MathAlphabets, TextStyleTrees, ::testing::ValuesIn(alphabetCases()), caseName);

std::vector<TreeCase> fontCases()
{
    return {
        {"InnerAlphabetResetsTheOuter", [] { return C("mathbf", A(G(C("mathit", A(G(T("x"))))))); },
         run("x", styled("i"))},
        {"ScriptResetByStyle", [] { return C("mathbb", A(G(C("mathbf", A(G(T("R"))))))); },
         run("R", styled("b"))},
        {"UprightDKeptApartFromX", [] { return G(C("mathrm", A(G(T("d")))), T("x")); },
         run("d", styled("p")) + run("x")},
        {"StyleEndsWithTheArgument", [] { return G(C("mathbf", A(G(T("a")))), T("b")); },
         run("a", styled("b")) + run("b")},
        {"AlphabetWithoutArgument", [] { return C("mathbf"); }, ""},
        {"OperatorNameTakesTheFollowingNode", [] { return G(C("mathop", A(G(T("lim")))), T("x"), T("y")); },
         func(run("lim", styled("p")), run("x")) + run("y")},
        {"OperatorNameAtTheEnd", [] { return C("mathop", A(G(T("lim")))); },
         func(run("lim", styled("p")), "")},
        {"OperatorNameTakesTheOuterStyle",
         [] { return C("mathbf", A(G(C("mathop", A(G(T("f")))), T("x")))); },
         func(run("f", styled("p")), run("x", styled("b")), ctrl(styled("b")))},
        {"OperatorNameWithoutArgument", [] { return C("mathop"); }, ""},
        {"TextMergesWithMath", [] { return G(C("text", A(G(T("if")))), T("x")); }, run("ifx")},
        {"TextBold", [] { return C("textbf", A(G(T("a")))); },
         [] {
             Look l = styled("b");
             l.bold = true;
             return run("a", l);
         }()},
        {"TextItalicAndEmphasis", [] { return G(C("textit", A(G(T("a")))), C("emph", A(G(T("b"))))); },
         [] {
             Look l = styled("i");
             l.italic = true;
             return run("ab", l);
         }()},
        {"TextSansAndTypewriter", [] { return G(C("textsf", A(G(T("a")))), C("texttt", A(G(T("b"))))); },
         run("a", script("sans-serif")) + run("b", script("monospace"))},
        {"PlainTextForms",
         [] {
             return G(C("textrm", A(G(T("a")))), C("textnormal", A(G(T("b")))), C("textup", A(G(T("c")))),
                      C("textmd", A(G(T("d")))), C("textsl", A(G(T("e")))), C("textsc", A(G(T("f")))));
         },
         run("abcdef")},
        {"TextKeepsAnAlphabet", [] { return C("mathbf", A(G(C("text", A(G(T("a"))))))); },
         run("a", styled("b"))},
        {"TextBoldInsideDoubleStruck", [] { return C("mathbb", A(G(C("textbf", A(G(T("a"))))))); },
         [] {
             Look l = look("double-struck", "b");
             l.bold = true;
             return run("a", l);
         }()},
        {"TextWithoutArgument", [] { return C("textbf"); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Fonts, TextStyleTrees, ::testing::ValuesIn(fontCases()), caseName);

std::vector<TreeCase> colourCases()
{
    const QString red = QStringLiteral("ff0000");
    return {
        {"NamedColour", [] { return C("color", A(G(T("red"))), A(G(T("x")))); },
         run("x", coloured("ff0000"))},
        {"TextColour", [] { return C("textcolor", A(G(T("blue"))), A(G(T("x")))); },
         run("x", coloured("0000ff"))},
        {"HashTextUsedUnchanged", [] { return C("color", A(G(T("#00ff80"))), A(G(T("x")))); },
         run("x", coloured("00ff80"))},
        {"BareTextArgument", [] { return C("color", A(T("green")), A(G(T("x")))); },
         run("x", coloured("008000"))},
        {"EmptyColourIsBlack", [] { return C("color", A(G()), A(G(T("x")))); }, run("x", coloured("000000"))},
        {"EscapedHashMarksHex", [] { return C("color", A(G(C("#"), T("FF8000"))), A(G(T("x")))); },
         run("x", coloured("ff8000"))},
        {"HashMarkSurvivesLaterCommands",
         [] { return C("color", A(G(C("#"), C("alpha"), T("FF8000"))), A(G(T("x")))); },
         run("x", coloured("ff8000"))},
        {"MarkedHexOfWrongLengthIsBlack", [] { return C("color", A(G(C("#"), T("FF800"))), A(G(T("x")))); },
         run("x", coloured("000000"))},
        {"MarkedNonHexIsBlack", [] { return C("color", A(G(C("#"), T("GG0000"))), A(G(T("x")))); },
         run("x", coloured("000000"))},
        {"MarkWithoutTextIsBlack", [] { return C("color", A(G(C("#"))), A(G(T("x")))); },
         run("x", coloured("000000"))},
        {"LastTextWins", [] { return C("color", A(G(T("red"), C("alpha"), T("blue"))), A(G(T("x")))); },
         run("x", coloured("0000ff"))},
        {"OtherNodeIsBlack", [] { return C("color", A(C("alpha")), A(G(T("x")))); },
         run("x", coloured("000000"))},
        {"UnreadableNameGivesAnInvalidColour", [] { return C("color", A(G(T("rgb(1,0,0)"))), A(G(T("x")))); },
         run("x", coloured("000000"))},
        {"ColourReachesRunsInStructures",
         [] {
             return C("color", A(G(T("red"))), A(G(C("frac", A(G(T("a"))), A(G(C("sqrt", A(G(T("b"))))))))));
         },
         frac("", run("a", coloured("ff0000")),
              withCtrl("rad", ctrl(colouredControl("ff0000")) + val("degHide", "on"),
                       "<m:deg/>" + arg("e", run("b", coloured("ff0000")))),
              ctrl(colouredControl("ff0000")))},
        {"OuterColourRepaintsInner",
         [] {
             return C("textcolor", A(G(T("red"))),
                      A(G(T("a"), C("textcolor", A(G(T("blue"))), A(G(T("b")))))));
         },
         run("ab", coloured("ff0000"))},
        {"ColourChangeSplitsRuns", [] { return G(T("a"), C("color", A(G(T("red"))), A(G(T("b"))))); },
         run("a") + run("b", coloured("ff0000"))},
        {"ColourKeepsTheAlphabet", [] { return C("color", A(G(T("red"))), A(G(C("mathbf", A(G(T("x"))))))); },
         [] {
             Look l = styled("b");
             l.colour = "ff0000";
             return run("x", l);
         }()},
        {"MissingContent", [] { return C("color", A(G(T("red")))); }, ""},
        {"ContentWithoutNode", [] { return C("color", A(G(T("red"))), A(nullptr)); }, ""},
        {"ThreeArguments", [] { return C("color", A(G(T("red"))), A(G(T("x"))), A(G(T("y")))); }, ""},
        {"ColourBoxKeepsContentOnly", [] { return C("colorbox", A(G(T("yellow"))), A(G(T("x")))); },
         run("x")},
        {"ColourBoxWithoutSpec", [] { return C("colorbox", A(nullptr), A(G(T("x")))); }, ""},
        {"ColourBoxWithoutContentNode", [] { return C("colorbox", A(G(T("yellow"))), A(nullptr)); }, ""},
        {"ColourBoxWithOneArgument", [] { return C("colorbox", A(G(T("yellow")))); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Colours, TextStyleTrees, ::testing::ValuesIn(colourCases()), caseName);

std::vector<TreeCase> boxCases()
{
    return {
        {"FrameBox", [] { return C("fbox", A(G(T("x")))); }, borderBox({}, run("x"))},
        {"Boxed", [] { return C("boxed", A(G(T("x")))); }, borderBox({}, run("x"))},
        {"TextBoxes",
         [] { return G(C("mbox", A(G(T("a")))), C("hbox", A(G(T("b")))), C("vbox", A(G(T("c"))))); },
         boxEl(run("a")) + boxEl(run("b")) + boxEl(run("c"))},
        {"BoxTakesTheCurrentStyle", [] { return C("mathsf", A(G(C("fbox", A(G(T("x"))))))); },
         borderBox({}, run("x", script("sans-serif")), ctrl(script("sans-serif")))},
        {"BoxWithoutArgument", [] { return C("mbox"); }, ""},
        {"EmptyBox", [] { return C("mbox", A(G())); }, boxEl("")},
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
    EXPECT_EQ(convertTree(C(c.command, A(G(T(c.dimension))))), expected) << c.command << " " << c.dimension;
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
    EXPECT_EQ(convertTree(C("kern")), run(u8"\u2009"));
}

TEST(Spaces, DimensionTextIsGatheredFromTheGroup)
{
    // "1", "e" and "m" as separate texts; the command between them is skipped.
    EXPECT_EQ(convertTree(C("hspace", A(G(T("1"), C("alpha"), T("e"), T("m"))))), run(u8"\u2003"));
    EXPECT_EQ(convertTree(C("hspace", A(T("0.5")))), run(u8"\u2002"));
    EXPECT_EQ(convertTree(C("hspace", A(C("alpha")))), "");
}

TEST(Spaces, TakeTheCurrentStyle)
{
    EXPECT_EQ(convertTree(C("mathbf", A(G(C("hspace", A(G(T("1em")))))))), run(u8"\u2003", styled("b")));
}

std::vector<TreeCase> moduloCases()
{
    return {
        {"ParenthesisedModMergesWithNeighbours", [] { return G(T("a"), C("pmod", A(G(T("n"))))); },
         run(u8"a\u2005(mod\u2009n)\u2009")},
        {"BinaryMod", [] { return G(T("a"), C("bmod"), T("b")); }, run(u8"a\u2005mod\u2005b")},
        {"BinaryModIgnoresAnArgument", [] { return C("bmod", A(G(T("n")))); }, run(u8"\u2005mod\u2005")},
        {"ParenthesesOnly", [] { return C("pod", A(G(T("n")))); }, run(u8"\u2005(n)\u2009")},
        {"Mod", [] { return C("mod", A(G(T("n")))); }, run(u8"\u2005mod\u2009n\u2009")},
        {"StructureInsideMod", [] { return C("mod", A(G(C("frac", A(G(T("a"))), A(G(T("b"))))))); },
         run(u8"\u2005mod\u2009") + frac("", run("a"), run("b")) + run(u8"\u2009")},
        {"ModTakesTheCurrentStyle", [] { return C("mathrm", A(G(C("pmod", A(G(T("n"))))))); },
         run(u8"\u2005(mod\u2009n)\u2009", styled("p"))},
        {"ModWithoutArgument", [] { return G(C("pmod"), C("pod"), C("mod")); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Modulo, TextStyleTrees, ::testing::ValuesIn(moduloCases()), caseName);

TEST(TextStyle, StyleStackIsBalancedAfterEveryHandler)
{
    // A style left on the stack would leak into the trailing run.
    KLatexAst2Omml converter;
    converter.prepare(false);
    const auto root = G(C("mathbf", A(G(T("a")))), C("textit", A(G(T("b")))), C("mathop", A(G(T("c")))),
                        C("mathbf"), T("z"));
    converter.convert(*root);
    const OControlProperties& style = converter.currentStyle();
    EXPECT_FALSE(style.mathProps.has_value());
    EXPECT_FALSE(style.wordProps.italic);
    EXPECT_FALSE(style.wordProps.bold);
}

TEST(TextStyle, NonBmpTextKeepsItsAlphabet)
{
    const QString clef = QString::fromUtf8(u8"\U0001D11E");
    EXPECT_EQ(convertTree(C("mathcal", A(G(T(clef))))), run(clef, script("script")));
}

} // namespace
