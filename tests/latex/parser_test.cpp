// Whole parses as one row each: the children of the root group folded onto one line, and every
// diagnostic as "code pos+length", or in full with severity and message (at least once per code).

#include "latex/latex_env.h"
#include "latex/latex_lexer.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

#include <cctype>

namespace {

struct ParseCase {
    const char* source;
    const char* tree; // inside the root Group
    const char* diagnostics;
    int itemLimit = KLatexParser::kItemLimit;
};

class Parser : public ::testing::TestWithParam<ParseCase> {};

TEST_P(Parser, ExactTreeAndDiagnostics)
{
    const ParseCase& c = GetParam();
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QString::fromUtf8(c.source), diagnostics, c.itemLimit);
    const QString tree = QString::fromUtf8(c.tree);
    EXPECT_EQ(foldedDump(dumpLatexTree(root.get())),
              tree.isEmpty() ? QStringLiteral("Group") : QStringLiteral("Group{%1}").arg(tree))
        << c.source;
    if (std::isdigit(static_cast<unsigned char>(c.diagnostics[0]))) {
        EXPECT_EQ(diagnosticsText(diagnostics), QString::fromUtf8(c.diagnostics)) << c.source;
        return;
    }
    QStringList codes;
    for (const LatexDiagnostic& d : diagnostics) {
        codes << QStringLiteral("%1 %2+%3").arg(d.code).arg(d.pos).arg(d.length);
        EXPECT_EQ(d.severity, QStringLiteral("WEF").indexOf(d.code.front()) + 1) << c.source;
    }
    EXPECT_EQ(codes.join(QLatin1String(" | ")), QString::fromUtf8(c.diagnostics)) << c.source;
}

