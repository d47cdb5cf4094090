#include "cli/cli_inspect.h"

#include "interface/latex_lint.h"
#include "latex/latex_dump.h"
#include "latex/latex_parser.h"

#include <algorithm>
#include <vector>

namespace {

QString severityName(int severity)
{
    switch (severity) {
    case 1:
        return QStringLiteral("warning");
    case 2:
        return QStringLiteral("error");
    default:
        return QStringLiteral("fatal");
    }
}

} // namespace

int runAst(const QString& latex, QTextStream& out, QTextStream&)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(latex, diagnostics);
    out << dumpLatexTree(root.get());
    out.flush();
    return 0;
}

int runLint(const QString& latex, bool json, QTextStream& out, QTextStream&)
{
    const LatexDiagnostics diagnostics = lintLatex(latex);
    // Diagnostics are not ordered by offset, so each one looks its line up in a table of line starts.
    std::vector<int> lineStarts{0};
    for (int i = 0; i < latex.size(); ++i) {
        if (latex.at(i) == QLatin1Char('\n'))
            lineStarts.push_back(i + 1);
    }
    for (const LatexDiagnostic& d : diagnostics) {
        if (json) {
            out << "{\"severity\":" << d.severity << ",\"pos\":" << d.pos << ",\"length\":" << d.length
                << ",\"code\":" << jsonQuote(d.code) << ",\"message\":" << jsonQuote(d.message) << "}\n";
            continue;
        }
        const auto after = std::upper_bound(lineStarts.begin(), lineStarts.end(), d.pos);
        const int line = int(after - lineStarts.begin());
        const int column = d.pos - *(after - 1) + 1;
        out << line << ':' << column << ": " << severityName(d.severity) << ": " << d.message << " ["
            << d.code << "]\n";
    }
    out.flush();
    return diagnostics.empty() ? 0 : 1;
}
