#pragma once
// KLatexLexer: LaTeX math source (UTF-16) to a flat token list. It never fails;
// the list always ends with one EndOfInput token, and its only diagnostics are
// two warnings ("W_backslash_eof", "W_unclosed_paren").

#include "latex/latex_ast.h"

#include <QString>
#include <QStringView>

#include <vector>

struct KLatexLexResult {
    std::vector<Token> tokens;
    LatexDiagnostics diagnostics;
};

class KLatexLexer {
public:
    // The source is not copied: it must outlive tokenize().
    explicit KLatexLexer(QStringView source) : m_source(source) {}

    KLatexLexResult tokenize();

private:
    void skipBlanksAndComments();
    bool inText() const;
    bool readTextSpace();
    void readControlSequence();
    bool readColourValue();
    bool readBracketedColour();
    void readSingleCodeUnit();
    void readVerbatim(int start, bool starred);
    bool readCharacterCode(int start);
    bool startsSurrogatePair(int at) const;
    void skipColourSpace();
    void append(TokenKind kind, QString text, int pos, int len, bool starred = false);
    void warn(const QString& code, const QString& message, int pos, int len);

    QStringView m_source;
    int m_position = 0;
    int m_end = 0;
    std::vector<Token> m_tokens;
    LatexDiagnostics m_diagnostics;
    int m_colourMode = 0;
    int m_colourDepth = 0;
    QString m_lastColourCommand;
    int m_colourGroupsLeft = 0; // colour groups the last colour command still reads
    int m_closeBracketAt = -1;
    int m_textDepth = 0;               // brace depth inside the argument of a text command, 0 outside
    bool m_textMath = false;           // between $ signs inside such an argument
    bool m_textCommandPending = false; // the last token was a text command, so its '{' starts text
    bool m_afterControlWord = false;   // the last token was a control word  // first ']' after the latest
                                       // bracketed colour attempt, or the end
};
