#include "latex/latex_lexer.h"
#include "tests/latex/test_support.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

// Every token as "text" pos+len joined by " | ": commands prefixed with a backslash, digits with '#',
// a trailing * when starred; punctuation shows its kind and End its position, the text only if unusual.
QString tokenText(const Token& t)
{
    static const char* kinds[] = {"End", "\\", "", "#", "{", "}", "[", "]", "^", "_", "&"};
    const QString kind = QString::fromLatin1(kinds[int(t.kind)]);
    const bool plain = t.kind == TokenKind::EndOfInput ? t.text.isEmpty() : int(t.kind) > 3 && t.text == kind;
    if (t.kind == TokenKind::EndOfInput && plain)
        return QStringLiteral("End %1").arg(t.pos);
    return QStringLiteral("%1%2 %3+%4%5")
        .arg(kind, plain ? QString() : jsonQuote(t.text))
        .arg(t.pos)
        .arg(t.len)
        .arg(t.starred ? QStringLiteral("*") : QString());
}

QString lexDump(const QString& source, QString* diagnostics = nullptr)
{
    const KLatexLexResult result = KLatexLexer(source).tokenize();
    QStringList parts;
    for (const Token& t : result.tokens)
        parts << tokenText(t);
    if (diagnostics)
        *diagnostics = diagnosticsText(result.diagnostics);
    return parts.join(QLatin1String(" | "));
}

struct LexCase {
    const char* source; // UTF-8
    const char* tokens;
    const char* diagnostics;
};

class LexerTokens : public ::testing::TestWithParam<LexCase> {};

TEST_P(LexerTokens, ProduceExactTokenList)
{
    const LexCase& c = GetParam();
    QString diagnostics;
    EXPECT_EQ(lexDump(QString::fromUtf8(c.source), &diagnostics), QString::fromUtf8(c.tokens)) << c.source;
    EXPECT_EQ(diagnostics, QString::fromUtf8(c.diagnostics)) << c.source;
}

const LexCase kLexCases[] = {
    {"", R"x(End 0)x", ""},
    {" \t\ra % comment\nb%only", R"x("a" 3+1 | "b" 15+1 | End 21)x", ""},
    {"1\u0663\u00e9\\\u00e9", R"x(#"1" 0+1 | #"٣" 1+1 | "é" 2+1 | \"é" 3+2 | End 5)x", ""},
    {"\\alpha*", R"x(\"alpha" 0+7* | End 7)x", ""},
    {"\\\\*", R"x(\"\\\\" 0+2 | "*" 2+1 | End 3)x", ""},
    {"\\,\\thinspace\\!\\qquad\\ ~\\{\\|",
     R"x(\"space_thin" 0+2 | \"space_thin" 2+10 | \"space_negthin" 12+2 | \"space_qquad" 14+6 | \"space_normal" 20+2 | \"nbsp" 22+1 | \"{" 23+2 | \"|" 25+2 | End 27)x",
     ""},
    {"\\'\\1", R"x(\"'" 0+2 | "\\1" 2+2 | End 4)x", ""},
    {"x\\", R"x("x" 0+1 | \"\\" 1+1 | End 2)x", "1 W_backslash_eof 1+1 Trailing backslash at end of input"},
    {"{}[]^_&#$", R"x({ 0+1 | } 1+1 | [ 2+1 | ] 3+1 | ^ 4+1 | _ 5+1 | & 6+1 | "#" 7+1 | "$" 8+1 | End 9)x",
     ""},
    {"\\color{#FF0000}", R"x(\"color" 0+6 | { 6+1 | "#FF0000" 7+7 | } 14+1 | End 15)x", ""},
    {"\\color{rgba (1,(2),3)}", R"x(\"color" 0+6 | { 6+1 | "rgba (1,(2),3)" 7+14 | } 21+1 | End 22)x", ""},
    {"\\color{rgb(1,0,0}x", R"x(\"color" 0+6 | { 6+1 | "rgb(1,0,0}x" 7+11 | End 18)x",
     "1 W_unclosed_paren 7+11 Unclosed parentheses in RGB color value"},
    // Blanks skipped inside the colour argument lie between pos and the text.
    {"\\color{\u00a0dark-blue_2}", R"x(\"color" 0+6 | { 6+1 | "dark-blue_2" 7+11 | } 19+1 | End 20)x", ""},
    {"\\color{1,0.5}",
     R"x(\"color" 0+6 | { 6+1 | "1" 7+1 | "," 8+1 | "0" 9+1 | "." 10+1 | "5" 11+1 | } 12+1 | End 13)x", ""},
    {"\\textcolor[rgb]{1,0,0}{x}",
     R"x(\"textcolor" 0+10 | "[rgb]{1,0,0}" 10+12 | { 22+1 | "x" 23+1 | } 24+1 | End 25)x", ""},
    {"\\color[HTML] {F0{0}0}x", R"x(\"color" 0+6 | "[HTML] {F0{0}0}" 6+15 | "x" 21+1 | End 22)x", ""},
    {"\\color[x", R"x(\"color" 0+6 | [ 6+1 | "x" 7+1 | End 8)x", ""},
    {"\\fcolorbox{red}{blue}{x}",
     R"x(\"fcolorbox" 0+10 | { 10+1 | "red" 11+3 | } 14+1 | { 15+1 | "blue" 16+4 | } 20+1 | { 21+1 | "x" 22+1 | } 23+1 | End 24)x",
     ""},
    // A spacing name is not remembered as a colour command.
    {"\\quad{red}", R"x(\"space_quad" 0+5 | { 5+1 | "r" 6+1 | "e" 7+1 | "d" 8+1 | } 9+1 | End 10)x", ""},
};

INSTANTIATE_TEST_SUITE_P(Cases, LexerTokens, ::testing::ValuesIn(kLexCases));

TEST(LexerLimits, TokenCountNeverExceedsSourceLengthPlusOne)
{
    const QString source =
        QStringLiteral("\\color[") + QString(200000, QLatin1Char('[')) + QStringLiteral("a");
    KLatexLexer lexer(source);
    const KLatexLexResult result = lexer.tokenize();
    ASSERT_EQ(result.tokens.size(), std::size_t(200000 + 4));
    EXPECT_EQ(result.tokens.back().kind, TokenKind::EndOfInput);
    EXPECT_LE(result.tokens.size(), std::size_t(source.size()) + 1);
}

// A character outside the Basic Multilingual Plane is one token (also after a backslash); a surrogate
// that is not half of a pair arrives alone.
TEST(LexerLimits, SurrogatePairsAreOneCharacter)
{
    const QString high(QChar(0xD835)), low(QChar(0xDC65)), pair = high + low;
    EXPECT_EQ(lexDump(QStringLiteral("\\") + pair), QStringLiteral(R"x("\\%1" 0+3 | End 3)x").arg(pair));
    EXPECT_EQ(lexDump(pair + low + high),
              QStringLiteral(R"x("%3" 0+2 | "%2" 2+1 | "%1" 3+1 | End 4)x").arg(high, low, pair));
    EXPECT_EQ(lexDump(high + QStringLiteral("a") + high + QStringLiteral("\\") + high),
              QStringLiteral(R"x("%1" 0+1 | "a" 1+1 | "%1" 2+1 | "\\%1" 3+2 | End 5)x").arg(high));
}

} // namespace
