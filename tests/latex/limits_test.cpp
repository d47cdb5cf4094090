// Hostile input: deep nesting, long lists, unclosed \left chains, megabytes.

#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

// Depth of the deepest node, walked with an explicit stack so that the walk itself cannot overflow.
int treeDepth(const KLatexNode* root)
{
    int deepest = 0;
    std::vector<std::pair<const KLatexNode*, int>> stack{{root, 1}};
    auto pushArgs = [&](const KLatexArgs& args, int depth) {
        for (const KLatexArg& a : args)
            stack.emplace_back(a.node.get(), depth);
    };
    while (!stack.empty()) {
        const auto [node, depth] = stack.back();
        stack.pop_back();
        if (!node)
            continue;
        deepest = std::max(deepest, depth);
        if (const auto* g = latexAs<KLatexGroup>(node)) {
            for (const auto& c : g->children)
                stack.emplace_back(c.get(), depth + 1);
        } else if (const auto* c = latexAs<KLatexCommand>(node)) {
            pushArgs(c->args, depth + 1);
        } else if (const auto* u = latexAs<KLatexUnknownCommand>(node)) {
            pushArgs(u->args, depth + 1);
        } else if (const auto* e = latexAs<KLatexEnv>(node)) {
            pushArgs(e->args, depth + 1);
            for (const auto& b : e->body)
                stack.emplace_back(b.get(), depth + 1);
        } else if (const auto* r = latexAs<KLatexRow>(node)) {
            for (const auto& c : r->cells)
                stack.emplace_back(c.get(), depth + 1);
        } else if (const auto* s = latexAs<KLatexScript>(node)) {
            stack.emplace_back(s->base.get(), depth + 1);
            stack.emplace_back(s->sup.get(), depth + 1);
            stack.emplace_back(s->sub.get(), depth + 1);
        } else if (const auto* lr = latexAs<KLatexLeftRight>(node)) {
            stack.emplace_back(lr->body.get(), depth + 1);
        }
    }
    return deepest;
}

int countCode(const LatexDiagnostics& diagnostics, const char* code)
{
    int n = 0;
    for (const LatexDiagnostic& d : diagnostics)
        n += d.code == QLatin1String(code);
    return n;
}

QString repeated(const char* piece, int times)
{
    return QString::fromUtf8(piece).repeated(times);
}

// A deep tree must not take the stack down anywhere: parser, walks, destructor.
constexpr int kDeepestTree = 4 * KLatexParser::kMaxNestingDepth + 16;

struct DeepCase {
    const char* piece;
    int times;
};

class DeepNesting : public ::testing::TestWithParam<DeepCase> {};

TEST_P(DeepNesting, StopsAtTheGuardWithFatalDiagnostic)
{
    const DeepCase& c = GetParam();
    const QString source = repeated(c.piece, c.times);
    LatexDiagnostics diagnostics;
    KLatexNodePtr root = parseLatex(source, diagnostics);
    ASSERT_NE(root, nullptr);
    EXPECT_LE(treeDepth(root.get()), kDeepestTree) << c.piece;
    ASSERT_GE(countCode(diagnostics, "F_nesting_overflow"), 1) << c.piece;
    for (const LatexDiagnostic& d : diagnostics) {
        if (d.code == QLatin1String("F_nesting_overflow")) {
            EXPECT_EQ(d.severity, 3);
            EXPECT_EQ(d.message, QStringLiteral("Maximum nesting depth exceeded."));
        }
        EXPECT_GE(d.pos, 0);
        EXPECT_LE(d.pos + d.length, source.size());
    }
    // Each token yields at most a few diagnostics: no re-parse multiplies them.
    EXPECT_LE(diagnostics.size(), std::size_t(4 * source.size() + 4));
    root.reset();
}

const DeepCase kDeepCases[] = {
    {"{", 100000},         {"\\frac{", 100000},         {"x^{", 100000},         {"\\sqrt[", 100000},
    {"\\left(", 100000},   {"{x}^{", 100000},           {"\\begin{foo}", 30000}, {"\\begin{cases}{", 30000},
    {"\\pmatrix{", 50000}, {"x^a_b", 100000},           {"x^a^^", 100000},       {"{\\buildrel ", 50000},
    {"{a\\over{", 50000},  {"\\left(\\right.{", 50000}, {"\\left.{", 50000},
};
INSTANTIATE_TEST_SUITE_P(Hostile, DeepNesting, ::testing::ValuesIn(kDeepCases));

