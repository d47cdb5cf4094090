#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct ParseCase {
    const char* source;      // UTF-8
    const char* tree;        // the exact dump
    const char* diagnostics; // "severity code pos+length message" lines
};

class ParserBuilds : public ::testing::TestWithParam<ParseCase> {};

TEST_P(ParserBuilds, ExactTreeAndDiagnostics)
{
    const ParseCase& c = GetParam();
    const ParsedText parsed = parseToText(QString::fromUtf8(c.source));
    EXPECT_EQ(parsed.tree, QString::fromUtf8(c.tree)) << c.source;
    EXPECT_EQ(parsed.diagnostics, QString::fromUtf8(c.diagnostics)) << c.source;
}

const ParseCase kBasics[] = {
    {"", "Group\n", ""},
    {"}", "Group\n", "2 E_unexpected_token 0+1 Unexpected token while parsing expression."},
    {"]", "Group\n  Text \"]\"\n", ""},
    {"a&b", "Group\n  Text \"a\"\n  Text \"b\"\n",
     "2 E_unexpected_token 1+1 Unexpected token while parsing expression."},
    {"{a}", "Group\n  Group\n    Text \"a\"\n", ""},
    {"{a", "Group\n  Group\n    Text \"a\"\n", "2 E_missing_rbrace 1+1 Missing '}'."},
    {"\\sqrt[3]{x^2+1}",
     "Group\n  Command \"sqrt\"\n    optarg\n      Group\n        Text \"3\"\n    arg\n      Group\n        "
     "Script\n"
     "          base\n            Text \"x\"\n          sup\n            Text \"2\"\n        Text \"+\"\n    "
     "    Text \"1\"\n",
     ""},
    {"\\sqrt[3{x}",
     "Group\n  Command \"sqrt\"\n    optarg\n      Group\n        Text \"3\"\n        Group\n          Text "
     "\"x\"\n",
     "2 E_missing_rbracket 9+1 Missing ']'.\n2 E_req_missing 10+0 \\sqrt missing required argument."},
    {"x\\", "Group\n  Text \"x\"\n  Unknown \"\\\\\"\n",
     "1 W_backslash_eof 1+1 Trailing backslash at end of input"},
    {"\\\\[2pt]a\\\\b",
     "Group\n  Command \"\\\\\\\\\"\n    optarg\n      Group\n        Text \"2\"\n        Text \"p\"\n       "
     " Text \"t\"\n"
     "  Text \"a\"\n  Command \"\\\\\\\\\"\n  Text \"b\"\n",
     ""},
    {"\\operatorname*{lim}",
     "Group\n  Command \"operatorname*\"\n    arg\n      Group\n        Text \"l\"\n        Text \"i\"\n     "
     "   Text \"m\"\n",
     ""},
    {"\\alpha{x}", "Group\n  Command \"alpha\"\n  Group\n    Text \"x\"\n", ""},
    {"\\foo[a]{b}{c}",
     "Group\n  Unknown \"foo\"\n    optarg\n      Group\n        Text \"a\"\n    arg\n      Group\n        "
     "Text \"b\"\n"
     "  Group\n    Text \"c\"\n",
     ""},
    {"\\,{x}", "Group\n  Command \"space_thin\"\n    arg\n      Group\n        Text \"x\"\n", ""},
    {"\\{x\\}", "Group\n  Command \"{\"\n  Text \"x\"\n  Command \"}\"\n", ""},
    {"\\end{x}", "Group\n  Command \"end\"\n  Group\n    Text \"x\"\n", ""},
    {"\\'e", "Group\n  Text \"\\\\'\"\n  Text \"e\"\n", ""},
};
INSTANTIATE_TEST_SUITE_P(Basics, ParserBuilds, ::testing::ValuesIn(kBasics));

