#include "latex/latex_lexer.h"

#include <QChar>
#include <QSet>

namespace {

// The commands whose braced argument is a colour name or value, read as one token.
const QSet<QString>& colourCommands()
{
    static const QSet<QString> names = {QStringLiteral("color"), QStringLiteral("textcolor"),
                                        QStringLiteral("colorbox"), QStringLiteral("fcolorbox")};
    return names;
}

// The commands whose braced argument is text, where spaces are part of the content.
const QSet<QString>& textCommands()
{
    static const QSet<QString> names = {
        QStringLiteral("text"),       QStringLiteral("textrm"),        QStringLiteral("textbf"),
        QStringLiteral("textit"),     QStringLiteral("textsf"),        QStringLiteral("texttt"),
        QStringLiteral("textnormal"), QStringLiteral("textup"),        QStringLiteral("textmd"),
        QStringLiteral("textsl"),     QStringLiteral("textsc"),        QStringLiteral("emph"),
        QStringLiteral("mbox"),       QStringLiteral("hbox"),          QStringLiteral("fbox"),
        QStringLiteral("intertext"),  QStringLiteral("shortintertext")};
    return names;
}

bool isBlank(QChar c)
{
    const char16_t u = c.unicode();
    return u == 0x09 || u == 0x0A || u == 0x0D || u == 0x20;
}

// Inside a colour argument any Unicode white space separates, not just the four ASCII blanks.
bool isColourSpace(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 0x09 && u <= 0x0D) || u == 0x20 || u == 0x85 || u == 0xA0 || c.isSpace();
}

bool isAsciiLetter(char16_t u)
{
    return (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z');
}

bool isLetter(QChar c)
{
    const char16_t u = c.unicode();
    return isAsciiLetter(u) || (u >= 0x80 && c.isLetter());
}

bool isDigit(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= 0x80 && c.category() == QChar::Number_DecimalDigit);
}

bool isHexDigit(QChar c)
{
    const char16_t u = c.unicode();
    return isDigit(c) || (u >= u'A' && u <= u'F') || (u >= u'a' && u <= u'f');
}

bool isColourNameChar(QChar c)
{
    const char16_t u = c.unicode();
    return isAsciiLetter(u) || (u >= u'0' && u <= u'9') || u == u'_' || u == u'-' ||
           (u >= 0x80 && c.isLetterOrNumber());
}

// Control words that stand for fixed amounts of space get internal names that
// do not collide with any control word a user can type.
QString normalisedSpacingName(const QString& name)
{
    if (name == QLatin1String("thinspace"))
        return QStringLiteral("space_thin");
    if (name == QLatin1String("medspace"))
        return QStringLiteral("space_med");
    if (name == QLatin1String("thickspace"))
        return QStringLiteral("space_thick");
    if (name == QLatin1String("quad"))
        return QStringLiteral("space_quad");
    if (name == QLatin1String("qquad"))
        return QStringLiteral("space_qquad");
    return QString();
}

// The name of the command a control symbol (backslash plus one non-letter) stands for, or empty.
QString controlSymbolName(char16_t u)
{
    switch (u) {
    case u' ':
        return QStringLiteral("space_normal");
    case u'!':
        return QStringLiteral("space_negthin");
    case u',':
        return QStringLiteral("space_thin");
    case u':':
    case u'>':
        return QStringLiteral("space_med");
    case u';':
        return QStringLiteral("space_thick");
    case u'#':
    case u'$':
    case u'%':
    case u'&':
    case u'(':
    case u')':
    case u'[':
    case u']':
    case u'_':
    case u'{':
    case u'|':
    case u'}':
    // The accents of running text: \'e, \`e, \^e, \"o, \~n, \=a, \.z.
    case u'\'':
    case u'`':
    case u'^':
    case u'"':
    case u'~':
    case u'=':
    case u'.':
        return QString(QChar(u));
    default:
        return QString();
    }
}

} // namespace

