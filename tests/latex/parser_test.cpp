// Whole parses as one row each: the folded tree and every diagnostic, exact.

#include "latex/latex_env.h"
#include "latex/latex_lexer.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct ParseCase {
    const char* source; // UTF-8
    const char* tree;   // folded dump
    const char* diagnostics;
    int itemLimit = KLatexParser::kItemLimit;
};

class Parser : public ::testing::TestWithParam<ParseCase> {};

TEST_P(Parser, ExactTreeAndDiagnostics)
{
    const ParseCase& c = GetParam();
    const ParsedText parsed = parseToText(QString::fromUtf8(c.source), c.itemLimit);
    EXPECT_EQ(parsed.tree, QString::fromUtf8(c.tree)) << c.source;
    EXPECT_EQ(parsed.diagnostics, QString::fromUtf8(c.diagnostics)) << c.source;
}

// Items a \left body fails on are parsed again by the enclosing list; small item limits cut lists.
const ParseCase kCases[] = {
    {R"~()~", R"~(Group)~", R"~()~"},
    {R"~(})~", R"~(Group)~", R"~(2 E_unexpected_token 0+1 Unexpected token while parsing expression.)~"},
    {R"~(])~", R"~(Group{"]"})~", R"~()~"},
    {R"~(a&b)~", R"~(Group{"a" "b"})~",
     R"~(2 E_unexpected_token 1+1 Unexpected token while parsing expression.)~"},
    {R"~({a)~", R"~(Group{Group{"a"}})~", R"~(2 E_missing_rbrace 1+1 Missing '}'.)~"},
    {R"~(\sqrt[3]{x^2+1})~",
     R"~(Group{Command "sqrt"{optarg{Group{"3"}} arg{Group{Script{base{"x"} sup{"2"}} "+" "1"}}}})~",
     R"~()~"},
    {R"~(\sqrt[3{x})~", R"~(Group{Command "sqrt"{optarg{Group{"3" Group{"x"}}}}})~",
     R"~(2 E_missing_rbracket 9+1 Missing ']'. | 2 E_req_missing 10+0 \sqrt missing required argument.)~"},
    {R"~(x\)~", R"~(Group{"x" Unknown "\\"})~",
     R"~(1 W_backslash_eof 1+1 Trailing backslash at end of input)~"},
    {R"~(\\[2pt]a\\b)~", R"~(Group{Command "\\\\"{optarg{Group{"2" "p" "t"}}} "a" Command "\\\\" "b"})~",
     R"~()~"},
    {R"~(\operatorname*{lim})~", R"~(Group{Command "operatorname*"{arg{Group{"l" "i" "m"}}}})~", R"~()~"},
    {R"~(\alpha{x})~", R"~(Group{Command "alpha" Group{"x"}})~", R"~()~"},
    {R"~(\foo[a]{b}{c})~", R"~(Group{Unknown "foo"{optarg{Group{"a"}} arg{Group{"b"}}} Group{"c"}})~",
     R"~()~"},
    {R"~(\,{x})~", R"~(Group{Command "space_thin"{arg{Group{"x"}}}})~", R"~()~"},
    {R"~(\{x\})~", R"~(Group{Command "{" "x" Command "}"})~", R"~()~"},
    {R"~(\end{x})~", R"~(Group{Command "end" Group{"x"}})~", R"~()~"},
    {R"~(\'e)~", R"~(Group{"\\'" "e"})~", R"~()~"},
    {R"~(\frac{a})~", R"~(Group{Command "frac"{arg{Group{"a"}}}})~",
     R"~(2 E_arg2_missing 8+0 \frac missing second argument.)~"},
    {R"~(\frac ab)~", R"~(Group{Command "frac" "a" "b"})~",
     R"~(2 E_arg1_missing 6+1 \frac missing first argument. | 2 E_arg2_missing 6+1 \frac missing second argument.)~"},
    {R"~(\frac a{b})~", R"~(Group{Command "frac" "a" Group{"b"}})~",
     R"~(2 E_arg1_missing 6+1 \frac missing first argument. | 2 E_arg2_missing 6+1 \frac missing second argument.)~"},
    {R"~(\sqrt x)~", R"~(Group{Command "sqrt" "x"})~",
     R"~(2 E_req_missing 6+1 \sqrt missing required argument.)~"},
    {R"~(\hat x)~", R"~(Group{Command "hat" "x"})~", R"~(2 E_arg_missing 5+1 \hat expects one argument.)~"},
    {R"~(\hat)~", R"~(Group{Command "hat"})~", R"~(2 E_arg_missing 4+0 \hat expects one argument.)~"},
    {R"~(\alpha*)~", R"~(Group{Unknown "alpha*"})~", R"~()~"},
    {R"~(\hspace*{1})~", R"~(Group{Command "hspace*"{arg{Group{"1"}}}})~", R"~()~"},
    {R"~(x^2_3)~", R"~(Group{Script{base{"x"} sup{"2"} sub{"3"}}})~", R"~()~"},
    {R"~(x_b^a)~", R"~(Group{Script{base{"x"} sup{"a"} sub{"b"}}})~", R"~()~"},
    {R"~(_3^2)~", R"~(Group{Script{base{Group} sup{"2"} sub{"3"}}})~", R"~()~"},
    {R"~(x^a_b^c)~", R"~(Group{Script{base{Script{base{"x"} sup{"a"} sub{"b"}}} sup{"c"}}})~", R"~()~"},
    {R"~(x^a^b)~", R"~(Group{Script{base{"x"} sup{"a"}} "b"})~", R"~()~"},
    {R"~(x^a^_b)~", R"~(Group{Script{base{"x"} sup{"a"} sub{"b"}}})~", R"~()~"},
    {R"~(x^12)~", R"~(Group{Script{base{"x"} sup{"1"}} "2"})~", R"~()~"},
    {R"~(x^)~", R"~(Group{Script{base{"x"} sup{Group}}})~",
     R"~(2 E_missing_script_arg 2+0 Missing superscript/subscript argument.)~"},
    {R"~(^2)~", R"~(Group{Script{base{Group} sup{"2"}}})~", R"~()~"},
    {R"~(x^})~", R"~(Group{Script{base{"x"} sup{Group}}})~",
     R"~(2 E_missing_script_arg 2+1 Missing superscript/subscript argument. | 2 E_unexpected_token 2+1 Unexpected token while parsing expression.)~"},
    {R"~(x^{a \over b})~",
     R"~(Group{Script{base{"x"} sup{Command "over"{arg{Group{"a"}} arg{Group{"b"}}}}}})~", R"~()~"},
    {R"~(x^\frac{1}{2})~",
     R"~(Group{Script{base{"x"} sup{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}}})~", R"~()~"},
    {R"~(x^a^^b)~", R"~(Group{Script{base{Script{base{"x"} sup{"a"}}} sup{"b"}}})~", R"~()~"},
    {R"~({a \over b})~", R"~(Group{Command "over"{arg{Group{"a"}} arg{Group{"b"}}}})~", R"~()~"},
    {R"~(a \over b)~", R"~(Group{"a" Command "over" "b"})~", R"~()~"},
    {R"~({a \over b \over c})~",
     R"~(Group{Command "over"{arg{Group{"a"}} arg{Group{"b" Command "over" "c"}}}})~", R"~()~"},
    {R"~({\choose})~", R"~(Group{Command "choose"{arg{Group} arg{Group}}})~", R"~()~"},
    {R"~(\frac{n \atop k}{x \above y})~",
     R"~(Group{Command "frac"{arg{Command "atop"{arg{Group{"n"}} arg{Group{"k"}}}} arg{Command "above"{arg{Group{"x"}} arg{Group{"y"}}}}}})~",
     R"~()~"},
    {R"~({a \over b)~", R"~(Group{Command "over"{arg{Group{"a"}} arg{Group{"b"}}}})~",
     R"~(2 E_missing_rbrace 9+1 Missing '}'.)~"},
    {R"~([a \over b])~", R"~(Group{"[" "a" Command "over" "b" "]"})~", R"~()~"},
    {R"~({\buildrel a \over b})~", R"~(Group{Group{Command "overset"{arg{Group{"a"}} arg{"b"}}}})~", R"~()~"},
    {R"~({\buildrel a \over {b c}})~",
     R"~(Group{Group{Command "overset"{arg{Group{"a"}} arg{Group{"b" "c"}}}}})~", R"~()~"},
    {R"~({\buildrel a \over})~", R"~(Group{Group{Command "overset"{arg{Group{"a"}} arg{null}}}})~", R"~()~"},
    {R"~({\buildrel a})~", R"~(Group{Group{Group{"a"}}})~",
     R"~(2 E_buildrel_over 12+1 \buildrel expects \over.)~"},
    {R"~(\buildrel a \over b)~", R"~(Group{Command "buildrel" "a" Command "over" "b"})~", R"~()~"},
    {R"~(\left( \frac{1}{2} \right))~",
     R"~(Group{LeftRight "(" ")" left-right{Group{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}}})~",
     R"~()~"},
    {R"~(\left( x)~", R"~(Group{LeftRight "(" "." left-right{Group} "x"})~",
     R"~(2 E_missing_right 8+0 Missing \right.)~"},
    {R"~(\left1 x\right))~", R"~(Group{LeftRight "." ")" left-right{Group{"1" "x"}}})~",
     R"~(1 W_left_delim 5+1 \left expects a delimiter; got '1'. Using '.'.)~"},
    {R"~(\left x\right y)~", R"~(Group{LeftRight "x" "y" left-right{Group}})~", R"~()~"},
    {R"~(\right))~", R"~(Group{LeftRight "." ")" left-right{Group}})~", R"~()~"},
    {R"~(\right)~", R"~(Group{LeftRight "." "." left-right{Group}})~", R"~()~"},
    {R"~(\left\langle a \right\|)~", R"~(Group{LeftRight "\\langle" "\\|" left-right{Group{"a"}}})~",
     R"~()~"},
    {R"~(\left\{a\right.)~", R"~(Group{LeftRight "\\{" "." left-right{Group{"a"}}})~", R"~()~"},
    {R"~(\left(a\right)~", R"~(Group{LeftRight "(" "." left-right{Group{"a"}}})~",
     R"~(1 W_right_delim 13+0 \right expects a delimiter; got ''. Using '.'.)~"},
    {R"~(\left{a\right})~",
     R"~(Group{LeftRight "." "." left-right{Group} Group{"a" LeftRight "." "." left-right{Group}}})~",
     R"~(1 W_left_delim 5+1 \left expects a delimiter; got '{'. Using '.'. | 2 E_missing_right 14+0 Missing \right.)~"},
    {R"~(\left( a \middle| b \right))~",
     R"~(Group{LeftRight "(" ")" left-right{Group{"a" Command "middle" "|" "b"}}})~", R"~()~"},
    {R"~(\left( } x)~", R"~(Group{LeftRight "(" "." left-right{Group} "x"})~",
     R"~(2 E_unexpected_token 7+1 Unexpected token while parsing expression. | 2 E_missing_right 10+0 Missing \right.)~"},
    {R"~({\left( a} b \right))~", R"~(Group{Group{LeftRight "(" ")" left-right{Group{"a" "b"}}}})~",
     R"~(2 E_unexpected_token 9+1 Unexpected token while parsing expression. | 2 E_missing_rbrace 19+1 Missing '}'.)~"},
    {R"~(\left( \left[ x \right))~",
     R"~(Group{LeftRight "(" "." left-right{Group} LeftRight "[" ")" left-right{Group{"x"}}})~",
     R"~(2 E_missing_right 23+0 Missing \right.)~"},
    {R"~(\left( \left[ x)~",
     R"~(Group{LeftRight "(" "." left-right{Group} LeftRight "[" "." left-right{Group} "x"})~",
     R"~(2 E_missing_right 15+0 Missing \right. | 2 E_missing_right 15+0 Missing \right.)~"},
    {R"~(^ \frac { a \left. b } _ a \begin{foo} a a)~",
     R"~(Group{Script{base{Group} sup{Command "frac"{arg{Group{"a" LeftRight "." "." left-right{Group} "b"}}}} sub{"a"}} Env "foo"{body{Group{"a" "a"}}}})~",
     R"~(2 E_unexpected_token 21+1 Unexpected token while parsing expression. | 2 E_missing_end 42+0 Missing \end{foo}. | 2 E_missing_right 42+0 Missing \right. | 2 E_arg2_missing 23+1 \frac missing second argument.)~"},
    {R"~({ a a _ \right) \right) _ b a \left( a ^ } _)~",
     R"~(Group{Script{base{Group{"a" Script{base{"a"} sub{LeftRight "." ")" left-right{Group}}} Script{base{LeftRight "." ")" left-right{Group}} sub{"b"}} "a" LeftRight "(" "." left-right{Group} Script{base{"a"} sup{Group}}}} sub{Group}}})~",
     R"~(2 E_missing_script_arg 41+1 Missing superscript/subscript argument. | 2 E_unexpected_token 41+1 Unexpected token while parsing expression. | 2 E_missing_script_arg 44+0 Missing superscript/subscript argument. | 2 E_missing_right 44+0 Missing \right. | 2 E_missing_script_arg 41+1 Missing superscript/subscript argument. | 2 E_missing_script_arg 44+0 Missing superscript/subscript argument.)~"},
    {R"~(\left( a _ \left[ _ \right) ] c } \left[ \right) })~",
     R"~(Group{LeftRight "(" ")" left-right{Group{Script{base{"a"} sub{LeftRight "[" "." left-right{Group}}}}} "]" "c" LeftRight "[" ")" left-right{Group}})~",
     R"~(2 E_unexpected_token 32+1 Unexpected token while parsing expression. | 2 E_unexpected_token 49+1 Unexpected token while parsing expression. | 2 E_missing_right 50+0 Missing \right.)~"},
    {R"~(\begin{pmatrix}a&b\\c&d\end{pmatrix})~",
     R"~(Group{Env "pmatrix"{body{Row{Group{"a"} Group{"b"}} Row{Group{"c"} Group{"d"}}}}})~", R"~()~"},
    {R"~(\begin{pmatrix}a\\\end{pmatrix})~", R"~(Group{Env "pmatrix"{body{Row{Group{"a"}} Row{Group}}}})~",
     R"~()~"},
    {R"~(\begin{aligned}a&=b\\[2pt]c\end{aligned})~",
     R"~(Group{Env "aligned"{body{Row{Group{"a"} Group{"=" "b"} Command "\\\\"{optarg{Group{"2" "p" "t"}}}} Row{Group{"c"}}}}})~",
     R"~()~"},
    {R"~(\begin{array}{cc}1&2\end{array})~",
     R"~(Group{Env "array"{arg{Group{"c" "c"}} body{Row{Group{"1"} Group{"2"}}}}})~", R"~()~"},
    {R"~(\begin{alignat*}[t]{2}x\end{alignat*})~",
     R"~(Group{Env "alignat*"{optarg{Group{"t"}} arg{Group{"2"}} body{Row{Group{"x"}}}}})~", R"~()~"},
    {R"~(\begin{Bmatrix}a&b\end{Bmatrix})~", R"~(Group{Env "Bmatrix"{body{Group{"a" "b"}}}})~",
     R"~(2 E_unexpected_token 16+1 Unexpected token while parsing expression.)~"},
    {R"~(\begin{foo}x)~", R"~(Group{Env "foo"{body{Group{"x"}}}})~",
     R"~(2 E_missing_end 12+0 Missing \end{foo}.)~"},
    {R"~(\begin{matrix}a\end{pmatrix})~", R"~(Group{Env "matrix"{body{Row{Group{"a"}}}}})~",
     R"~(2 E_env_mismatch 28+0 \end{pmatrix} mismatched (expect matrix).)~"},
    {R"~(\begin x)~", R"~(Group{Command "begin" "x"})~",
     R"~(2 E_begin_need_name 7+1 \begin must be followed by {name}.)~"},
    {R"~(\begin{}x\end{}y)~", R"~(Group)~",
     R"~(2 E_unexpected_token 15+1 Unexpected token while parsing expression.)~"},
    {R"~(\begin{ali2gned}\end{aligned})~", R"~(Group{Env "aligned"{body{Row{Group}}}})~",
     R"~(1 W_envname_char 10+1 Unexpected char in environment name; ignoring.)~"},
    {R"~(\begin{cases}\end{cases})~", R"~(Group{Env "cases"{body{Row{Group}}}})~", R"~()~"},
    {R"~(\begin{cases})~", R"~(Group{Env "cases"{body}})~", R"~(2 E_missing_end 13+0 Missing \end{cases}.)~"},
    {R"~(\begin{cases)~", R"~(Group{Env "cases"{body}})~",
     R"~(2 E_missing_rbrace 12+0 Missing '}' after \begin{name}. | 2 E_missing_end 12+0 Missing \end{cases}.)~"},
    {R"~(\begin{gather}a\end x)~", R"~(Group{Env "gather"{body{Row{Group{"a"}}}} "x"})~",
     R"~(2 E_end_need_name 20+1 \end must be followed by {name}.)~"},
    {R"~(\begin{split}a\end{split)~", R"~(Group{Env "split"{body{Row{Group{"a"}}}}})~",
     R"~(2 E_missing_rbrace 24+0 Missing '}' after \end{name}.)~"},
    {R"~(\begin{split}a\end{sp1lit})~", R"~(Group{Env "split"{body{Row{Group{"a"}}}}})~", R"~()~"},
    {R"~(\begin{cases}a}\end{cases})~", R"~(Group{Env "cases"{body{Row{Group{"a"}}}}})~",
     R"~(2 E_unexpected_token 14+1 Unexpected token while parsing expression.)~"},
    {R"~(\begin{foo}{a \over b}c\end{foo})~",
     R"~(Group{Env "foo"{arg{Command "over"{arg{Group{"a"}} arg{Group{"b"}}}} body{Group{"c"}}}})~", R"~()~"},
    {R"~(\begin{foo}a \over b\end{foo})~", R"~(Group{Env "foo"{body{Group{"a" Command "over" "b"}}}})~",
     R"~()~"},
    {R"~(\begin{align*}a\\\\b\end{align*})~",
     R"~(Group{Env "align*"{body{Row{Group{"a"}} Row{Group} Row{Group{"b"}}}}})~", R"~()~"},
    {R"~(\pmatrix{a&b\cr c&d})~",
     R"~(Group{Command "pmatrix"{arg{Group{Row{Group{"a"} Group{"b"}} Row{Group{"c"} Group{"d"}}}}}})~",
     R"~()~"},
    {R"~(\matrix x)~", R"~(Group{Command "matrix" "x"})~", R"~()~"},
    {R"~(\Bmatrix{a\\[1]b)~",
     R"~(Group{Command "Bmatrix"{arg{Group{Row{Group{"a"}} Row{Group{"[" "1" "]" "b"}}}}}})~",
     R"~(2 E_missing_rbrace 16+0 Missing '}'.)~"},
    {R"~(\bmatrix{})~", R"~(Group{Command "bmatrix"{arg{Group}}})~", R"~()~"},
    {R"~(\vmatrix{a&\end})~",
     R"~(Group{Command "vmatrix"{arg{Group{Row{Group{"a"} Group{Command "end"}}}}}})~", R"~()~"},
    {R"~(\left( \left[ a^x b c d)~",
     R"~(Group{LeftRight "(" "." left-right{Group} LeftRight "[" "." left-right{Group} Script{base{"a"} sup{"x"}}})~",
     R"~(3 F_nesting_overflow 22+1 Maximum nesting depth exceeded. | 2 E_missing_right 22+1 Missing \right. | 3 F_nesting_overflow 20+1 Maximum nesting depth exceeded. | 2 E_missing_right 20+1 Missing \right. | 3 F_nesting_overflow 18+1 Maximum nesting depth exceeded.)~",
     2},
    {R"~({\left( a_1 b^^2 c} d)~",
     R"~(Group{Group{LeftRight "(" "." left-right{Group} Script{base{"a"} sub{"1"}} Script{base{"b"} sup{Group}} "2"} "c" "d"})~",
     R"~(2 E_missing_script_arg 14+1 Missing superscript/subscript argument. | 3 F_nesting_overflow 18+1 Maximum nesting depth exceeded. | 2 E_missing_right 18+1 Missing \right. | 3 F_nesting_overflow 17+1 Maximum nesting depth exceeded. | 2 E_missing_rbrace 15+1 Missing '}'. | 2 E_unexpected_token 18+1 Unexpected token while parsing expression.)~",
     3},
    {R"~(\left( a _ _ ^ b c)~",
     R"~(Group{LeftRight "(" "." left-right{Group} Script{base{"a"} sub{Group}}})~",
     R"~(2 E_missing_script_arg 11+1 Missing superscript/subscript argument. | 3 F_nesting_overflow 18+0 Maximum nesting depth exceeded. | 2 E_missing_right 18+0 Missing \right. | 2 E_missing_script_arg 11+1 Missing superscript/subscript argument. | 3 F_nesting_overflow 13+1 Maximum nesting depth exceeded.)~",
     1},
    {R"~(ab{cde}f)~", R"~(Group{"a" "b" Group{"c" "d" "e"}})~",
     R"~(3 F_nesting_overflow 6+1 Maximum nesting depth exceeded. | 3 F_nesting_overflow 7+1 Maximum nesting depth exceeded.)~",
     2},
    {R"~(\color{red}{x})~", R"~(Group{Command "color"{arg{Group{"red"}} arg{Group{"x"}}}})~", R"~()~"},
    {R"~(\textcolor[rgb]{1,0,0}{x})~", R"~(Group{Command "textcolor" "[rgb]{1,0,0}" Group{"x"}})~",
     R"~(2 E_arg1_missing 10+12 \textcolor missing first argument. | 2 E_arg2_missing 10+12 \textcolor missing second argument.)~"},
    {R"~(\colorbox{red})~", R"~(Group{Command "colorbox"{arg{Group{"red"}}}})~",
     R"~(2 E_arg2_missing 14+0 \colorbox missing second argument.)~"},
    {R"~(\fcolorbox{red}{blue}{x})~",
     R"~(Group{Command "fcolorbox"{arg{Group{"red"}}} Group{"b" "l" "u" "e"} Group{"x"}})~", R"~()~"},
    {R"~(\Frac{a}{b}\foo*)~", R"~(Group{Unknown "Frac"{arg{Group{"a"}}} Group{"b"} Unknown "foo*"})~",
     R"~()~"},
};
INSTANTIATE_TEST_SUITE_P(Rows, Parser, ::testing::ValuesIn(kCases));

TEST(Parser, KnownEnvironmentsSplitRowsInFixedOrder)
{
    const QStringList& names = knownEnvironments();
    ASSERT_EQ(names.size(), 31);
    EXPECT_EQ(names.first() + names.at(14) + names.last(), QStringLiteral("casesmatrix*smallbmatrix"));
    EXPECT_FALSE(isKnownEnvironment(QStringLiteral("Aligned")));
    for (const QString& name : names)
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

std::vector<Token> tokensOf(const QString& source, LatexDiagnostics& diagnostics)
{
    KLatexLexResult result = KLatexLexer(source).tokenize();
    diagnostics = std::move(result.diagnostics);
    return std::move(result.tokens);
}

// The entry points used one by one, as the converters do.
TEST(ParserApi, EntryPointsConsumeOnlyWhatTheyRead)
{
    LatexDiagnostics diagnostics;
    std::vector<Token> tokens = tokensOf(QStringLiteral("x}"), diagnostics);
    KLatexParser braces(tokens, diagnostics);
    EXPECT_EQ(braces.itemLimit(), 1024);
    EXPECT_EQ(foldedDump(dumpLatexTree(braces.parseBraceGroupAsExpr().get())), QStringLiteral("Group"));
    EXPECT_EQ(braces.parseBracketGroupAsExpr(), nullptr);
    EXPECT_EQ(foldedDump(dumpLatexTree(braces.parseDocument().get())), QStringLiteral("Group{\"x\"}"));
    EXPECT_EQ(&braces.diagnostics(), &diagnostics);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("2 E_expected_lbrace 0+1 Expected '{'. | 2 "
                             "E_unexpected_token 1+1 Unexpected token while parsing expression."));

    tokens = tokensOf(QStringLiteral("{cases}a&b\\\\c\\end{cases}"), diagnostics);
    KLatexParser env(tokens, diagnostics);
    EXPECT_EQ(foldedDump(dumpLatexTree(env.parseEnv().get())),
              QStringLiteral("Env \"cases\"{body{Row{Group{\"a\"} Group{\"b\"}} Row{Group{\"c\"}}}}"));

    tokens = tokensOf(QStringLiteral("a\\cr b}c\\"), diagnostics);
    KLatexParser matrix(tokens, diagnostics);
    const KLatexNodeList body = matrix.parseMatrixBody();
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(foldedDump(dumpLatexTree(body[1].get())), QStringLiteral("Row{Group{\"b\"}}"));
    // The closing brace is left for the caller; the lexer's warning stays first in the list.
    EXPECT_EQ(foldedDump(dumpLatexTree(matrix.parseDocument().get())),
              QStringLiteral("Group{\"c\" Unknown \"\\\\\"}"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("1 W_backslash_eof 8+1 Trailing backslash at end of input | "
                             "2 E_unexpected_token 6+1 Unexpected token while parsing expression."));

    tokens = tokensOf(QStringLiteral("[a]{b}x"), diagnostics);
    KLatexParser args(tokens, diagnostics);
    const KLatexArgs sqrt = args.parseCommandArgs(ArgShape::OptArgThenArg, QStringLiteral("sqrt"));
    ASSERT_EQ(sqrt.size(), 2u);
    EXPECT_TRUE(sqrt[0].optional && !sqrt[1].optional);
    EXPECT_TRUE(args.parseCommandArgs(ArgShape::TwoArgs, QStringLiteral("frac")).empty());
    EXPECT_EQ(foldedDump(dumpLatexTree(args.parseDocument().get())), QStringLiteral("Group{\"x\"}"));
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