// Items a \left body fails on are parsed again by the enclosing list; small item limits cut lists.
const ParseCase kCases[] = {
    {"}", "", "E_unexpected_token 0+1"},
    {"a&b", R"("a" "b")", "E_unexpected_token 1+1"},
    {"{a", R"(Group{"a"})", R"(2 E_missing_rbrace 1+1 Missing '}'.)"},
    {R"(\sqrt[3]{x^2+1})",
     R"(Command "sqrt"{optarg{Group{"3"}} arg{Group{Script{base{"x"} sup{"2"}} "+" "1"}}})", ""},
    {R"(\sqrt[3{x})", R"(Command "sqrt"{optarg{Group{"3" Group{"x"}}}})",
     R"(2 E_missing_rbracket 9+1 Missing ']'. | 2 E_req_missing 10+0 \sqrt missing required argument.)"},
    {R"(x\)", R"("x" Unknown "\\")", R"(1 W_backslash_eof 1+1 Trailing backslash at end of input)"},
    {R"(\\[2pt]a\\b)", R"(Command "\\\\"{optarg{Group{"2" "p" "t"}}} "a" Command "\\\\" "b")", ""},
    {R"(\alpha{x})", R"(Command "alpha" Group{"x"})", ""},
    {R"(\foo[a]{b}{c})", R"(Unknown "foo" "[" "a" "]" Group{"b"} Group{"c"})", ""},
    {R"(\{x\})", R"(Command "{" "x" Command "}")", ""},
    {R"(\end{x})", R"(Command "end" Group{"x"})", ""},
    {R"(\'e)", R"(Command "'"{arg{Group{"e"}}})", ""},
    {R"(\frac}ab)", R"(Command "frac" "a" "b")",
     R"(2 E_arg1_missing 5+1 \frac missing first argument. | 2 E_arg2_missing 5+1 \frac missing second argument. | 2 E_unexpected_token 5+1 Unexpected token while parsing expression.)"},
    {R"(\hat)", R"(Command "hat")", R"(2 E_arg_missing 4+0 \hat expects one argument.)"},
    {R"(\alpha*)", R"(Unknown "alpha*")", ""},
    {"x^2_3", R"(Script{base{"x"} sup{"2"} sub{"3"}})", ""},
    {"_3^2", R"(Script{base{Group} sup{"2"} sub{"3"}})", ""},
    {"x^a_b^c", R"(Script{base{Script{base{"x"} sup{"a"} sub{"b"}}} sup{"c"}})", ""},
    {"x^a^b", R"(Script{base{"x"} sup{"a"}} "b")", ""},
    {"x^a^_b", R"(Script{base{"x"} sup{"a"} sub{"b"}})", ""},
    {"x^12", R"(Script{base{"x"} sup{"1"}} "2")", ""},
    {"x^}", R"(Script{base{"x"} sup{Group}})",
     R"(2 E_missing_script_arg 2+1 Missing superscript/subscript argument. | 2 E_unexpected_token 2+1 Unexpected token while parsing expression.)"},
    {"x^a^^b", R"(Script{base{Script{base{"x"} sup{"a"}}} sup{"b"}})", ""},
    {R"({a \over b})", R"(Command "over"{arg{Group{"a"}} arg{Group{"b"}}})", ""},
    {R"(a \over b)", R"("a" Command "over" "b")", ""},
    {R"({a \over b \over c})", R"(Command "over"{arg{Group{"a"}} arg{Group{"b" Command "over" "c"}}})", ""},
    {R"({\choose})", R"(Command "choose"{arg{Group} arg{Group}})", ""},
    {R"([a \over b])", R"("[" "a" Command "over" "b" "]")", ""},
    {R"({\buildrel a \over b})", R"(Group{Command "overset"{arg{Group{"a"}} arg{"b"}}})", ""},
    {R"({\buildrel a})", R"(Group{Group{"a"}})", R"(2 E_buildrel_over 12+1 \buildrel expects \over.)"},
    {R"(\buildrel a \over b)", R"(Command "buildrel" "a" Command "over" "b")", ""},
    {R"(\left( \frac{1}{2} \right))",
     R"~(LeftRight "(" ")" left-right{Group{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}})~", ""},
    {R"(\left( x)", R"(LeftRight "(" "." left-right{Group} "x")", R"(2 E_missing_right 8+0 Missing \right.)"},
    {R"(\left1 x\right))", R"~(LeftRight "." ")" left-right{Group{"1" "x"}})~",
     R"(1 W_left_delim 5+1 \left expects a delimiter; got '1'. Using '.'.)"},
    {R"(\left x\right y)", R"(LeftRight "x" "y" left-right{Group})", ""},
    {R"(\right)", R"(LeftRight "." "." left-right{Group})", ""},
    {R"(\left(a\right)", R"(LeftRight "(" "." left-right{Group{"a"}})",
     R"(1 W_right_delim 13+0 \right expects a delimiter; got ''. Using '.'.)"},
    {R"(\left{a\right})",
     R"(LeftRight "." "." left-right{Group} Group{"a" LeftRight "." "." left-right{Group}})",
     "W_left_delim 5+1 | E_missing_right 14+0"},
    {R"(\left( a \middle| b \right))",
     R"~(LeftRight "(" ")" left-right{Group{"a" Command "middle"{arg{Group{"|"}}} "b"}})~", ""},
    {R"(\left( } x)", R"(LeftRight "(" "." left-right{Group} "x")",
     "E_unexpected_token 7+1 | E_missing_right 10+0"},
    {R"({\left( a} b \right))", R"~(Group{LeftRight "(" ")" left-right{Group{"a" "b"}}})~",
     "E_unexpected_token 9+1 | E_missing_rbrace 19+1"},
    {R"(\left( \left[ x \right))",
     R"~(LeftRight "(" "." left-right{Group} LeftRight "[" ")" left-right{Group{"x"}})~",
     "E_missing_right 23+0"},
    {R"(^ \frac { a \left. b } _ a \begin{foo} a a)",
     R"(Script{base{Group} sup{Command "frac"{arg{Group{"a" LeftRight "." "." left-right{Group} "b"}}}} sub{"a"}} Env "foo"{body{Group{"a" "a"}}})",
     "E_unexpected_token 21+1 | E_missing_end 42+0 | E_missing_right 42+0 | E_arg2_missing 23+1"},
    {R"({ a a _ \right) \right) _ b a \left( a ^ } _)",
     R"~(Script{base{Group{"a" Script{base{"a"} sub{LeftRight "." ")" left-right{Group}}} Script{base{LeftRight "." ")" left-right{Group}} sub{"b"}} "a" LeftRight "(" "." left-right{Group} Script{base{"a"} sup{Group}}}} sub{Group}})~",
     "E_missing_script_arg 41+1 | E_unexpected_token 41+1 | E_missing_script_arg 44+0 | E_missing_right 44+0 "
     "| E_missing_script_arg 41+1 | E_missing_script_arg 44+0"},
    {R"(\left( a _ \left[ _ \right) ] c } \left[ \right) })",
     R"~(LeftRight "(" ")" left-right{Group{Script{base{"a"} sub{LeftRight "[" "." left-right{Group}}}}} "]" "c" LeftRight "[" ")" left-right{Group})~",
     "E_unexpected_token 32+1 | E_unexpected_token 49+1 | E_missing_right 50+0"},
    {R"(\begin{pmatrix}a&b\\c&d\end{pmatrix})",
     R"(Env "pmatrix"{body{Row{Group{"a"} Group{"b"}} Row{Group{"c"} Group{"d"}}}})", ""},
    {R"(\begin{pmatrix}a\\\end{pmatrix})", R"(Env "pmatrix"{body{Row{Group{"a"}} Row{Group}}})", ""},
    {R"(\begin{aligned}a&=b\\[2pt]c\end{aligned})",
     R"(Env "aligned"{body{Row{Group{"a"} Group{"=" "b"} Command "\\\\"{optarg{Group{"2" "p" "t"}}}} Row{Group{"c"}}}})",
     ""},
    {R"(\begin{alignedat}[t]{2}x\end{alignedat})",
     R"(Env "alignedat"{optarg{Group{"t"}} arg{Group{"2"}} body{Row{Group{"x"}}}})", ""},
    // Every environment keeps the cells and rows it is written in.
    {R"(\begin{Bmatrix}a&b\end{Bmatrix})", R"(Env "Bmatrix"{body{Row{Group{"a"} Group{"b"}}}})", ""},
    {R"(\begin{foo}a\\b&c\end{foo})", R"(Env "foo"{body{Row{Group{"a"}} Row{Group{"b"} Group{"c"}}}})", ""},
    {R"(\begin{foo}x)", R"(Env "foo"{body{Group{"x"}}})", "E_missing_end 12+0"},
    {R"(\begin{matrix}a\end{pmatrix})", R"(Env "matrix"{body{Row{Group{"a"}}}})",
     R"(2 E_env_mismatch 28+0 \end{pmatrix} mismatched (expect matrix).)"},
    {R"(\begin x)", R"(Command "begin" "x")",
     R"(2 E_begin_need_name 7+1 \begin must be followed by {name}.)"},
    {R"(\begin{}x\end{}y)", "", "E_unexpected_token 15+1"},
    {R"(\begin{ali2gned}\end{aligned})", R"(Env "aligned"{body{Row{Group}}})",
     R"(1 W_envname_char 10+1 Unexpected char in environment name; ignoring.)"},
    {R"(\begin{cases)", R"(Env "cases"{body})",
     R"(2 E_missing_rbrace 12+0 Missing '}' after \begin{name}. | 2 E_missing_end 12+0 Missing \end{cases}.)"},
    {R"(\begin{gather}a\end x)", R"(Env "gather"{body{Row{Group{"a"}}}} "x")",
     R"(2 E_end_need_name 20+1 \end must be followed by {name}.)"},
    {R"(\begin{split}a\end{split)", R"(Env "split"{body{Row{Group{"a"}}}})",
     R"(2 E_missing_rbrace 24+0 Missing '}' after \end{name}.)"},
    {R"(\begin{align*}a\\\\b\end{align*})",
     R"(Env "align*"{body{Row{Group{"a"}} Row{Group} Row{Group{"b"}}}})", ""},
    {R"(\pmatrix{a&b\cr c&d})",
     R"(Command "pmatrix"{arg{Group{Row{Group{"a"} Group{"b"}} Row{Group{"c"} Group{"d"}}}}})", ""},
    {R"(\matrix x)", R"(Command "matrix" "x")", ""},
    {R"(\Bmatrix{a\\[1]b)", R"(Command "Bmatrix"{arg{Group{Row{Group{"a"}} Row{Group{"[" "1" "]" "b"}}}}})",
     "E_missing_rbrace 16+0"},
    {R"(\left( \left[ a^x b c d)",
     R"(LeftRight "(" "." left-right{Group} LeftRight "[" "." left-right{Group} Script{base{"a"} sup{"x"}})",
     "F_nesting_overflow 22+1 | E_missing_right 22+1 | F_nesting_overflow 20+1 | E_missing_right 20+1 | "
     "F_nesting_overflow 18+1",
     2},
    {R"({\left( a_1 b^^2 c} d)",
     R"(Group{LeftRight "(" "." left-right{Group} Script{base{"a"} sub{"1"}} Script{base{"b"} sup{Group}} "2"} "c" "d")",
     "E_missing_script_arg 14+1 | F_nesting_overflow 18+1 | E_missing_right 18+1 | F_nesting_overflow 17+1 | "
     "E_missing_rbrace 15+1 | E_unexpected_token 18+1",
     3},
    {R"(\left( a _ _ ^ b c)", R"(LeftRight "(" "." left-right{Group} Script{base{"a"} sub{Group}})",
     "E_missing_script_arg 11+1 | F_nesting_overflow 18+0 | E_missing_right 18+0 | E_missing_script_arg 11+1 "
     "| F_nesting_overflow 13+1",
     1},
    {"ab{cde}f", R"("a" "b" Group{"c" "d" "e"})", "F_nesting_overflow 6+1 | F_nesting_overflow 7+1", 2},
    {R"(\colorbox{red})", R"(Command "colorbox"{arg{Group{"red"}}})", "E_arg2_missing 14+0"},
    {R"(\fcolorbox[rgb]{1,0,0}{0,0,1}{x y})",
     R"(Command "fcolorbox"{optarg{Group{"rgb"}} arg{Group{"1,0,0"}} arg{Group{"0" "," "0" "," "1"}} arg{Group{"x" "y"}}})",
     ""},
    {R"(\colorbox[HTML]{FF0000}x)",
     R"(Command "colorbox"{optarg{Group{"HTML"}} arg{Group{"FF0000"}} arg{Group{"x"}}})", ""},
    {R"(\Frac{a}{b}\foo*)", R"(Unknown "Frac"{arg{Group{"a"}}} Group{"b"} Unknown "foo*")", ""},
};
INSTANTIATE_TEST_SUITE_P(Rows, Parser, ::testing::ValuesIn(kCases));

TEST(Parser, KnownEnvironmentsSplitRowsInFixedOrder)
{
    EXPECT_FALSE(isKnownEnvironment(QStringLiteral("Aligned")));
    for (const QString& name : knownEnvironments())
        EXPECT_EQ(parseToText(QStringLiteral("\\begin{%1}a&b\\end{%1}").arg(name)).tree,
                  QStringLiteral("Group{Env \"%1\"{body{Row{Group{\"a\"} Group{\"b\"}}}}}").arg(name));
}

TEST(Parser, ItemLimitKeepsFirst1025AtomsPerList)
{
    const QString letters(1100, QLatin1Char('a'));
    LatexDiagnostics diagnostics;
    KLatexNodePtr root = parseLatex(letters, diagnostics);
    EXPECT_EQ(latexAs<KLatexGroup>(root.get())->children.size(), 1025u);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_nesting_overflow 1025+1 Maximum nesting depth exceeded."));

    diagnostics.clear();
    root = parseLatex(QLatin1Char('{') + letters + QLatin1Char('}'), diagnostics);
    const auto& children = latexAs<KLatexGroup>(root.get())->children;
    ASSERT_EQ(children.size(), 1u + 75u);
    EXPECT_EQ(latexAs<KLatexGroup>(children.front().get())->children.size(), 1025u);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral(
                  "3 F_nesting_overflow 1026+1 Maximum nesting depth exceeded. | 2 E_missing_rbrace 1025+1 "
                  "Missing '}'. | 2 E_unexpected_token 1101+1 Unexpected token while parsing expression."));

    // Scripts and skipped tokens do not count.
    diagnostics.clear();
    root = parseLatex(QStringLiteral("a^b_c}").repeated(1025) + QStringLiteral("z"), diagnostics);
    EXPECT_EQ(latexAs<KLatexGroup>(root.get())->children.size(), 1025u);
    EXPECT_EQ(diagnostics.size(), 1025u);
    EXPECT_EQ(diagnostics.back().code, QStringLiteral("F_nesting_overflow"));
}

TEST(ParserApi, TokenListsWithoutEndOfInputAreSafe)
{
    LatexDiagnostics diagnostics;
    EXPECT_EQ(foldedDump(dumpLatexTree(KLatexParser({}, diagnostics).parseDocument().get())),
              QStringLiteral("Group"));
    const std::vector<Token> open = {Token{TokenKind::LBrace, QStringLiteral("{"), false, 0, 1},
                                     Token{TokenKind::Command, QStringLiteral("left"), false, 1, 5}};
    KLatexParser unterminated(open, diagnostics);
    EXPECT_EQ(foldedDump(dumpLatexTree(unterminated.parseDocument().get())),
              QStringLiteral("Group{Group{LeftRight \".\" \".\" left-right{Group}}}"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral(
                  "1 W_left_delim 0+0 \\left expects a delimiter; got ''. Using '.'. | 2 E_missing_right "
                  "0+0 Missing \\right. | 2 E_missing_rbrace 1+5 Missing '}'."));
}

} // namespace