KLatexLexResult KLatexLexer::tokenize()
{
    m_end = int(m_source.size());
    m_position = 0;
    m_diagnostics.clear();
    m_tokens.clear();
    m_tokens.reserve(std::size_t(m_end) + 1);
    m_colourMode = 0;
    m_colourDepth = 0;
    m_lastColourCommand.clear();
    m_colourGroupsLeft = 0;
    m_closeBracketAt = -1;

    m_textDepth = 0;
    m_textMath = false;
    m_textCommandPending = false;
    m_afterControlWord = false;

    for (;;) {
        if (inText() && readTextSpace())
            continue;
        const bool textCommandPending = m_textCommandPending;
        m_textCommandPending = false;
        m_afterControlWord = false;
        skipBlanksAndComments();
        if (m_position >= m_end) {
            append(TokenKind::EndOfInput, QString(), m_end, 0);
            break;
        }
        const int start = m_position;
        const char16_t c = m_source[m_position].unicode();
        switch (c) {
        case u'\\':
            readControlSequence();
            break;
        case u'~':
            ++m_position;
            append(TokenKind::Command, QStringLiteral("nbsp"), start, 1);
            break;
        case u'[':
            if ((!m_lastColourCommand.isEmpty() || m_colourMode) && readBracketedColour())
                break;
            ++m_position;
            append(TokenKind::LBracket, QStringLiteral("["), start, 1);
            break;
        case u']':
            ++m_position;
            append(TokenKind::RBracket, QStringLiteral("]"), start, 1);
            break;
        case u'^':
            ++m_position;
            append(TokenKind::Superscript, QStringLiteral("^"), start, 1);
            break;
        case u'_':
            ++m_position;
            append(TokenKind::Subscript, QStringLiteral("_"), start, 1);
            break;
        case u'&':
            ++m_position;
            append(TokenKind::Ampersand, QStringLiteral("&"), start, 1);
            break;
        case u'{':
            ++m_position;
            append(TokenKind::LBrace, QStringLiteral("{"), start, 1);
            if (m_textDepth > 0)
                ++m_textDepth;
            else if (textCommandPending)
                m_textDepth = 1;
            if (!m_lastColourCommand.isEmpty()) {
                m_colourMode = 1;
                m_colourDepth = 1;
            }
            break;
        case u'}':
            ++m_position;
            append(TokenKind::RBrace, QStringLiteral("}"), start, 1);
            if (m_textDepth > 0 && --m_textDepth == 0)
                m_textMath = false;
            if (m_colourMode && --m_colourDepth == 0) {
                m_colourMode = 0;
                // \fcolorbox{frame}{background}{x} names two colours, each read as one token.
                if (--m_colourGroupsLeft <= 0)
                    m_lastColourCommand.clear();
            }
            break;
        default:
            if (c == u'$' && m_textDepth > 0)
                m_textMath = !m_textMath; // math inside text drops its spaces again
            if (m_colourMode && readColourValue())
                break;
            readSingleCodeUnit();
            break;
        }
    }

    KLatexLexResult result;
    result.tokens = std::move(m_tokens);
    result.diagnostics = std::move(m_diagnostics);
    m_tokens.clear();
    m_diagnostics.clear();
    return result;
}

bool KLatexLexer::inText() const
{
    return m_textDepth > 0 && !m_textMath;
}

bool KLatexLexer::readTextSpace()
{
    // Inside the argument of a text command a run of white space is one space of the text, as in
    // TeX; comments inside the run are skipped with it.
    const int start = m_position;
    bool blank = false;
    while (m_position < m_end) {
        const QChar c = m_source[m_position];
        if (isBlank(c)) {
            blank = true;
            ++m_position;
        } else if (c == QLatin1Char('%')) {
            while (m_position < m_end && m_source[m_position] != QLatin1Char('\n'))
                ++m_position;
        } else {
            break;
        }
    }
    if (m_position == start)
        return false;
    if (blank && !m_afterControlWord && m_position < m_end)
        append(TokenKind::Char, QStringLiteral(" "), start, m_position - start);
    m_afterControlWord = false;
    return true;
}

void KLatexLexer::skipBlanksAndComments()
{
    while (m_position < m_end) {
        const QChar c = m_source[m_position];
        if (isBlank(c)) {
            ++m_position;
        } else if (c == QLatin1Char('%')) {
            while (m_position < m_end && m_source[m_position] != QLatin1Char('\n'))
                ++m_position;
        } else {
            break;
        }
    }
}

