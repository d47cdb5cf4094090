#pragma once
// Helpers shared by the front-end tests: readable QString failures, diagnostics as one line, and the
// tree dump folded onto one line so that whole trees fit in a table row.

#include "latex/latex_dump.h"
#include "latex/latex_parser.h"

#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

// Diagnostics as "severity code pos+length message", joined by " | ".
inline QString diagnosticsText(const LatexDiagnostics& diagnostics)
{
    QStringList lines;
    for (const LatexDiagnostic& d : diagnostics)
        lines << QStringLiteral("%1 %2 %3+%4 %5")
                     .arg(d.severity)
                     .arg(d.code)
                     .arg(d.pos)
                     .arg(d.length)
                     .arg(d.message);
    return lines.join(QLatin1String(" | "));
}

// The indented dump with each node's children in braces: "Group\n  Text \"a\"\n" is Group{"a"}.
// Text nodes lose their "Text " prefix; an indentation step other than one level shows as '!'.
inline QString foldedDump(const QString& dump)
{
    QString out;
    int level = -1;
    for (const QString& line : dump.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const int spaces = int(line.size() - line.trimmed().size());
        const int next = spaces / 2;
        if (spaces % 2 || next > level + 1)
            return out + QLatin1Char('!');
        if (next > level && level >= 0)
            out += QLatin1Char('{');
        for (; level > next; --level)
            out += QLatin1Char('}');
        if (next == level)
            out += QLatin1Char(' ');
        level = next;
        const QString text = line.trimmed();
        out += text.startsWith(QLatin1String("Text ")) ? text.mid(5) : text;
    }
    for (; level > 0; --level)
        out += QLatin1Char('}');
    return out;
}

struct ParsedText {
    QString tree; // folded
    QString diagnostics;
};

inline ParsedText parseToText(const QString& source, int itemLimit = KLatexParser::kItemLimit)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics, itemLimit);
    return {foldedDump(dumpLatexTree(root.get())), diagnosticsText(diagnostics)};
}