const ParseCase kArguments[] = {
    {"\\frac{a}{b}",
     "Group\n  Command \"frac\"\n    arg\n      Group\n        Text \"a\"\n    arg\n      Group\n        "
     "Text \"b\"\n",
     ""},
    {"\\frac{a}", "Group\n  Command \"frac\"\n    arg\n      Group\n        Text \"a\"\n",
     "2 E_arg2_missing 8+0 \\frac missing second argument."},
    {"\\frac ab", "Group\n  Command \"frac\"\n  Text \"a\"\n  Text \"b\"\n",
     "2 E_arg1_missing 6+1 \\frac missing first argument.\n2 E_arg2_missing 6+1 \\frac missing second "
     "argument."},
    {"\\frac a{b}", "Group\n  Command \"frac\"\n  Text \"a\"\n  Group\n    Text \"b\"\n",
     "2 E_arg1_missing 6+1 \\frac missing first argument.\n2 E_arg2_missing 6+1 \\frac missing second "
     "argument."},
    {"\\sqrt x", "Group\n  Command \"sqrt\"\n  Text \"x\"\n",
     "2 E_req_missing 6+1 \\sqrt missing required argument."},
    {"\\hat x", "Group\n  Command \"hat\"\n  Text \"x\"\n",
     "2 E_arg_missing 5+1 \\hat expects one argument."},
    {"\\hat", "Group\n  Command \"hat\"\n", "2 E_arg_missing 4+0 \\hat expects one argument."},
    {"\\rule[1]{2}{3}",
     "Group\n  Command \"rule\"\n    optarg\n      Group\n        Text \"1\"\n    arg\n      Group\n        "
     "Text \"2\"\n"
     "  Group\n    Text \"3\"\n",
     ""},
    {"\\hspace*{1}", "Group\n  Command \"hspace*\"\n    arg\n      Group\n        Text \"1\"\n", ""},
    {"\\alpha*", "Group\n  Unknown \"alpha*\"\n", ""},
};
INSTANTIATE_TEST_SUITE_P(Arguments, ParserBuilds, ::testing::ValuesIn(kArguments));

const ParseCase kScripts[] = {
    {"x^2_3",
     "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Text \"2\"\n    sub\n      Text \"3\"\n",
     ""},
    {"x_b^a",
     "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Text \"a\"\n    sub\n      Text \"b\"\n",
     ""},
    {"_3^2", "Group\n  Script\n    base\n      Group\n    sup\n      Text \"2\"\n    sub\n      Text \"3\"\n",
     ""},
    {"x^a_b^c",
     "Group\n  Script\n    base\n      Script\n        base\n          Text \"x\"\n        sup\n          "
     "Text \"a\"\n"
     "        sub\n          Text \"b\"\n    sup\n      Text \"c\"\n",
     ""},
    {"x^a^b", "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Text \"a\"\n  Text \"b\"\n", ""},
    {"x_a_b", "Group\n  Script\n    base\n      Text \"x\"\n    sub\n      Text \"a\"\n  Text \"b\"\n", ""},
    // The dropped second ^ does not end the pass: the _ after it still belongs to x.
    {"x^a^_b",
     "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Text \"a\"\n    sub\n      Text \"b\"\n",
     ""},
    {"x^12", "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Text \"1\"\n  Text \"2\"\n", ""},
    {"x^", "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Group\n",
     "2 E_missing_script_arg 2+0 Missing superscript/subscript argument."},
    {"^2", "Group\n  Script\n    base\n      Group\n    sup\n      Text \"2\"\n", ""},
    {"x^}", "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Group\n",
     "2 E_missing_script_arg 2+1 Missing superscript/subscript argument.\n"
     "2 E_unexpected_token 2+1 Unexpected token while parsing expression."},
    {"x^{a \\over b}",
     "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Command \"over\"\n        arg\n          "
     "Group\n"
     "            Text \"a\"\n        arg\n          Group\n            Text \"b\"\n",
     ""},
    {"x^\\frac{1}{2}",
     "Group\n  Script\n    base\n      Text \"x\"\n    sup\n      Command \"frac\"\n        arg\n          "
     "Group\n"
     "            Text \"1\"\n        arg\n          Group\n            Text \"2\"\n",
     ""},
    {"x^a^^b",
     "Group\n  Script\n    base\n      Script\n        base\n          Text \"x\"\n        sup\n          "
     "Text \"a\"\n"
     "    sup\n      Text \"b\"\n",
     ""},
};
INSTANTIATE_TEST_SUITE_P(Scripts, ParserBuilds, ::testing::ValuesIn(kScripts));