void KLatexLexer::readControlSequence()
{
    const int start = m_position;
    ++m_position;
    if (m_position >= m_end) {
        warn(QStringLiteral("W_backslash_eof"), QStringLiteral("Trailing backslash at end of input"), start,
             1);
        append(TokenKind::Command, QStringLiteral("\\"), start, 1);
        return;
    }
    const QChar next = m_source[m_position];
    if (isLetter(next)) {
        const int nameStart = m_position;
        while (m_position < m_end && isLetter(m_source[m_position]))
            ++m_position;
        QString name = m_source.mid(nameStart, m_position - nameStart).toString();
        bool starred = false;
        if (m_position < m_end && m_source[m_position] == QLatin1Char('*')) {
            starred = true;
            ++m_position;
        }
        // TeX skips the spaces after a control word, also in text.
        m_afterControlWord = true;
        m_textCommandPending = textCommands().contains(name);
        const QString spacing = normalisedSpacingName(name);
        if (!spacing.isEmpty())
            name = spacing;
        else if (colourCommands().contains(name)) {
            m_lastColourCommand = name;
            m_colourGroupsLeft = name == QLatin1String("fcolorbox") ? 2 : 1;
        }
        if (name == QLatin1String("verb")) {
            readVerbatim(start, starred);
            return;
        }
        if (name == QLatin1String("char") && readCharacterCode(start))
            return;
        append(TokenKind::Command, std::move(name), start, m_position - start, starred);
        return;
    }
    ++m_position;
    if (next == QLatin1Char('\\')) {
        append(TokenKind::Command, QStringLiteral("\\\\"), start, 2);
        return;
    }
    QString symbol = controlSymbolName(next.unicode());
    if (!symbol.isEmpty()) {
        append(TokenKind::Command, std::move(symbol), start, 2);
        return;
    }
    // A backslash before a character outside the Basic Multilingual Plane escapes the whole character.
    if (startsSurrogatePair(m_position - 1))
        ++m_position;
    append(TokenKind::Char, m_source.mid(start, m_position - start).toString(), start, m_position - start);
}

void KLatexLexer::readVerbatim(int start, bool starred)
{
    // \verb|text|: the character after \verb (or \verb*) delimits text taken as it stands. It is
    // delivered as the command with one braced argument holding the text as one token.
    const int commandEnd = m_position;
    append(TokenKind::Command, QStringLiteral("verb"), start, commandEnd - start, starred);
    m_afterControlWord = false;
    if (m_position >= m_end)
        return;
    const QChar delimiter = m_source[m_position];
    const int open = m_position++;
    const int textStart = m_position;
    while (m_position < m_end && m_source[m_position] != delimiter &&
           m_source[m_position] != QLatin1Char('\n'))
        ++m_position;
    const int textEnd = m_position;
    const bool closed = m_position < m_end && m_source[m_position] == delimiter;
    append(TokenKind::LBrace, QStringLiteral("{"), open, 1);
    if (textEnd > textStart)
        append(TokenKind::Char, m_source.mid(textStart, textEnd - textStart).toString(), textStart,
               textEnd - textStart);
    if (closed)
        ++m_position;
    append(TokenKind::RBrace, QStringLiteral("}"), textEnd, closed ? 1 : 0);
}

bool KLatexLexer::readCharacterCode(int start)
{
    // \char65, \char"41, \char'101 and \char`A stand for the character with that code.
    int at = m_position;
    while (at < m_end && isBlank(m_source[at]))
        ++at;
    if (at >= m_end)
        return false;
    int base = 10;
    const QChar prefix = m_source[at];
    if (prefix == QLatin1Char('`') && at + 1 < m_end) {
        const int length = startsSurrogatePair(at + 1) ? 2 : 1;
        const int skip = m_source[at + 1] == QLatin1Char('\\') && at + 2 < m_end ? 1 : 0;
        m_position = at + 1 + skip + length;
        append(TokenKind::Char, m_source.mid(at + 1 + skip, length).toString(), start, m_position - start);
        return true;
    }
    if (prefix == QLatin1Char('"'))
        base = 16;
    else if (prefix == QLatin1Char('\''))
        base = 8;
    const int digitsStart = base == 10 ? at : at + 1;
    int end = digitsStart;
    while (end < m_end && end - digitsStart < 8) {
        const char16_t u = m_source[end].unicode();
        const bool digit =
            base == 16 ? isHexDigit(m_source[end]) && u < 0x80 : (u >= u'0' && u < char16_t(u'0' + base));
        if (!digit)
            break;
        ++end;
    }
    bool ok = false;
    const uint code = m_source.mid(digitsStart, end - digitsStart).toString().toUInt(&ok, base);
    constexpr uint kLastCodePoint = 0x10FFFF;
    if (!ok || code == 0 || code > kLastCodePoint || (code >= 0xD800 && code <= 0xDFFF))
        return false;
    m_position = end;
    const char32_t character = code;
    append(TokenKind::Char, QString::fromUcs4(&character, 1), start, end - start);
    return true;
}

