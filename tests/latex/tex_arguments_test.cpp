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

void expectParse(const ArgCase& c)
{
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
class UnbracedArgument : public ::testing::TestWithParam<ArgCase> {};
TEST_P(UnbracedArgument, IsOneAtomInAGroup)
{
    expectParse(GetParam());
}
const ArgCase kUnbraced[] = {
    {R"(\frac12)", R"(Command "frac"{arg{Group{"1"}} arg{Group{"2"}}})"},
    {R"(\frac a b)", R"(Command "frac"{arg{Group{"a"}} arg{Group{"b"}}})"},
    {R"(\frac a{b})", R"(Command "frac"{arg{Group{"a"}} arg{Group{"b"}}})"},
    {R"(\frac{a}b)", R"(Command "frac"{arg{Group{"a"}} arg{Group{"b"}}})"},
    {R"(\frac123)", R"(Command "frac"{arg{Group{"1"}} arg{Group{"2"}}} "3")"},
    {R"(\frac\alpha\beta)", R"(Command "frac"{arg{Group{Command "alpha"}} arg{Group{Command "beta"}}})"},
    {R"(\sqrt\frac12)", R"(Command "sqrt"{arg{Group{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}}})"},
    {R"(\frac\frac123)",
     R"(Command "frac"{arg{Group{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}} arg{Group{"3"}}})"},
    {R"(\frac1\sqrt2)", R"(Command "frac"{arg{Group{"1"}} arg{Group{Command "sqrt"{arg{Group{"2"}}}}}})"},
    {R"(x^\frac12)", R"(Script{base{"x"} sup{Command "frac"{arg{Group{"1"}} arg{Group{"2"}}}}})"},
    {R"(\sqrt2)", R"(Command "sqrt"{arg{Group{"2"}}})"},
    {R"(\sqrt[3]x)", R"(Command "sqrt"{optarg{Group{"3"}} arg{Group{"x"}}})"},
    {R"(\hat x)", R"(Command "hat"{arg{Group{"x"}}})"},
    {R"(\hat\hat x)", R"(Command "hat"{arg{Group{Command "hat"{arg{Group{"x"}}}}}})"},
    // Scripts after the argument belong to the whole command, as in TeX.
    {R"(\hat x^2)", R"(Script{base{Command "hat"{arg{Group{"x"}}}} sup{"2"}})"},
    {R"(\mathbb R^n)", R"(Script{base{Command "mathbb"{arg{Group{"R"}}}} sup{"n"}})"},
    {R"(\mathbb R)", R"(Command "mathbb"{arg{Group{"R"}}})"},
    {R"(\binom nk)", R"(Command "binom"{arg{Group{"n"}} arg{Group{"k"}}})"},
    {R"(\bigl(x\bigr))", R"~(Command "bigl"{arg{Group{"("}}} "x" Command "bigr"{arg{Group{")"}}})~"},
    {R"(\big[)", R"(Command "big"{arg{Group{"["}}})"},
    {R"(\not=)", R"(Command "not"{arg{Group{"="}}})"},
    {R"(\not\in)", R"(Command "not"{arg{Group{Command "in"}}})"},
    {R"(\hat[x])", R"(Command "hat"{arg{Group{"["}}} "x" "]")"},
    {R"(\frac\left(a\right)b)",
     R"~(Command "frac"{arg{Group{LeftRight "(" ")" left-right{Group{"a"}}}} arg{Group{"b"}}})~"},
    {R"(\text x)", R"(Command "text"{arg{Group{"x"}}})"},
    // The TeX primitives that take a dimension read a number with its unit, or a length command.
    {R"(\kern3mu x)", R"(Command "kern"{arg{Group{"3" "m" "u"}}} "x")"},
    {R"(\mkern-1.5mu)", R"(Command "mkern"{arg{Group{"-" "1" "." "5" "m" "u"}}})"},
    {R"(\kern-\nulldelimiterspace)", R"(Command "kern"{arg{Group{"-" Unknown "nulldelimiterspace"}}})"},
    {R"(\mskip\thinmuskip)", R"(Command "mskip"{arg{Group{Command "thinmuskip"}}})"},
    {R"(\kern2x)", R"(Command "kern"{arg{Group{"2"}}} "x")"},
    // One character outside the Basic Multilingual Plane is two code units and one argument.
    {"\\mathbb \xF0\x9D\x94\xB8", "Command \"mathbb\"{arg{Group{\"\xF0\x9D\x94\xB8\"}}}"},
    {"x^\xF0\x9D\x94\xB8", "Script{base{\"x\"} sup{\"\xF0\x9D\x94\xB8\"}}"},
    {"\xF0\x9D\x94\xB8^2", "Script{base{\"\xF0\x9D\x94\xB8\"} sup{\"2\"}}"},
    {"\\frac\xF0\x9D\x91\xA5\xF0\x9D\x91\xA6",
     "Command \"frac\"{arg{Group{\"\xF0\x9D\x91\xA5\"}} arg{Group{\"\xF0\x9D\x91\xA6\"}}}"},
};
INSTANTIATE_TEST_SUITE_P(Rows, UnbracedArgument, ::testing::ValuesIn(kUnbraced));

// Where no argument can start (the end, a closing brace, a script or alignment sign, or a command that
// ends the list, row or cell) the argument is missing: reported, and the token left to the list.
class MissingArgument : public ::testing::TestWithParam<ArgCase> {};
TEST_P(MissingArgument, IsReportedAndRepaired)
{
    expectParse(GetParam());
}
const ArgCase kMissing[] = {
    {R"(\frac{a})", R"(Command "frac"{arg{Group{"a"}}})", "E_arg2_missing 8+0"},
    {R"(\frac)", R"(Command "frac")", "E_arg1_missing 5+0 | E_arg2_missing 5+0"},
    {R"(\hat})", R"(Command "hat")", "E_arg_missing 4+1 | E_unexpected_token 4+1"},
    {R"(\hat)", R"(Command "hat")", "E_arg_missing 4+0"},
    {R"(\hat^2)", R"(Script{base{Command "hat"} sup{"2"}})", "E_arg_missing 4+1"},
    {R"(\hat_2)", R"(Script{base{Command "hat"} sub{"2"}})", "E_arg_missing 4+1"},
    {R"(\sqrt[3])", R"(Command "sqrt"{optarg{Group{"3"}}})", "E_req_missing 8+0"},
    {R"({\frac a})", R"(Group{Command "frac"{arg{Group{"a"}}}})", "E_arg2_missing 8+1"},
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
INSTANTIATE_TEST_SUITE_P(Rows, MissingArgument, ::testing::ValuesIn(kMissing));

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