const ParseCase kInfix[] = {
    {"{a \\over b}",
     "Group\n  Command \"over\"\n    arg\n      Group\n        Text \"a\"\n    arg\n      Group\n        "
     "Text \"b\"\n",
     ""},
    {"a \\over b", "Group\n  Text \"a\"\n  Command \"over\"\n  Text \"b\"\n", ""},
    {"{a \\over b \\over c}",
     "Group\n  Command \"over\"\n    arg\n      Group\n        Text \"a\"\n    arg\n      Group\n        "
     "Text \"b\"\n"
     "        Command \"over\"\n        Text \"c\"\n",
     ""},
    {"{\\choose}", "Group\n  Command \"choose\"\n    arg\n      Group\n    arg\n      Group\n", ""},
    {"\\frac{n \\atop k}{x \\above y}",
     "Group\n  Command \"frac\"\n    arg\n      Command \"atop\"\n        arg\n          Group\n            "
     "Text \"n\"\n"
     "        arg\n          Group\n            Text \"k\"\n    arg\n      Command \"above\"\n        arg\n  "
     "        Group\n"
     "            Text \"x\"\n        arg\n          Group\n            Text \"y\"\n",
     ""},
    {"{a \\over b",
     "Group\n  Command \"over\"\n    arg\n      Group\n        Text \"a\"\n    arg\n      Group\n        "
     "Text \"b\"\n",
     "2 E_missing_rbrace 9+1 Missing '}'."},
    {"[a \\over b]", "Group\n  Text \"[\"\n  Text \"a\"\n  Command \"over\"\n  Text \"b\"\n  Text \"]\"\n",
     ""},
    {"{\\buildrel a \\over b}",
     "Group\n  Group\n    Command \"overset\"\n      arg\n        Group\n          Text \"a\"\n      arg\n   "
     "     Text \"b\"\n",
     ""},
    {"{\\buildrel a \\over {b c}}",
     "Group\n  Group\n    Command \"overset\"\n      arg\n        Group\n          Text \"a\"\n      arg\n   "
     "     Group\n"
     "          Text \"b\"\n          Text \"c\"\n",
     ""},
    {"{\\buildrel a \\over}",
     "Group\n  Group\n    Command \"overset\"\n      arg\n        Group\n          Text \"a\"\n      arg\n   "
     "     null\n",
     ""},
    {"{\\buildrel a}", "Group\n  Group\n    Group\n      Text \"a\"\n",
     "2 E_buildrel_over 12+1 \\buildrel expects \\over."},
    {"\\buildrel a \\over b",
     "Group\n  Command \"buildrel\"\n  Text \"a\"\n  Command \"over\"\n  Text \"b\"\n", ""},
};
INSTANTIATE_TEST_SUITE_P(Infix, ParserBuilds, ::testing::ValuesIn(kInfix));

const ParseCase kLeftRight[] = {
    {"\\left( \\frac{1}{2} \\right)",
     "Group\n  LeftRight \"(\" \")\" left-right\n    Group\n      Command \"frac\"\n        arg\n          "
     "Group\n"
     "            Text \"1\"\n        arg\n          Group\n            Text \"2\"\n",
     ""},
    {"\\left( x", "Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  Text \"x\"\n",
     "2 E_missing_right 8+0 Missing \\right."},
    {"\\left1 x\\right)",
     "Group\n  LeftRight \".\" \")\" left-right\n    Group\n      Text \"1\"\n      Text \"x\"\n",
     "1 W_left_delim 5+1 \\left expects a delimiter; got '1'. Using '.'."},
    {"\\left x\\right y", "Group\n  LeftRight \"x\" \"y\" left-right\n    Group\n", ""},
    {"\\right)", "Group\n  LeftRight \".\" \")\" left-right\n    Group\n", ""},
    {"\\right", "Group\n  LeftRight \".\" \".\" left-right\n    Group\n", ""},
    {"\\left\\langle a \\right\\|",
     "Group\n  LeftRight \"\\\\langle\" \"\\\\|\" left-right\n    Group\n      Text \"a\"\n", ""},
    {"\\left[a\\right]", "Group\n  LeftRight \"[\" \"]\" left-right\n    Group\n      Text \"a\"\n", ""},
    {"\\left\\{a\\right.", "Group\n  LeftRight \"\\\\{\" \".\" left-right\n    Group\n      Text \"a\"\n",
     ""},
    {"\\left(a\\right", "Group\n  LeftRight \"(\" \".\" left-right\n    Group\n      Text \"a\"\n",
     "1 W_right_delim 13+0 \\right expects a delimiter; got ''. Using '.'."},
    // A brace is no delimiter: \right inside the group is an orphan and the group closes at '}'.
    {"\\left{a\\right}",
     "Group\n  LeftRight \".\" \".\" left-right\n    Group\n  Group\n    Text \"a\"\n    LeftRight \".\" "
     "\".\" left-right\n"
     "      Group\n",
     "1 W_left_delim 5+1 \\left expects a delimiter; got '{'. Using '.'.\n2 E_missing_right 14+0 Missing "
     "\\right."},
    {"\\left( a \\middle| b \\right)",
     "Group\n  LeftRight \"(\" \")\" left-right\n    Group\n      Text \"a\"\n      Command \"middle\"\n     "
     " Text \"|\"\n"
     "      Text \"b\"\n",
     ""},
    // The body parsed before the failure is dropped and its tokens parsed again; the diagnostics of
    // the first parse stay and are not repeated.
    {"\\left( } x", "Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  Text \"x\"\n",
     "2 E_unexpected_token 7+1 Unexpected token while parsing expression.\n2 E_missing_right 10+0 Missing "
     "\\right."},
    {"{\\left( a} b \\right)",
     "Group\n  Group\n    LeftRight \"(\" \")\" left-right\n      Group\n        Text \"a\"\n        Text "
     "\"b\"\n",
     "2 E_unexpected_token 9+1 Unexpected token while parsing expression.\n2 E_missing_rbrace 19+1 Missing "
     "'}'."},
    {"\\left( \\left[ x \\right)",
     "Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  LeftRight \"[\" \")\" left-right\n    Group\n  "
     "    Text \"x\"\n",
     "2 E_missing_right 23+0 Missing \\right."},
    {"\\left( \\left[ x",
     "Group\n  LeftRight \"(\" \".\" left-right\n    Group\n  LeftRight \"[\" \".\" left-right\n    Group\n  "
     "Text \"x\"\n",
     "2 E_missing_right 15+0 Missing \\right.\n2 E_missing_right 15+0 Missing \\right."},
};
INSTANTIATE_TEST_SUITE_P(LeftRight, ParserBuilds, ::testing::ValuesIn(kLeftRight));

