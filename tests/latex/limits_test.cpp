// Hostile input: deep nesting, long lists, unclosed \left chains, megabytes.

#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
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
    return int(std::count_if(diagnostics.begin(), diagnostics.end(),
                             [&](const LatexDiagnostic& d) { return d.code == QLatin1String(code); }));
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
            EXPECT_EQ(d.message, QStringLiteral("Maximum nesting depth exceeded."));
        }
        EXPECT_GE(d.pos, 0);
        EXPECT_LE(d.pos + d.length, source.size());
    }
    // Each token yields at most a few diagnostics: no re-parse multiplies them.
    EXPECT_LE(diagnostics.size(), std::size_t(4 * source.size() + 4));
    root.reset(); // the destructor must not take the stack down either
}

const DeepCase kDeepCases[] = {
    {"{", 100000},         {"\\frac{", 100000},         {"x^{", 100000},         {"\\sqrt[", 100000},
    {"\\left(", 100000},   {"{x}^{", 100000},           {"\\begin{foo}", 30000}, {"\\begin{cases}{", 30000},
    {"\\pmatrix{", 50000}, {"x^a_b", 100000},           {"x^a^^", 100000},       {"{\\buildrel ", 50000},
    {"{a\\over{", 50000},  {"\\left(\\right.{", 50000}, {"\\left.{", 50000},
};
INSTANTIATE_TEST_SUITE_P(Hostile, DeepNesting, ::testing::ValuesIn(kDeepCases));

TEST(NestingGuard, ReportsWhereTheGuardStops)
{
    const int depth = KLatexParser::kMaxNestingDepth;
    // The document list is level one, so the brace at index depth - 1 opens the first level too deep.
    LatexDiagnostics diagnostics;
    parseLatex(repeated("{", depth + 5), diagnostics);
    ASSERT_FALSE(diagnostics.empty());
    EXPECT_EQ(diagnosticsText({diagnostics.front()}),
              QStringLiteral("3 F_nesting_overflow %1+1 Maximum nesting depth exceeded.").arg(depth));
    EXPECT_EQ(parseToText(repeated("{", depth - 1) + repeated("}", depth - 1)).diagnostics, QString());
}

TEST(NestingGuard, ScriptChainsStopAtTheirLimit)
{
    // Seventeen passes of two scripts: sixteen stack on x, the last starts on an empty base.
    const ParsedText parsed = parseToText(QStringLiteral("x") + repeated("^a_b", 17));
    EXPECT_TRUE(parsed.tree.startsWith(QStringLiteral("Group{Script{base{") + repeated("Script{base{", 15) +
                                       QStringLiteral("\"x\"} sup{\"a\"} sub{\"b\"}}")));
    EXPECT_TRUE(parsed.tree.endsWith(QStringLiteral("} Script{base{Group} sup{\"a\"} sub{\"b\"}}}")));
    EXPECT_EQ(parsed.diagnostics,
              QStringLiteral("3 F_nesting_overflow 65+1 Maximum nesting depth exceeded."));

    // Chains on every level of nesting keep the tree shallow.
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(
        repeated("{", 300) + repeated("}^a_b^c_d^e_f^g_h^i_j^k_l^m_n^o_p^q_r^s_t", 300), diagnostics);
    EXPECT_LE(treeDepth(root.get()), KLatexParser::kMaxNestingDepth * (KLatexParser::kMaxScriptChain + 3));
    EXPECT_GE(countCode(diagnostics, "F_nesting_overflow"), 2);
}

TEST(NestingGuard, UnclosedLeftChainsAreSearchedOnce)
{
    // Without remembering failed searches, each \left would search again for every enclosing one.
    const ParsedText parsed = parseToText(repeated("\\left( ", 30) + QStringLiteral("x } y"));
    EXPECT_EQ(parsed.tree, QStringLiteral("Group{") +
                               repeated("LeftRight \"(\" \".\" left-right{Group} ", 30) +
                               QStringLiteral("\"x\" \"y\"}"));
    EXPECT_EQ(parsed.diagnostics.count(QStringLiteral("E_missing_right")), 30);
    EXPECT_EQ(parsed.diagnostics.count(QStringLiteral("E_unexpected_token")), 2);

    LatexDiagnostics diagnostics;
    parseLatex(repeated("\\left( {", 2000) + QStringLiteral("x"), diagnostics);
    EXPECT_EQ(countCode(diagnostics, "E_missing_right"), 2000);
    // Past the nesting guard every level costs a few diagnostics of its own, never a re-search.
    EXPECT_LE(diagnostics.size(), std::size_t(8 * 2000));

    // Each \left body stops at the item limit, so each enclosing one parses the same tokens again;
    // ten skipped braces per atom are reported once each, not once per enclosing \left.
    diagnostics.clear();
    parseLatex(repeated("\\left(", 100) + repeated("}}}}}}}}}} a ", 1100), diagnostics);
    EXPECT_EQ(countCode(diagnostics, "E_missing_right"), 100);
    EXPECT_LE(countCode(diagnostics, "E_unexpected_token"), 11000);
    EXPECT_GE(countCode(diagnostics, "E_unexpected_token"), 10240);
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
    EXPECT_LE(treeDepth(root.get()), kDeepestTree);
    EXPECT_GE(countCode(diagnostics, "F_nesting_overflow"), 1);
}

} // namespace
