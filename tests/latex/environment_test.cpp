#include "latex/latex_env.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct EnvCase {
    const char* source;
    const char* tree;
    const char* diagnostics;
};

class EnvironmentParsing : public ::testing::TestWithParam<EnvCase> {};

TEST_P(EnvironmentParsing, ExactTreeAndDiagnostics)
{
    const EnvCase& c = GetParam();
    const ParsedText parsed = parseToText(QString::fromUtf8(c.source));
    EXPECT_EQ(parsed.tree, QString::fromUtf8(c.tree)) << c.source;
    EXPECT_EQ(parsed.diagnostics, QString::fromUtf8(c.diagnostics)) << c.source;
}

const EnvCase kEnvironments[] = {
    {"\\begin{pmatrix}a&b\\\\c&d\\end{pmatrix}",
     "Group\n  Env \"pmatrix\"\n    body\n      Row\n        Group\n          Text \"a\"\n        Group\n    "
     "      Text \"b\"\n"
     "      Row\n        Group\n          Text \"c\"\n        Group\n          Text \"d\"\n",
     ""},
    {"\\begin{pmatrix}a\\\\\\end{pmatrix}",
     "Group\n  Env \"pmatrix\"\n    body\n      Row\n        Group\n          Text \"a\"\n      Row\n        "
     "Group\n",
     ""},
    {"\\begin{aligned}a&=b\\\\[2pt]c\\end{aligned}",
     "Group\n  Env \"aligned\"\n    body\n      Row\n        Group\n          Text \"a\"\n        Group\n    "
     "      Text \"=\"\n"
     "          Text \"b\"\n        Command \"\\\\\\\\\"\n          optarg\n            Group\n              "
     "Text \"2\"\n"
     "              Text \"p\"\n              Text \"t\"\n      Row\n        Group\n          Text \"c\"\n",
     ""},
    {"\\begin{array}{cc}1&2\\end{array}",
     "Group\n  Env \"array\"\n    arg\n      Group\n        Text \"c\"\n        Text \"c\"\n    body\n      "
     "Row\n        Group\n"
     "          Text \"1\"\n        Group\n          Text \"2\"\n",
     ""},
    {"\\begin{alignat*}[t]{2}x\\end{alignat*}",
     "Group\n  Env \"alignat*\"\n    optarg\n      Group\n        Text \"t\"\n    arg\n      Group\n        "
     "Text \"2\"\n"
     "    body\n      Row\n        Group\n          Text \"x\"\n",
     ""},
    {"\\begin{Bmatrix}a&b\\end{Bmatrix}",
     "Group\n  Env \"Bmatrix\"\n    body\n      Group\n        Text \"a\"\n        Text \"b\"\n",
     "2 E_unexpected_token 16+1 Unexpected token while parsing expression."},
    {"\\begin{foo}x", "Group\n  Env \"foo\"\n    body\n      Group\n        Text \"x\"\n",
     "2 E_missing_end 12+0 Missing \\end{foo}."},
    {"\\begin{matrix}a\\end{pmatrix}",
     "Group\n  Env \"matrix\"\n    body\n      Row\n        Group\n          Text \"a\"\n",
     "2 E_env_mismatch 28+0 \\end{pmatrix} mismatched (expect matrix)."},
    {"\\begin x", "Group\n  Command \"begin\"\n  Text \"x\"\n",
     "2 E_begin_need_name 7+1 \\begin must be followed by {name}."},
    {"\\begin{}x\\end{}y", "Group\n", "2 E_unexpected_token 15+1 Unexpected token while parsing expression."},
    {"\\begin{ali2gned}\\end{aligned}", "Group\n  Env \"aligned\"\n    body\n      Row\n        Group\n",
     "1 W_envname_char 10+1 Unexpected char in environment name; ignoring."},
    // An empty body still holds one row with one empty cell; only the end of input leaves no row.
    {"\\begin{cases}\\end{cases}", "Group\n  Env \"cases\"\n    body\n      Row\n        Group\n", ""},
    {"\\begin{cases}", "Group\n  Env \"cases\"\n    body\n", "2 E_missing_end 13+0 Missing \\end{cases}."},
    {"\\begin{cases", "Group\n  Env \"cases\"\n    body\n",
     "2 E_missing_rbrace 12+0 Missing '}' after \\begin{name}.\n2 E_missing_end 12+0 Missing \\end{cases}."},
    {"\\begin{gather}a\\end x",
     "Group\n  Env \"gather\"\n    body\n      Row\n        Group\n          Text \"a\"\n  Text \"x\"\n",
     "2 E_end_need_name 20+1 \\end must be followed by {name}."},
    {"\\begin{split}a\\end{split",
     "Group\n  Env \"split\"\n    body\n      Row\n        Group\n          Text \"a\"\n",
     "2 E_missing_rbrace 24+0 Missing '}' after \\end{name}."},
    {"\\begin{split}a\\end{sp1lit}",
     "Group\n  Env \"split\"\n    body\n      Row\n        Group\n          Text \"a\"\n", ""},
    {"\\begin{cases}a}\\end{cases}",
     "Group\n  Env \"cases\"\n    body\n      Row\n        Group\n          Text \"a\"\n",
     "2 E_unexpected_token 14+1 Unexpected token while parsing expression."},
    {"\\begin{foo}{a \\over b}c\\end{foo}",
     "Group\n  Env \"foo\"\n    arg\n      Command \"over\"\n        arg\n          Group\n            Text "
     "\"a\"\n"
     "        arg\n          Group\n            Text \"b\"\n    body\n      Group\n        Text \"c\"\n",
     ""},
    {"\\begin{foo}a \\over b\\end{foo}",
     "Group\n  Env \"foo\"\n    body\n      Group\n        Text \"a\"\n        Command \"over\"\n        "
     "Text \"b\"\n",
     ""},
    {"\\begin{align*}a\\\\\\\\b\\end{align*}",
     "Group\n  Env \"align*\"\n    body\n      Row\n        Group\n          Text \"a\"\n      Row\n        "
     "Group\n"
     "      Row\n        Group\n          Text \"b\"\n",
     ""},
    {"\\pmatrix{a&b\\cr c&d}",
     "Group\n  Command \"pmatrix\"\n    arg\n      Group\n        Row\n          Group\n            Text "
     "\"a\"\n"
     "          Group\n            Text \"b\"\n        Row\n          Group\n            Text \"c\"\n        "
     "  Group\n"
     "            Text \"d\"\n",
     ""},
    {"\\matrix x", "Group\n  Command \"matrix\"\n  Text \"x\"\n", ""},
    {"\\Bmatrix{a\\\\[1]b",
     "Group\n  Command \"Bmatrix\"\n    arg\n      Group\n        Row\n          Group\n            Text "
     "\"a\"\n"
     "        Row\n          Group\n            Text \"[\"\n            Text \"1\"\n            Text \"]\"\n "
     "           Text \"b\"\n",
     "2 E_missing_rbrace 16+0 Missing '}'."},
    {"\\bmatrix{}", "Group\n  Command \"bmatrix\"\n    arg\n      Group\n", ""},
    {"\\vmatrix{a&\\end}",
     "Group\n  Command \"vmatrix\"\n    arg\n      Group\n        Row\n          Group\n            Text "
     "\"a\"\n"
     "          Group\n            Command \"end\"\n",
     ""},
};
INSTANTIATE_TEST_SUITE_P(Environments, EnvironmentParsing, ::testing::ValuesIn(kEnvironments));

TEST(KnownEnvironments, ThirtyOneNamesInFixedOrder)
{
    const QStringList& names = knownEnvironments();
    ASSERT_EQ(names.size(), 31);
    EXPECT_EQ(names.first(), QStringLiteral("cases"));
    EXPECT_EQ(names.at(14), QStringLiteral("matrix*"));
    EXPECT_EQ(names.last(), QStringLiteral("smallbmatrix"));
    EXPECT_FALSE(isKnownEnvironment(QStringLiteral("Bmatrix")));
    EXPECT_FALSE(isKnownEnvironment(QStringLiteral("Aligned")));
    // Every known name splits its body into rows, every other name keeps one group.
    for (const QString& name : names) {
        const ParsedText parsed = parseToText(QStringLiteral("\\begin{%1}a&b\\end{%1}").arg(name));
        EXPECT_EQ(
            parsed.tree,
            QStringLiteral("Group\n  Env \"%1\"\n    body\n      Row\n        Group\n          Text \"a\"\n"
                           "        Group\n          Text \"b\"\n")
                .arg(name));
        EXPECT_TRUE(parsed.diagnostics.isEmpty()) << name.toStdString();
    }
}

} // namespace