// Tokens parsed again after a failed \left meet the items of the dropped body; where the other list
// would parse them differently (a brace that ends it, a leading script) they are parsed afresh.
const ParseCase kLeftRightReparse[] = {
    {"^ \\frac { a \\left. b } _ a \\begin{foo} a a",
     "Group\n  Script\n    base\n      Group\n    sup\n      Command \"frac\"\n        arg\n          "
     "Group\n            Text \"a\"\n            LeftRight \".\" \".\" left-right\n              Group\n     "
     "       Text \"b\"\n    sub\n      Text \"a\"\n  Env \"foo\"\n    body\n      Group\n        Text "
     "\"a\"\n        Text \"a\"\n",
     "2 E_unexpected_token 21+1 Unexpected token while parsing expression.\n2 E_missing_end 42+0 Missing "
     "\\end{foo}.\n2 E_missing_right 42+0 Missing \\right.\n2 E_arg2_missing 23+1 \\frac missing second "
     "argument."},
    {"{ a a _ \\right) \\right) _ b a \\left( a ^ } _",
     "Group\n  Script\n    base\n      Group\n        Text \"a\"\n        Script\n          base\n           "
     " Text \"a\"\n          sub\n            LeftRight \".\" \")\" left-right\n              Group\n        "
     "Script\n          base\n            LeftRight \".\" \")\" left-right\n              Group\n          "
     "sub\n            Text \"b\"\n        Text \"a\"\n        LeftRight \"(\" \".\" left-right\n          "
     "Group\n        Script\n          base\n            Text \"a\"\n          sup\n            Group\n    "
     "sub\n      Group\n",
     "2 E_missing_script_arg 41+1 Missing superscript/subscript argument.\n2 E_unexpected_token 41+1 "
     "Unexpected token while parsing expression.\n2 E_missing_script_arg 44+0 Missing superscript/subscript "
     "argument.\n2 E_missing_right 44+0 Missing \\right.\n2 E_missing_script_arg 41+1 Missing "
     "superscript/subscript argument.\n2 E_missing_script_arg 44+0 Missing superscript/subscript argument."},
    {"\\left( a _ \\left[ _ \\right) ] c } \\left[ \\right) }",
     "Group\n  LeftRight \"(\" \")\" left-right\n    Group\n      Script\n        base\n          Text "
     "\"a\"\n        sub\n          LeftRight \"[\" \".\" left-right\n            Group\n  Text \"]\"\n  "
     "Text \"c\"\n  LeftRight \"[\" \")\" left-right\n    Group\n",
     "2 E_unexpected_token 32+1 Unexpected token while parsing expression.\n2 E_unexpected_token 49+1 "
     "Unexpected token while parsing expression.\n2 E_missing_right 50+0 Missing \\right."},
};
INSTANTIATE_TEST_SUITE_P(LeftRightReparse, ParserBuilds, ::testing::ValuesIn(kLeftRightReparse));

} // namespace
