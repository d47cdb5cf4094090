// Arguments read as TeX reads them, one table per reading rule: each row a formula, the children of
// the root group folded onto one line, and its diagnostics as "code pos+length".

#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct ArgCase {
    const char* source;
    const char* tree; // inside the root Group
    const char* diagnostics = "";
};

void PrintTo(const ArgCase& c, std::ostream* os)
{
    *os << c.source;
}

class TexArguments : public ::testing::TestWithParam<ArgCase> {};

TEST_P(TexArguments, ReadAsTexReadsThem)
{
    const ArgCase& c = GetParam();
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QString::fromUtf8(c.source), diagnostics);
    const QString tree = QString::fromUtf8(c.tree);
    EXPECT_EQ(foldedDump(dumpLatexTree(root.get())),
              tree.isEmpty() ? QStringLiteral("Group") : QStringLiteral("Group{%1}").arg(tree));
    QStringList codes;
    for (const LatexDiagnostic& d : diagnostics)
        codes << QStringLiteral("%1 %2+%3").arg(d.code).arg(d.pos).arg(d.length);
    EXPECT_EQ(codes.join(QLatin1String(" | ")), QString::fromUtf8(c.diagnostics));
}

// A mandatory argument without braces is one character or one control sequence with the arguments it
// takes itself, held in a group exactly as the braced form; no diagnostic, it is valid LaTeX.
const ArgCase kUnbraced[] = {
    {R"(\frac12)", R"(Command "frac"{arg{Group{"1"}} arg{Group{"2"}}})"},
    {R"(\frac123)", R"(Command "frac"{arg{Group{"1"}} arg{Group{"2"}}} "3")"},
    {R"(\frac\alpha\beta)", R"(Command "frac"{arg{Group{Command "alpha"}} arg{Group{Command "beta"}}})"},
    {R"(\sqrt\frac12)", R"(Command "sqrt"{arg{Group{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}}})"},
    {R"(x^\frac12)", R"(Script{base{"x"} sup{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}})"},
    {R"(\sqrt[3]x)", R"(Command "sqrt"{optarg{Group{"3"}} arg{Group{"x"}}})"},
    {R"(\hat\hat x)", R"(Command "hat"{arg{Group{Command "hat"{arg{Group{"x"}}}}}})"},
    // Scripts after the argument belong to the whole command, as in TeX.
    {R"(\hat x^2)", R"(Script{base{Command "hat"{arg{Group{"x"}}}} sup{"2"}})"},
    {R"(\bigl(x\bigr))", R"~(Command "bigl"{arg{Group{"("}}} "x" Command "bigr"{arg{Group{")"}}})~"},
    {R"(\not=)", R"(Command "not"{arg{Group{"="}}})"},
    {R"(\hat[x])", R"(Command "hat"{arg{Group{"["}}} "x" "]")"},
    {R"(\frac\left(a\right)b)",
     R"~(Command "frac"{arg{Group{LeftRight "(" ")" left-right{Group{"a"}}}} arg{Group{"b"}}})~"},
    // The TeX primitives that take a dimension read a number with its unit, or a length command.
    {R"(\mkern-1.5mu)", R"(Command "mkern"{arg{Group{"-" "1" "." "5" "m" "u"}}})"},
    {R"(\kern-\nulldelimiterspace)", R"(Command "kern"{arg{Group{"-" Unknown "nulldelimiterspace"}}})"},
    {R"(\kern2x)", R"(Command "kern"{arg{Group{"2"}}} "x")"},
    // One character outside the Basic Multilingual Plane is two code units and one argument.
    {"x^\xF0\x9D\x94\xB8", "Script{base{\"x\"} sup{\"\xF0\x9D\x94\xB8\"}}"},
    {"\\frac\xF0\x9D\x91\xA5\xF0\x9D\x91\xA6",
     "Command \"frac\"{arg{Group{\"\xF0\x9D\x91\xA5\"}} arg{Group{\"\xF0\x9D\x91\xA6\"}}}"},
};
INSTANTIATE_TEST_SUITE_P(UnbracedArgument, TexArguments, ::testing::ValuesIn(kUnbraced));

