#pragma once
// Helpers shared by the front-end tests: readable QString failures, and the
// parse of a source as one comparable text (tree dump plus diagnostics).

#include "latex/latex_dump.h"
#include "latex/latex_parser.h"

#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

// Diagnostics as "severity code pos+length message", joined by newlines.
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
    return lines.join(QLatin1Char('\n'));
}

struct ParsedText {
    QString tree;
    QString diagnostics;
};

inline ParsedText parseToText(const QString& source)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    return {dumpLatexTree(root.get()), diagnosticsText(diagnostics)};
}
