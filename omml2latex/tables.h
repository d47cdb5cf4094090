#pragma once
// The fixed vocabularies that turn OMML characters, names, fonts and colours
// into LaTeX command names. Every table is built once, on first use, and only
// read afterwards.

#include "omml/omml_model.h"

#include <QColor>
#include <QHash>
#include <QString>

// A character-keyed map (the m:chr value compared as a whole string) whose
// lookup falls back to the key itself.
class KCharTable {
public:
    struct Entry {
        const char16_t* key;
        const char16_t* value;
    };
    // Later entries with the same key replace earlier ones.
    KCharTable(const Entry* entries, int count);

    bool contains(const QString& key) const { return m_map.contains(key); }
    QString value(const QString& key) const { return m_map.value(key, key); }
    int size() const { return m_map.size(); }

private:
    QHash<QString, QString> m_map;
};

const KCharTable& accentCommands();
const KCharTable& naryCommands();
const KCharTable& delimiterCommands();
const KCharTable& groupCharCommands();
const KCharTable& arrowCommands();

// The delimiter name of a fence character: "." for no fence, the table's
// command name, or the character itself.
QString delimiterName(const QString& chr);

// The limit command (\lim, \limsup, \max, ...) whose name is the text exactly as it
// writes it ("lim sup" for \limsup), or empty.
QString limitCommand(const QString& text);
// Whether LaTeX (with amsmath) has a command of that name that writes it as an
// operator name without limits (\sin, \log); \sech or \lcm are \operatorname{...}
// instead, and so are \max or \gcd, whose limits go below them (limit elements).
bool isTexOperatorCommand(const QString& name);

// The font command chosen by a lower-cased font name: every key contained in
// the name selects its command, keys tried in ascending order, the last
// match winning. Empty when no key matches.
QString fontFamilyCommand(const QString& lowerFontName);

// "mathrm", "mathbf", "mathit", "boldsymbol".
QString styleCommand(OStyle style);
// "mathcal", "mathfrak", "mathbb", "mathsf", "mathtt"; empty for roman.
QString scriptCommand(OScript script);

// The \textcolor name of a colour: empty for an invalid colour, the colour
// table's name for a listed RGB value (alpha ignored), else "#rrggbb".
QString colourName(const QColor& colour);

// The argument-less command that writes a character of run text, such as "theta"
// for U+03B8 or "le" for U+2264; empty for a character without one.
QString symbolCommand(char32_t codePoint);

// A letter or digit of a mathematical alphabet (bold, script, fraktur,
// double-struck, ...): the plain character it is drawn from and the LaTeX
// alphabet command that draws it ("mathbb" for U+211D, "mathbf" for U+1D431).
// The command is empty for the italic alphabet, which is how math letters are
// drawn anyway. False for other characters and for alphabets without a command
// of their own (bold script, sans-serif bold, ...).
struct KMathAlphanumeric {
    char32_t base = 0;
    QString command;
};
bool mathAlphanumeric(char32_t codePoint, KMathAlphanumeric* result);

// Whether TeX sets the limits of a large operator command above and below it in
// display style (\sum, \bigcup) rather than beside it (\int, \oint).
bool naryLimitsAboveByDefault(const QString& command);