TEST(NestingGuard, ScriptChainsOnEveryLevelStayShallow)
{
    const QString source = repeated("{", 300) + repeated("}^a_b^c_d^e_f^g_h^i_j^k_l^m_n^o_p^q_r^s_t", 300);
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_LE(treeDepth(root.get()), KLatexParser::kMaxNestingDepth * (KLatexParser::kMaxScriptChain + 3));
    EXPECT_GE(countCode(diagnostics, "F_nesting_overflow"), 2);
}

TEST(NestingGuard, ScriptChainStopsAtItsLimit)
{
    // Seventeen passes of two scripts: sixteen stack on x, the last starts on an empty base.
    const ParsedText parsed = parseToText(QStringLiteral("x") + repeated("^a_b", 17));
    EXPECT_TRUE(parsed.tree.startsWith(QStringLiteral("Group\n") + repeated("  Script\n    base\n", 1)));
    EXPECT_EQ(parsed.tree.count(QStringLiteral("Script\n")), 17);
    EXPECT_TRUE(parsed.tree.endsWith(QStringLiteral(
        "  Script\n    base\n      Group\n    sup\n      Text \"a\"\n    sub\n      Text \"b\"\n")));
    EXPECT_EQ(parsed.diagnostics,
              QStringLiteral("3 F_nesting_overflow 65+1 Maximum nesting depth exceeded."));
}

TEST(NestingGuard, ReportsWhereTheGuardStops)
{
    const int depth = KLatexParser::kMaxNestingDepth;
    // The document list is level one, so the brace at index depth - 1 opens the first level too deep.
    const QString source = repeated("{", depth + 5);
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    ASSERT_FALSE(diagnostics.empty());
    EXPECT_EQ(diagnosticsText({diagnostics.front()}),
              QStringLiteral("3 F_nesting_overflow %1+1 Maximum nesting depth exceeded.").arg(depth));
    // Nesting within the limit is untouched.
    const ParsedText ok =
        parseToText(repeated("{", depth - 1) + QStringLiteral("x") + repeated("}", depth - 1));
    EXPECT_EQ(ok.diagnostics, QString());
}

TEST(NestingGuard, UnclosedLeftChainsAreSearchedOnce)
{
    // Without remembering failed searches, each \left would search again for every enclosing one.
    const QString source = repeated("\\left( ", 30) + QStringLiteral("x } y");
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_EQ(countCode(diagnostics, "E_missing_right"), 30);
    EXPECT_EQ(countCode(diagnostics, "E_unexpected_token"), 2);
    QString expected = QStringLiteral("Group\n");
    for (int i = 0; i < 30; ++i)
        expected += QStringLiteral("  LeftRight \"(\" \".\" left-right\n    Group\n");
    expected += QStringLiteral("  Text \"x\"\n  Text \"y\"\n");
    EXPECT_EQ(dumpLatexTree(root.get()), expected);
}

TEST(NestingGuard, UnclosedLeftInsideGroupsStaysLinear)
{
    const QString source = repeated("\\left( {", 2000) + QStringLiteral("x");
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_EQ(countCode(diagnostics, "E_missing_right"), 2000);
    // Past the nesting guard every level costs a few diagnostics of its own, never a re-search.
    EXPECT_LE(diagnostics.size(), std::size_t(8 * 2000));
}

// A \left body cut short by the item limit fails; the enclosing list parses the same tokens again and
// must build what a fresh parse builds, whether or not the dropped items are reused.
TEST(ItemLimit, FailedLeftBodiesAreParsedAgainByTheEnclosingList)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QStringLiteral("\\left( \\left[ a^x b c d"), diagnostics, 2);
    EXPECT_EQ(dumpLatexTree(root.get()),
              QStringLiteral("Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  LeftRight \"[\" \".\" "
                             "left-right\n    Group\n"
                             "  Script\n    base\n      Text \"a\"\n    sup\n      Text \"x\"\n"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_nesting_overflow 22+1 Maximum nesting depth exceeded.\n"
                             "2 E_missing_right 22+1 Missing \\right.\n"
                             "3 F_nesting_overflow 20+1 Maximum nesting depth exceeded.\n"
                             "2 E_missing_right 20+1 Missing \\right.\n"
                             "3 F_nesting_overflow 18+1 Maximum nesting depth exceeded."));
}