// Where no argument can start (the end, a closing brace, a script or alignment sign, or a command that
// ends the list, row or cell) the argument is missing: reported, and the token left to the list.
const ArgCase kMissing[] = {
    {R"(\frac)", R"(Command "frac")", "E_arg1_missing 5+0 | E_arg2_missing 5+0"},
    {R"(\hat})", R"(Command "hat")", "E_arg_missing 4+1 | E_unexpected_token 4+1"},
    {R"(\hat_2)", R"(Script{base{Command "hat"} sub{"2"}})", "E_arg_missing 4+1"},
    {R"(\sqrt[3])", R"(Command "sqrt"{optarg{Group{"3"}}})", "E_req_missing 8+0"},
    {R"(\hat\\x)", R"(Command "hat" Command "\\\\" "x")", "E_arg_missing 4+2"},
    {R"(\left(\frac a\right))", R"~(LeftRight "(" ")" left-right{Group{Command "frac"{arg{Group{"a"}}}}})~",
     "E_arg2_missing 13+6"},
    {R"({\frac a\over b})", R"(Command "over"{arg{Group{Command "frac"{arg{Group{"a"}}}}} arg{Group{"b"}}})",
     "E_arg2_missing 8+5"},
    {R"(\begin{aligned}\hat\end{aligned})", R"(Env "aligned"{body{Row{Group{Command "hat"}}}})",
     "E_arg_missing 19+4"},
    {R"(\begin{matrix}\frac a&b\cr\end{matrix})",
     R"(Env "matrix"{body{Row{Group{Command "frac"{arg{Group{"a"}}}} Group{"b" Command "cr"}}}})",
     "E_arg2_missing 21+1"},
    {R"(\pmatrix{\hat\cr})", R"(Command "pmatrix"{arg{Group{Row{Group{Command "hat"}}}}})",
     "E_arg_missing 13+3"},
};
INSTANTIATE_TEST_SUITE_P(MissingArgument, TexArguments, ::testing::ValuesIn(kMissing));

// A bracket group is an optional argument only for commands that take one in LaTeX; after a spacing
// command, an unknown command or any other command it is ordinary math.
const ArgCase kBrackets[] = {
    {R"(\varphi\colon[0,1]\to[0,1])",
     R"(Command "varphi" Unknown "colon" "[" "0" "," "1" "]" Command "to" "[" "0" "," "1" "]")"},
    {R"(a\,[b])", R"("a" Command "space_thin" "[" "b" "]")"},
    {R"(\alpha[x])", R"(Command "alpha" "[" "x" "]")"},
    {R"(\xrightarrow[b]a)", R"(Command "xrightarrow"{optarg{Group{"b"}} arg{Group{"a"}}})"},
    {R"(\framebox[2cm][l]{x})",
     R"(Command "framebox"{optarg{Group{"2" "c" "m"}} optarg{Group{"l"}} arg{Group{"x"}}})"},
    {R"(\enclose{circle}[w=1]{x})",
     R"(Command "enclose"{arg{Group{"c" "i" "r" "c" "l" "e"}} optarg{Group{"w" "=" "1"}} arg{Group{"x"}}})"},
    {R"(\unitfrac[3]{m}{s})", R"(Command "unitfrac"{optarg{Group{"3"}} arg{Group{"m"}} arg{Group{"s"}}})"},
    {R"(\linebreak[3]x\linebreak{y})",
     R"(Command "linebreak"{optarg{Group{"3"}}} "x" Command "linebreak" Group{"y"})"},
    {R"(\textcolor[rgb]{1,0,0}x)",
     R"(Command "textcolor"{optarg{Group{"rgb"}} arg{Group{"1,0,0"}} arg{Group{"x"}}})"},
    // A definition whose name is no control sequence is not made; the parser reads its arguments.
    {R"(\newcommand{x}[1][a]{b})",
     R"(Command "newcommand"{arg{Group{"x"}} optarg{Group{"1"}} optarg{Group{"a"}} arg{Group{"b"}}})"},
    {R"(\a \over [b])", R"(Unknown "a" Command "over"{optarg{Group{"b"}}})"},
};
INSTANTIATE_TEST_SUITE_P(BracketAfterCommand, TexArguments, ::testing::ValuesIn(kBrackets));