void KLatexLexer::readSingleCodeUnit()
{
    const int start = m_position;
    // In math a quote is a prime, as TeX sets f' as f with a prime; in text it stays a quote.
    if (m_source[m_position] == QLatin1Char('\'') && !inText()) {
        ++m_position;
        append(TokenKind::Char, QStringLiteral("\u2032"), start, 1);
        return;
    }
    if (startsSurrogatePair(m_position)) {
        // One character outside the Basic Multilingual Plane is one token, so that a script or an
        // unbraced argument takes the whole character and not half of it.
        m_position += 2;
        append(TokenKind::Char, m_source.mid(start, 2).toString(), start, 2);
        return;
    }
    const QChar c = m_source[m_position++];
    append(isDigit(c) ? TokenKind::Digit : TokenKind::Char, QString(c), start, 1);
}

bool KLatexLexer::startsSurrogatePair(int at) const
{
    return at + 1 < m_end && m_source[at].isHighSurrogate() && m_source[at + 1].isLowSurrogate();
}

void KLatexLexer::skipColourSpace()
{
    while (m_position < m_end && isColourSpace(m_source[m_position]))
        ++m_position;
}

bool KLatexLexer::readColourValue()
{
    const int attempt = m_position;
    skipColourSpace();
    const int textStart = m_position;
    if (m_position < m_end && m_source[m_position] == QLatin1Char('#')) {
        ++m_position;
        while (m_position < m_end && isHexDigit(m_source[m_position]))
            ++m_position;
    } else if (m_end - m_position > 3 && m_source.mid(m_position, 3) == QLatin1String("rgb")) {
        while (m_position < m_end && isLetter(m_source[m_position]))
            ++m_position;
        const int afterLetters = m_position;
        skipColourSpace();
        if (m_position < m_end && m_source[m_position] == QLatin1Char('(')) {
            int open = 0;
            for (; m_position < m_end; ++m_position) {
                const QChar c = m_source[m_position];
                if (c == QLatin1Char('('))
                    ++open;
                else if (c == QLatin1Char(')') && --open == 0)
                    break;
            }
            if (m_position < m_end) {
                ++m_position;
            } else {
                warn(QStringLiteral("W_unclosed_paren"),
                     QStringLiteral("Unclosed parentheses in RGB color value"), textStart,
                     m_position - textStart);
            }
        } else {
            m_position = afterLetters;
        }
    } else {
        while (m_position < m_end && isColourNameChar(m_source[m_position]))
            ++m_position;
    }
    const int taken = m_position - textStart;
    if (taken == 0) {
        m_position = attempt;
        return false;
    }
    append(TokenKind::Char, m_source.mid(textStart, taken).toString(), attempt, taken);
    return true;
}

bool KLatexLexer::readBracketedColour()
{
    const int start = m_position;
    // The answer of the last search stays valid while it lies ahead, so a long run
    // of '[' without ']' is scanned once, not once per bracket.
    if (m_closeBracketAt <= start) {
        m_closeBracketAt = start + 1;
        while (m_closeBracketAt < m_end && m_source[m_closeBracketAt] != QLatin1Char(']'))
            ++m_closeBracketAt;
    }
    const int close = m_closeBracketAt;
    if (close >= m_end)
        return false;
    m_position = close + 1;
    skipColourSpace();
    if (m_position < m_end && m_source[m_position] == QLatin1Char('{')) {
        int open = 0;
        for (; m_position < m_end; ++m_position) {
            const QChar c = m_source[m_position];
            if (c == QLatin1Char('{'))
                ++open;
            else if (c == QLatin1Char('}') && --open == 0)
                break;
        }
        if (m_position < m_end)
            ++m_position;
        --m_colourGroupsLeft; // the first colour of the command is taken
    } else {
        // Only the bracket is part of the form; blanks before anything else stay for the next token.
        m_position = close + 1;
    }
    append(TokenKind::Char, m_source.mid(start, m_position - start).toString(), start, m_position - start);
    return true;
}

void KLatexLexer::append(TokenKind kind, QString text, int pos, int len, bool starred)
{
    m_tokens.push_back(Token{kind, std::move(text), starred, pos, len});
}

void KLatexLexer::warn(const QString& code, const QString& message, int pos, int len)
{
    m_diagnostics.push_back(LatexDiagnostic{1, pos, len, code, message});
}
