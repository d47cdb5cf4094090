// Macros the input defines, expanded where they are used: each row is a source, the tree it
// parses to (the children of the root group on one line) and its diagnostics ("code pos+length").

#include "latex/macro_expander.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct MacroCase {
    const char* source;
    const char* tree;
    const char* diagnostics = "";
};

void PrintTo(const MacroCase& c, std::ostream* os)
{
    *os << c.source;
}

class Macros : public ::testing::TestWithParam<MacroCase> {};

QString codesOf(const LatexDiagnostics& diagnostics)
{
    QStringList codes;
    for (const LatexDiagnostic& d : diagnostics)
        codes << QStringLiteral("%1 %2+%3").arg(d.code).arg(d.pos).arg(d.length);
    return codes.join(QLatin1String(" | "));
}

TEST_P(Macros, ExpandWhereUsed)
{
    const MacroCase& c = GetParam();
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QString::fromUtf8(c.source), diagnostics);
    const QString tree = QString::fromUtf8(c.tree);
    EXPECT_EQ(foldedDump(dumpLatexTree(root.get())),
              tree.isEmpty() ? QStringLiteral("Group") : QStringLiteral("Group{%1}").arg(tree));
    EXPECT_EQ(codesOf(diagnostics), QString::fromUtf8(c.diagnostics));
}

const MacroCase kDefinitions[] = {
    // Each way of defining, without parameters.
    {R"(\def\R{\mathbb{R}}x\in\R)", R"("x" Command "in" Command "mathbb"{arg{Group{"R"}}})"},
    {R"(\gdef\a{b}\a)", R"("b")"},
    {R"(\newcommand{\R}{\mathbb R}\R)", R"(Command "mathbb"{arg{Group{"R"}}})"},
    {R"(\newcommand\R{r}\R)", R"("r")"},
    {R"(\newcommand*{\R}{r}\R)", R"("r")"},
    {R"(\renewcommand{\alpha}{a}\alpha)", R"("a")"},
    // \providecommand defines a name that means nothing yet, and leaves the others.
    {R"(\providecommand{\x}{y}\x)", R"("y")"},
    {R"(\providecommand{\alpha}{y}\alpha)", R"(Command "alpha")"},
    {R"(\def\x{1}\providecommand{\x}{2}\x)", R"("1")"},
    // Operators: upright names, the starred form with limits below.
    {R"(\DeclareMathOperator{\tr}{tr}\tr A)", R"(Command "operatorname"{arg{Group{"t" "r"}}} "A")"},
    {R"(\DeclareMathOperator*{\argmax}{arg\,max}\argmax_x)",
     R"(Script{base{Command "operatorname*"{arg{Group{"a" "r" "g" Command "space_thin" "m" "a" "x"}}}} sub{"x"}})"},
    {R"(\DeclareMathOperator\sgn{sgn}\sgn)", R"(Command "operatorname"{arg{Group{"s" "g" "n"}}})"},
    // Prefixes before \def change nothing.
    {R"(\global\long\def\a{b}\a)", R"("b")"},
};
INSTANTIATE_TEST_SUITE_P(Definitions, Macros, ::testing::ValuesIn(kDefinitions));