// Commands whose LaTeX arity differs from their shape read exactly their LaTeX arguments.
const ArgCase kArity[] = {
    {R"(\genfrac(){0pt}{1}ab c)",
     R"~(Command "genfrac"{arg{Group{"("}} arg{Group{")"}} arg{Group{"0" "p" "t"}} arg{Group{"1"}} arg{Group{"a"}} arg{Group{"b"}}} "c")~"},
    {R"(\sideset{_a}{^b}\sum x)",
     R"(Command "sideset"{arg{Group{Script{base{Group} sub{"a"}}}} arg{Group{Script{base{Group} sup{"b"}}}}} Command "sum" "x")"},
    {R"(\fcolorbox{red}{blue}{x}y)",
     R"(Command "fcolorbox"{arg{Group{"red"}} arg{Group{"blue"}} arg{Group{"x"}}} "y")"},
    {R"(\middle\| x)", R"(Command "middle"{arg{Group{Command "|"}}} "x")"},
    {R"(\definecolor{c}{rgb}{1,0,0}x)",
     R"(Command "definecolor"{arg{Group{"c"}} arg{Group{"r" "g" "b"}} arg{Group{"1" "," "0" "," "0"}}} "x")"},
    // Definitions that cannot be made (the name is no control sequence) keep their arguments.
    {R"(\newcommand{x}{y}z)", R"(Command "newcommand"{arg{Group{"x"}} arg{Group{"y"}}} "z")"},
    {R"(\def{x}#1#2{y}z)", R"(Command "def"{arg{Group{"x"}} arg{Group{"y"}}} "z")"},
    {R"(\let{a}=\q c)", R"(Command "let"{arg{Group{"a"}} arg{Group{Unknown "q"}}} "c")"},
    // Definitions that can be made leave nothing behind.
    {R"(\newcommand\x{y}z)", R"("z")"},
    {R"(\def\x#1#2{y}z)", R"("z")"},
    {R"(\let\a=\b c)", R"("c")"},
    {R"(\genfrac{(}{)})", R"~(Command "genfrac"{arg{Group{"("}} arg{Group{")"}}})~"},
};
INSTANTIATE_TEST_SUITE_P(LatexArity, TexArguments, ::testing::ValuesIn(kArity));

// Environments read arguments only where LaTeX gives them; anything else after \begin{name} is body.
const ArgCase kEnvironments[] = {
    {R"(\begin{matrix}{5}&{0}\\{2}&{5}\end{matrix})",
     R"(Env "matrix"{body{Row{Group{Group{"5"}} Group{Group{"0"}}} Row{Group{Group{"2"}} Group{Group{"5"}}}}})"},
    {R"(\begin{pmatrix}[a]\end{pmatrix})", R"(Env "pmatrix"{body{Row{Group{"[" "a" "]"}}}})"},
    {R"(\begin{array}[t]{c}{1}\end{array})",
     R"(Env "array"{optarg{Group{"t"}} arg{Group{"c"}} body{Row{Group{Group{"1"}}}}})"},
    {R"(\begin{array}a&b\end{array})", R"(Env "array"{body{Row{Group{"a"} Group{"b"}}}})"},
    {R"(\begin{subarray}{l}i\\j\end{subarray})",
     R"(Env "subarray"{arg{Group{"l"}} body{Row{Group{"i"}} Row{Group{"j"}}}})"},
    {R"(\begin{alignat}{2}{x}&=y\end{alignat})",
     R"(Env "alignat"{arg{Group{"2"}} body{Row{Group{Group{"x"}} Group{"=" "y"}}}})"},
    {R"(\begin{alignat*}[t]{2}x\end{alignat*})",
     R"(Env "alignat*"{body{Row{Group{"[" "t" "]" Group{"2"} "x"}}}})"},
    {R"(\begin{aligned}[t]{x}\end{aligned})",
     R"(Env "aligned"{optarg{Group{"t"}} body{Row{Group{Group{"x"}}}}})"},
    {R"(\begin{gather}[t]x\end{gather})", R"(Env "gather"{body{Row{Group{"[" "t" "]" "x"}}}})"},
    {R"(\begin{pmatrix*}[r]a\end{pmatrix*})", R"(Env "pmatrix*"{optarg{Group{"r"}} body{Row{Group{"a"}}}})"},
    {R"(\begin{foo}{a}[b]\end{foo})", R"(Env "foo"{body{Group{Group{"a"} "[" "b" "]"}}})"},
};
INSTANTIATE_TEST_SUITE_P(EnvironmentArguments, TexArguments, ::testing::ValuesIn(kEnvironments));