TEST(ItemLimit, ReusedItemsKeepTheirScriptsAndCount)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QStringLiteral("{\\left( a_1 b^^2 c} d"), diagnostics, 3);
    EXPECT_EQ(
        dumpLatexTree(root.get()),
        QStringLiteral(
            "Group\n  Group\n    LeftRight \"(\" \".\" left-right\n      Group\n    Script\n      base\n"
            "        Text \"a\"\n      sub\n        Text \"1\"\n    Script\n      base\n        Text \"b\"\n"
            "      sup\n        Group\n    Text \"2\"\n  Text \"c\"\n  Text \"d\"\n"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("2 E_missing_script_arg 14+1 Missing superscript/subscript argument.\n"
                             "3 F_nesting_overflow 18+1 Maximum nesting depth exceeded.\n"
                             "2 E_missing_right 18+1 Missing \\right.\n"
                             "3 F_nesting_overflow 17+1 Maximum nesting depth exceeded.\n"
                             "2 E_missing_rbrace 15+1 Missing '}'.\n"
                             "2 E_unexpected_token 18+1 Unexpected token while parsing expression."));
}

TEST(NestingGuard, SkippedTokensAreNotSkippedAgainPerEnclosingLeft)
{
    // Each \left body stops at the item limit, so each enclosing one parses the same tokens again.
    const QString source = repeated("\\left(", 100) + repeated("}}}}}}}}}} a ", 1100);
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_EQ(countCode(diagnostics, "E_missing_right"), 100);
    // Ten skipped braces per atom, reported once each: no multiplication by the nesting.
    EXPECT_LE(countCode(diagnostics, "E_unexpected_token"), 11000);
    EXPECT_GE(countCode(diagnostics, "E_unexpected_token"), 10240);
}

TEST(ItemLimit, AnAtomThatFillsTheListTakesNoLaterScripts)
{
    // In the \left body "a" takes "_" and then "^b"; filling the document list, it stops after "_".
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QStringLiteral("\\left( a _ _ ^ b c"), diagnostics, 1);
    EXPECT_EQ(dumpLatexTree(root.get()),
              QStringLiteral("Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  Script\n"
                             "    base\n      Text \"a\"\n    sub\n      Group\n"));
}

TEST(ItemLimit, DocumentKeepsFirst1025Atoms)
{
    const QString letters = repeated("a", 1100);
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(letters, diagnostics);
    EXPECT_EQ(latexAs<KLatexGroup>(root.get())->children.size(), 1025u);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_nesting_overflow 1025+1 Maximum nesting depth exceeded."));
}

TEST(ItemLimit, BracedLettersSpillToTheDocument)
{
    const QString source = QStringLiteral("{") + repeated("a", 1100) + QStringLiteral("}");
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    const auto& children = latexAs<KLatexGroup>(root.get())->children;
    ASSERT_EQ(children.size(), 1u + 75u);
    EXPECT_EQ(latexAs<KLatexGroup>(children.front().get())->children.size(), 1025u);
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_nesting_overflow 1026+1 Maximum nesting depth exceeded.\n"
                             "2 E_missing_rbrace 1025+1 Missing '}'.\n"
                             "2 E_unexpected_token 1101+1 Unexpected token while parsing expression."));
}

TEST(ItemLimit, ScriptsAndSkippedTokensDoNotCount)
{
    const QString source = repeated("a^b_c}", 1025) + QStringLiteral("z");
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    EXPECT_EQ(latexAs<KLatexGroup>(root.get())->children.size(), 1025u);
    EXPECT_EQ(countCode(diagnostics, "F_nesting_overflow"), 1);
    EXPECT_EQ(countCode(diagnostics, "E_unexpected_token"), 1024);
}

TEST(ItemLimit, CustomLimitAppliesPerList)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(QStringLiteral("ab{cde}f"), diagnostics, 2);
    EXPECT_EQ(dumpLatexTree(root.get()),
              QStringLiteral("Group\n  Text \"a\"\n  Text \"b\"\n  Group\n    Text \"c\"\n"
                             "    Text \"d\"\n    Text \"e\"\n"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("3 F_nesting_overflow 6+1 Maximum nesting depth exceeded.\n"
                             "3 F_nesting_overflow 7+1 Maximum nesting depth exceeded."));
}

TEST(LargeInput, MegabytesOfMixedFormulasParse)
{
    const QString piece =
        QStringLiteral("\\frac{a_1^{2}}{\\sqrt[3]{x}} + \\left( \\begin{pmatrix}a&b\\\\c&d\\end{pmatrix} "
                       "\\right) \\color{red}{y} \\left[ z ");
    const QString source = piece.repeated((1 << 20) / piece.size() * 2);
    ASSERT_GT(source.size(), 1 << 20);
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    ASSERT_NE(root, nullptr);
    EXPECT_LE(treeDepth(root.get()), kDeepestTree);
    EXPECT_GE(countCode(diagnostics, "F_nesting_overflow"), 1);
}

} // namespace