const MacroCase kParameters[] = {
    {R"(\newcommand{\pair}[2]{(#1,#2)}\pair{a}{b})", R"~("(" "a" "," "b" ")")~"},
    {R"(\newcommand{\sq}[1]{#1^2}\sq x)", R"(Script{base{"x"} sup{"2"}})"},
    {R"(\def\f#1#2{\frac{#2}{#1}}\f12)", R"(Command "frac"{arg{Group{"2"}} arg{Group{"1"}}})"},
    {R"(\def\twice#1{#1#1}\twice{ab})", R"("a" "b" "a" "b")"},
    {R"(\newcommand{\n}[9]{#9#1}\n123456789)", R"("9" "1")"},
    // An optional first argument: its default, or what the use gives in brackets.
    {R"(\newcommand{\p}[2][x]{#1^#2}\p{3})", R"(Script{base{"x"} sup{"3"}})"},
    {R"(\newcommand{\p}[2][x]{#1^#2}\p[y]{3})", R"(Script{base{"y"} sup{"3"}})"},
    {R"(\newcommand{\p}[2][x]{#1^#2}\p[{[a]}]{3})", R"(Script{base{Group{"[" "a" "]"}} sup{"3"}})"},
    {R"(\newcommand{\p}[1][x]{<#1>}\p\p[y])", R"("<" "x" ">" "<" "y" ">")"},
    // ## in a body stands for one #, for a definition made when the macro is used.
    {R"(\def\mk{\def\in##1{[##1]}}\mk\in{a})", R"("[" "a" "]")"},
    // Delimited parameters, as \def writes them.
    {R"(\def\p(#1,#2){#2#1}\p(a,b)c)", R"("b" "a" "c")"},
    {R"(\def\p#1.{[#1]}\p ab.c)", R"("[" "a" "b" "]" "c")"},
    {R"(\def\p#1.{[#1]}\p{ab}.c)", R"("[" "a" "b" "]" "c")"},
    // A use that does not match its definition is dropped, the rest stays.
    {R"(\def\p(#1){#1}\p x)", R"("x")"},
    {R"(\def\p#1.{#1}\p ab)", R"("a" "b")"},
    // A missing argument at the end of the input: the use is dropped.
    {R"(\newcommand{\f}[1]{#1}x\f)", R"("x")"},
    // \name* is the name and a star, which may be its argument.
    {R"(\newcommand{\f}[1]{[#1]}\f*)", R"("[" "*" "]")"},
    {R"(\newcommand{\g}{g}\g*)", R"("g" "*")"},
};
INSTANTIATE_TEST_SUITE_P(Parameters, Macros, ::testing::ValuesIn(kParameters));

const MacroCase kMeanings[] = {
    // \let copies a meaning: a symbol, a character, or a macro as it is now.
    {R"(\let\ge\geq a\ge b)", R"("a" Command "geq" "b")"},
    {R"(\let\x=y\x)", R"("y")"},
    {R"(\def\a{1}\let\b\a\def\a{2}\b\a)", R"("1" "2")"},
    // Redefinition takes effect from where it stands.
    {R"(\def\a{1}\a\def\a{2}\a\renewcommand{\a}{3}\a)", R"("1" "2" "3")"},
    // \edef expands its body now; \def when it is used.
    {R"(\def\a{1}\edef\b{\a}\def\a{2}\b)", R"("1")"},
    {R"(\def\a{1}\def\b{\a}\def\a{2}\b)", R"("2")"},
    {R"(\def\a{x}\xdef\b{\a\a}\b)", R"("x" "x")"},
    // A \let alias of a name that is then defined keeps the old meaning.
    {R"(\let\s\sum\def\sum{S}\s\sum)", R"(Command "sum" "S")"},
    // Macros inside environments and inside arguments.
    {R"(\def\c{a&b}\begin{matrix}\c\end{matrix})", R"(Env "matrix"{body{Row{Group{"a"} Group{"b"}}}})"},
    {R"(\def\x{y}\frac{\x}{\x})", R"(Command "frac"{arg{Group{"y"}} arg{Group{"y"}}})"},
};
INSTANTIATE_TEST_SUITE_P(Meanings, Macros, ::testing::ValuesIn(kMeanings));

const MacroCase kIncomplete[] = {
    // Definitions that cannot be read are left to the parser, as before.
    {R"(\def)", R"(Command "def")"},
    {R"(\def\x)", R"(Command "def"{arg{Group{Unknown "x"}}})"},
    {R"(\newcommand{\x}[a]{b})", R"(Command "newcommand"{arg{Group{Unknown "x"}} optarg{Group{"a"}} arg{Group{"b"}}})"},
    {R"(\let\x)", R"(Command "let"{arg{Group{Unknown "x"}}})"},
    {R"(\DeclareMathOperator{\x})", R"(Command "DeclareMathOperator"{arg{Group{Unknown "x"}}})", "E_arg1_missing 24+0"},
};
INSTANTIATE_TEST_SUITE_P(Incomplete, Macros, ::testing::ValuesIn(kIncomplete));

// Inputs that would loop or grow without end stop at a bound; each bound is reported once.
const MacroCase kBounds[] = {
    {R"(\def\a{\a}\a x)", R"("x")", "F_macro_depth 10+2"},
    {R"(\def\a{x\a}\a)", nullptr, "F_macro_depth 11+2"},
    {R"(\def\a#1{\a{#1#1}}\a x)", R"()", "F_macro_growth 18+2"},
    // Doubling at every level: the first path reaches the depth bound, the others the growth bound.
    {R"(\def\a{\b\b}\def\b{\c\c}\def\c{\a\a}\a)", R"()", "F_macro_depth 36+2 | F_macro_growth 36+2"},
    {R"(\def\a{\b}\def\b{\a}\a\a)", R"()", "F_macro_depth 20+2"},
};