// Inside the braced argument of a text command each run of white space is one space of the text; in
// math (\mathrm, or $..$ inside the text) and after a control word spaces are dropped as before.
const ArgCase kTextSpaces[] = {
    {R"(\text{if } x)", R"(Command "text"{arg{Group{"i" "f" " "}}} "x")"},
    {"\\mbox{ a \t\n b }", R"(Command "mbox"{arg{Group{" " "a" " " "b" " "}}})"},
    {R"(\textbf{a \textit{b c}} d e)",
     R"(Command "textbf"{arg{Group{"a" " " Command "textit"{arg{Group{"b" " " "c"}}}}}} "d" "e")"},
    {R"(\text{if $a b$ then})",
     R"(Command "text"{arg{Group{"i" "f" " " "$" "a" "b" "$" " " "t" "h" "e" "n"}}})"},
    {R"(\text{\alpha b})", R"(Command "text"{arg{Group{Command "alpha" "b"}}})"},
    {R"(\text{a\ b})", R"(Command "text"{arg{Group{"a" Command "space_normal" "b"}}})"},
    {R"(\text {a {b c}})", R"(Command "text"{arg{Group{"a" " " Group{"b" " " "c"}}}})"},
    {"\\text{a % note\n b}", R"(Command "text"{arg{Group{"a" " " "b"}}})"},
    {R"(\mathrm{a b})", R"(Command "mathrm"{arg{Group{"a" "b"}}})"},
    {R"(\text x y)", R"(Command "text"{arg{Group{"x"}}} "y")"},
    {R"(\text{a )", R"(Command "text"{arg{Group{"a"}}})", "E_missing_rbrace 6+1"},
};
INSTANTIATE_TEST_SUITE_P(TextSpaces, TexArguments, ::testing::ValuesIn(kTextSpaces));

// Chains of commands without braces nest one level per command; past the nesting guard the rest is
// cut off with "F_nesting_overflow" instead of exhausting the stack, and the work stays linear.
TEST(UnbracedArgumentLimits, LongChainsHitTheNestingGuard)
{
    for (const char* command : {"\\hat", "\\frac", "\\sqrt", "\\mathbb", "\\not"}) {
        LatexDiagnostics diagnostics;
        const QString source = QString::fromLatin1(command).repeated(100000) + QStringLiteral(" x");
        const KLatexNodePtr root = parseLatex(source, diagnostics);
        ASSERT_NE(root, nullptr);
        ASSERT_FALSE(diagnostics.empty()) << command;
        bool overflow = false;
        for (const LatexDiagnostic& d : diagnostics)
            overflow = overflow || d.code == QLatin1String("F_nesting_overflow");
        EXPECT_TRUE(overflow) << command;
        EXPECT_LE(diagnostics.size(), std::size_t(200002)) << command;
    }
}

TEST(UnbracedArgumentLimits, ChainBelowTheGuardNestsCompletely)
{
    const QString source = QStringLiteral("\\hat").repeated(100) + QStringLiteral(" x");
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_TRUE(diagnostics.empty());
    const KLatexNode* node = latexAs<KLatexGroup>(root.get())->children.front().get();
    int depth = 0;
    while (const auto* hat = latexAs<KLatexCommand>(node)) {
        ++depth;
        node = latexAs<KLatexGroup>(hat->args.at(0).node.get())->children.front().get();
    }
    EXPECT_EQ(depth, 100);
    EXPECT_EQ(latexAs<KLatexText>(node)->text, QStringLiteral("x"));
}

} // namespace
