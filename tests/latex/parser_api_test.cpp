// The parser's entry points used one by one, as the converters and the writer tests do.

#include "latex/latex_lexer.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

struct Lexed {
    std::vector<Token> tokens;
    LatexDiagnostics diagnostics;
};

Lexed lex(const QString& source)
{
    KLatexLexer lexer(source);
    KLatexLexResult result = lexer.tokenize();
    return {std::move(result.tokens), std::move(result.diagnostics)};
}

TEST(ParserApi, BraceGroupAtAnotherTokenIsEmptyAndConsumesNothing)
{
    Lexed in = lex(QStringLiteral("x}"));
    KLatexParser parser(in.tokens, in.diagnostics);
    EXPECT_EQ(dumpLatexTree(parser.parseBraceGroupAsExpr().get()), QStringLiteral("Group\n"));
    EXPECT_EQ(diagnosticsText(parser.diagnostics()), QStringLiteral("2 E_expected_lbrace 0+1 Expected '{'."));
    EXPECT_EQ(parser.parseBracketGroupAsExpr(), nullptr);
    EXPECT_EQ(dumpLatexTree(parser.parseDocument().get()),
              QStringLiteral("Group\n  Text \"x\"\n")); // x was still there; the brace is skipped
    EXPECT_EQ(in.diagnostics.size(), 2u);
    EXPECT_EQ(parser.itemLimit(), 1024);
}

TEST(ParserApi, DiagnosticsAppendToTheCallersList)
{
    Lexed in = lex(QStringLiteral("\\{\\"));
    ASSERT_EQ(in.diagnostics.size(), 1u);
    KLatexParser parser(in.tokens, in.diagnostics);
    parser.parseDocument();
    EXPECT_EQ(&parser.diagnostics(), &in.diagnostics);
    EXPECT_EQ(diagnosticsText(in.diagnostics),
              QStringLiteral("1 W_backslash_eof 2+1 Trailing backslash at end of input"));
}

TEST(ParserApi, TokenListsWithoutEndOfInputAreSafe)
{
    const std::vector<Token> none;
    LatexDiagnostics diagnostics;
    KLatexParser empty(none, diagnostics);
    EXPECT_EQ(dumpLatexTree(empty.parseDocument().get()), QStringLiteral("Group\n"));

    const std::vector<Token> open = {Token{TokenKind::LBrace, QStringLiteral("{"), false, 0, 1},
                                     Token{TokenKind::Command, QStringLiteral("left"), false, 1, 5}};
    KLatexParser unterminated(open, diagnostics);
    EXPECT_EQ(dumpLatexTree(unterminated.parseDocument().get()),
              QStringLiteral("Group\n  Group\n    LeftRight \".\" \".\" left-right\n      Group\n"));
    EXPECT_EQ(diagnosticsText(diagnostics),
              QStringLiteral("1 W_left_delim 0+0 \\left expects a delimiter; got ''. Using '.'.\n"
                             "2 E_missing_right 0+0 Missing \\right.\n"
                             "2 E_missing_rbrace 1+5 Missing '}'."));
}

TEST(ParserApi, EnvironmentAndMatrixBodiesDirectly)
{
    Lexed in = lex(QStringLiteral("{cases}a&b\\\\c\\end{cases}"));
    KLatexParser parser(in.tokens, in.diagnostics);
    EXPECT_EQ(dumpLatexTree(parser.parseEnv().get()),
              QStringLiteral("Env \"cases\"\n  body\n    Row\n      Group\n        Text \"a\"\n      Group\n "
                             "       Text \"b\"\n"
                             "    Row\n      Group\n        Text \"c\"\n"));

    Lexed rows = lex(QStringLiteral("a\\cr b}c"));
    KLatexParser matrix(rows.tokens, rows.diagnostics);
    const KLatexNodeList body = matrix.parseMatrixBody();
    ASSERT_EQ(body.size(), 2u);
    EXPECT_EQ(dumpLatexTree(body[1].get()), QStringLiteral("Row\n  Group\n    Text \"b\"\n"));
    // The closing brace is left for the caller.
    EXPECT_EQ(dumpLatexTree(matrix.parseDocument().get()), QStringLiteral("Group\n  Text \"c\"\n"));
    EXPECT_EQ(diagnosticsText(rows.diagnostics),
              QStringLiteral("2 E_unexpected_token 6+1 Unexpected token while parsing expression."));
}

TEST(ParserApi, CommandArgsByShapeLeaveTheTokenThatIsNotAnArgument)
{
    Lexed in = lex(QStringLiteral("[a]{b}x"));
    KLatexParser parser(in.tokens, in.diagnostics);
    const KLatexArgs args = parser.parseCommandArgs(ArgShape::OptArgThenArg, QStringLiteral("sqrt"));
    ASSERT_EQ(args.size(), 2u);
    EXPECT_TRUE(args[0].optional);
    EXPECT_FALSE(args[1].optional);
    EXPECT_TRUE(parser.parseCommandArgs(ArgShape::TwoArgs, QStringLiteral("frac")).empty());
    EXPECT_EQ(diagnosticsText(in.diagnostics),
              QStringLiteral("2 E_arg1_missing 6+1 \\frac missing first argument.\n"
                             "2 E_arg2_missing 6+1 \\frac missing second argument."));
    EXPECT_EQ(dumpLatexTree(parser.parseDocument().get()), QStringLiteral("Group\n  Text \"x\"\n"));
}

} // namespace