TEST(MacroBounds, StopAtABoundAndSaySo)
{
    for (const MacroCase& c : kBounds) {
        LatexDiagnostics diagnostics;
        const KLatexNodePtr root = parseLatex(QString::fromUtf8(c.source), diagnostics);
        ASSERT_TRUE(root) << c.source;
        EXPECT_EQ(codesOf(diagnostics), QString::fromUtf8(c.diagnostics)) << c.source;
        EXPECT_EQ(diagnostics.front().severity, 3) << c.source;
        if (!c.tree)
            continue;
        const QString tree = QString::fromUtf8(c.tree);
        EXPECT_EQ(foldedDump(dumpLatexTree(root.get())),
                  tree.isEmpty() ? QStringLiteral("Group") : QStringLiteral("Group{%1}").arg(tree))
            << c.source;
    }
}

TEST(MacroBounds, MessagesNameTheMacro)
{
    LatexDiagnostics diagnostics;
    parseLatex(QStringLiteral("\\def\\loop{\\loop}\\loop"), diagnostics);
    ASSERT_EQ(diagnostics.size(), 1u);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_macro_depth 16+5 Macro expansion nested too deeply; \\loop not expanded."));
    diagnostics.clear();
    parseLatex(QStringLiteral("\\def\\g#1{\\g{#1#1#1}}\\g x"), diagnostics);
    ASSERT_EQ(diagnostics.size(), 1u);
    EXPECT_EQ(diagnostics.front().message,
              QStringLiteral("Macro expansion produced too many tokens; \\g not expanded."));
}

TEST(MacroBounds, DepthIsCountedPerNestingNotPerUse)
{
    // Many uses one after another are no nesting: all of them expand.
    QString source = QStringLiteral("\\def\\a{x}");
    for (int i = 0; i < 5000; ++i)
        source += QStringLiteral("\\a");
    LatexDiagnostics diagnostics;
    parseLatex(source, diagnostics);
    EXPECT_EQ(codesOf(diagnostics), QStringLiteral("F_nesting_overflow 2059+2")); // the parser's item limit
    // Nesting just inside the bound expands fully.
    QString nested = QStringLiteral("\\def\\a#1{#1}");
    for (int i = 0; i < KMacroExpander::kMaxDepth - 1; ++i)
        nested += QStringLiteral("\\a{");
    nested += QStringLiteral("x");
    for (int i = 0; i < KMacroExpander::kMaxDepth - 1; ++i)
        nested += QStringLiteral("}");
    diagnostics.clear();
    const KLatexNodePtr deep = parseLatex(nested, diagnostics);
    EXPECT_EQ(codesOf(diagnostics), QString());
    EXPECT_EQ(foldedDump(dumpLatexTree(deep.get())), QStringLiteral("Group{\"x\"}"));
}

TEST(MacroExpander, ListWithoutDefinitionsComesBackUnchanged)
{
    LatexDiagnostics diagnostics;
    std::vector<Token> tokens(3);
    tokens[0] = Token{TokenKind::Command, QStringLiteral("alpha"), true, 0, 7};
    tokens[1] = Token{TokenKind::Char, QStringLiteral("#"), false, 7, 1};
    const std::vector<Token> out = KMacroExpander(diagnostics).expand(tokens);
    ASSERT_EQ(out.size(), tokens.size());
    for (std::size_t i = 0; i < out.size(); ++i) {
        EXPECT_EQ(out[i].kind, tokens[i].kind);
        EXPECT_EQ(out[i].text, tokens[i].text);
        EXPECT_EQ(out[i].starred, tokens[i].starred);
        EXPECT_EQ(out[i].pos, tokens[i].pos);
    }
    EXPECT_TRUE(diagnostics.empty());
}

TEST(MacroExpander, ExpandedTokensPointAtTheUse)
{
    // An error at a token of a macro body is reported where the macro is used.
    LatexDiagnostics diagnostics;
    parseLatex(QStringLiteral("\\def\\bad{\\frac{a}&}xy\\bad"), diagnostics);
    EXPECT_EQ(codesOf(diagnostics), QStringLiteral("E_arg2_missing 21+4 | E_unexpected_token 21+4"));
}

} // namespace
