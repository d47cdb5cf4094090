#include "latex/latex_lexer.h"
#include "tests/latex/test_support.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

const char* kindName(TokenKind kind)
{
    static const char* names[] = {"End", "Cmd", "Char", "Digit", "{", "}", "[", "]", "^", "_", "&"};
    return names[int(kind)];
}

// Every token as KIND "text" pos+len, with a trailing * when starred, joined by " | ".
QString lexDump(const QString& source, QString* diagnostics = nullptr)
{
    const KLatexLexResult result = KLatexLexer(source).tokenize();
    QStringList parts;
    for (const Token& t : result.tokens)
        parts << QStringLiteral("%1 %2 %3+%4%5")
                     .arg(QLatin1String(kindName(t.kind)), jsonQuote(t.text))
                     .arg(t.pos)
                     .arg(t.len)
                     .arg(t.starred ? QStringLiteral("*") : QString());
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
    {"", R"x(End "" 0+0)x", ""},
    {" \t\ra % comment\nb%only", R"x(Char "a" 3+1 | Char "b" 15+1 | End "" 21+0)x", ""},
    {"1\u0663\u00e9\\\u00e9", R"x(Digit "1" 0+1 | Digit "٣" 1+1 | Char "é" 2+1 | Cmd "é" 3+2 | End "" 5+0)x",
     ""},
    {"\\alpha*", R"x(Cmd "alpha" 0+7* | End "" 7+0)x", ""},
    {"\\\\*", R"x(Cmd "\\\\" 0+2 | Char "*" 2+1 | End "" 3+0)x", ""},
    {"\\,\\thinspace\\!\\qquad\\ ~\\{\\|",
     R"x(Cmd "space_thin" 0+2 | Cmd "space_thin" 2+10 | Cmd "space_negthin" 12+2 | Cmd "space_qquad" 14+6 | Cmd "space_normal" 20+2 | Cmd "nbsp" 22+1 | Cmd "{" 23+2 | Cmd "|" 25+2 | End "" 27+0)x",
     ""},
    {"\\'\\1", R"x(Char "\\'" 0+2 | Char "\\1" 2+2 | End "" 4+0)x", ""},
    {"x\\", R"x(Char "x" 0+1 | Cmd "\\" 1+1 | End "" 2+0)x",
     "1 W_backslash_eof 1+1 Trailing backslash at end of input"},
    {"{}[]^_&#$",
     R"x({ "{" 0+1 | } "}" 1+1 | [ "[" 2+1 | ] "]" 3+1 | ^ "^" 4+1 | _ "_" 5+1 | & "&" 6+1 | Char "#" 7+1 | Char "$" 8+1 | End "" 9+0)x",
     ""},
    {"\\color{red}x",
     R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "red" 7+3 | } "}" 10+1 | Char "x" 11+1 | End "" 12+0)x", ""},
    {"\\color{#FF0000}", R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "#FF0000" 7+7 | } "}" 14+1 | End "" 15+0)x",
     ""},
    {"\\color{rgb(255, 0, 0)}",
     R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "rgb(255, 0, 0)" 7+14 | } "}" 21+1 | End "" 22+0)x", ""},
    {"\\color{rgba (1,(2),3)}",
     R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "rgba (1,(2),3)" 7+14 | } "}" 21+1 | End "" 22+0)x", ""},
    {"\\color{rgb(1,0,0}x", R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "rgb(1,0,0}x" 7+11 | End "" 18+0)x",
     "1 W_unclosed_paren 7+11 Unclosed parentheses in RGB color value"},
    // Blanks skipped inside the colour argument lie between pos and the text.
    {"\\color{\u00a0dark-blue_2}",
     R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "dark-blue_2" 7+11 | } "}" 19+1 | End "" 20+0)x", ""},
    {"\\color{1,0.5}",
     R"x(Cmd "color" 0+6 | { "{" 6+1 | Char "1" 7+1 | Char "," 8+1 | Char "0" 9+1 | Char "." 10+1 | Char "5" 11+1 | } "}" 12+1 | End "" 13+0)x",
     ""},
    {"\\textcolor[rgb]{1,0,0}{x}",
     R"x(Cmd "textcolor" 0+10 | Char "[rgb]{1,0,0}" 10+12 | { "{" 22+1 | Char "x" 23+1 | } "}" 24+1 | End "" 25+0)x",
     ""},
    {"\\color[HTML] {F0{0}0}x",
     R"x(Cmd "color" 0+6 | Char "[HTML] {F0{0}0}" 6+15 | Char "x" 21+1 | End "" 22+0)x", ""},
    {"\\color[named]x", R"x(Cmd "color" 0+6 | Char "[named]" 6+7 | Char "x" 13+1 | End "" 14+0)x", ""},
    {"\\color[x", R"x(Cmd "color" 0+6 | [ "[" 6+1 | Char "x" 7+1 | End "" 8+0)x", ""},
    {"[a]", R"x([ "[" 0+1 | Char "a" 1+1 | ] "]" 2+1 | End "" 3+0)x", ""},
    {"\\fcolorbox{red}{blue}{x}",
     R"x(Cmd "fcolorbox" 0+10 | { "{" 10+1 | Char "red" 11+3 | } "}" 14+1 | { "{" 15+1 | Char "b" 16+1 | Char "l" 17+1 | Char "u" 18+1 | Char "e" 19+1 | } "}" 20+1 | { "{" 21+1 | Char "x" 22+1 | } "}" 23+1 | End "" 24+0)x",
     ""},
    // A spacing name is not remembered as a colour command.
    {"\\quad{red}",
     R"x(Cmd "space_quad" 0+5 | { "{" 5+1 | Char "r" 6+1 | Char "e" 7+1 | Char "d" 8+1 | } "}" 9+1 | End "" 10+0)x",
     ""},
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

// Outside the Basic Multilingual Plane and alone, surrogates arrive one code unit per Char token.
TEST(LexerLimits, SurrogatesArriveOneCodeUnitAtATime)
{
    const QString high(QChar(0xD835)), low(QChar(0xDC65));
    EXPECT_EQ(lexDump(QStringLiteral("\\\U0001D465")),
              QStringLiteral(R"x(Char "\\%1" 0+2 | Char "%2" 2+1 | End "" 3+0)x").arg(high, low));
    EXPECT_EQ(
        lexDump(QStringLiteral("\U0001D465") + low + high),
        QStringLiteral(R"x(Char "%1" 0+1 | Char "%2" 1+1 | Char "%2" 2+1 | Char "%1" 3+1 | End "" 4+0)x")
            .arg(high, low));
}

} // namespace
