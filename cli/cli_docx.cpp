#include "cli/cli_docx.h"

#include "docx/docx_math.h"
#include "interface/IFormulaConverterHelper.h"
#include "latex/latex_dump.h"
#include "latex/latex_parser.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace {

const char kDocxUsage[] = "usage: formulaconv docx2latex FILE.docx [--text]\n"
                          "       formulaconv latex2docx IN.docx OUT.docx [--dry-run]\n"
                          "       formulaconv docx [IN.txt|-] OUT.docx\n";

KDocxConverters converters()
{
    IFormulaConverterHelper* helper = GetFormulaConverterHelper();
    KDocxConverters conv;
    conv.latexToOmml = [helper](const QString& latex) { return helper->latexToOmml(latex); };
    conv.ommlToLatex = [helper](const QString& omml) { return helper->ommlToLatex(omml); };
    conv.errors = [](const QString& latex) {
        LatexDiagnostics diagnostics;
        parseLatex(latex, diagnostics);
        QStringList lines;
        for (const LatexDiagnostic& d : diagnostics) {
            if (d.severity >= 2)
                lines << QStringLiteral("%1: %2 [%3]").arg(d.pos + 1).arg(d.message, d.code);
        }
        return lines;
    };
    return conv;
}

int usage(const QString& reason)
{
    QTextStream(stderr) << "formulaconv: " << reason << "\n" << kDocxUsage;
    return 2;
}

int failure(const QString& op, const QString& reason)
{
    QTextStream(stderr) << "formulaconv: " << op << ": " << reason << "\n";
    return 1;
}

QString where(const KDocxChange& c)
{
    return QStringLiteral("%1 paragraph %2").arg(c.part).arg(c.paragraph);
}

// Formulas left as text go to standard error with their diagnostics; the others are listed
// on standard output when only listing.
void reportChanges(const std::vector<KDocxChange>& changes, bool list, QTextStream& out, QTextStream& err)
{
    for (const KDocxChange& c : changes) {
        if (!c.errors.isEmpty()) {
            err << where(c) << ": left as text: " << c.latex << "\n";
            for (const QString& e : c.errors)
                err << "  " << e << "\n";
        } else if (list) {
            out << where(c) << ": " << (c.display ? "display" : "inline") << ": " << c.latex << "\n";
        }
    }
}

} // namespace

bool isDocxCommand(const QString& op)
{
    return op == QLatin1String("docx2latex") || op == QLatin1String("latex2docx") ||
           op == QLatin1String("docx");
}

int runDocxCommand(const QString& op, const QStringList& args)
{
    QStringList files;
    bool text = false;
    bool dryRun = false;
    bool optionsEnded = false;
    for (const QString& arg : args) {
        if (!optionsEnded && arg == QLatin1String("--"))
            optionsEnded = true;
        else if (!optionsEnded && arg == QLatin1String("--text") && op == QLatin1String("docx2latex"))
            text = true;
        else if (!optionsEnded && arg == QLatin1String("--dry-run") && op == QLatin1String("latex2docx"))
            dryRun = true;
        else if (!optionsEnded && arg.startsWith(QLatin1Char('-')) && arg != QLatin1String("-"))
            return usage(QStringLiteral("unknown option '%1'").arg(arg));
        else
            files << arg;
    }
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    QTextStream err(stderr);
    err.setCodec("UTF-8");
    const KDocxConverters conv = converters();
    QString error;
    if (op == QLatin1String("docx2latex")) {
        if (files.size() != 1)
            return usage(QStringLiteral("docx2latex needs one FILE.docx"));
        if (!QFile::exists(files[0]))
            return usage(QStringLiteral("cannot read file '%1'").arg(files[0]));
        std::vector<KDocxEquation> equations;
        if (!listEquations(files[0], conv, equations, error))
            return failure(op, error);
        for (const KDocxEquation& e : equations) {
            if (text)
                out << QString(e.latex).replace(QLatin1Char('\n'), QLatin1Char(' ')) << "\n";
            else
                out << "{\"part\": " << jsonQuote(e.part) << ", \"paragraph\": " << e.paragraph
                    << ", \"display\": " << (e.display ? "true" : "false")
                    << ", \"latex\": " << jsonQuote(e.latex) << ", \"omml\": " << jsonQuote(e.omml) << "}\n";
        }
        return equations.empty() ? failure(op, QStringLiteral("the document has no equations")) : 0;
    }
    std::vector<KDocxChange> changes;
    if (op == QLatin1String("latex2docx")) {
        if (files.size() != (dryRun ? 1 : 2) && files.size() != 2)
            return usage(QStringLiteral("latex2docx needs IN.docx and OUT.docx"));
        if (!QFile::exists(files[0]))
            return usage(QStringLiteral("cannot read file '%1'").arg(files[0]));
        const QString target = files.value(1);
        if (!dryRun && QFileInfo(target).absoluteFilePath() == QFileInfo(files[0]).absoluteFilePath())
            return usage(QStringLiteral("OUT.docx must differ from IN.docx"));
        if (!convertLatexInDocument(files[0], target, dryRun, conv, changes, error))
            return failure(op, error);
        reportChanges(changes, dryRun, out, err);
        return 0;
    }
    if (files.size() < 1 || files.size() > 2)
        return usage(QStringLiteral("docx needs OUT.docx, after IN.txt or '-'"));
    QFile in;
    if (files.size() == 2 && files[0] != QLatin1String("-")) {
        in.setFileName(files[0]);
        if (!in.open(QIODevice::ReadOnly))
            return usage(QStringLiteral("cannot read file '%1'").arg(files[0]));
    } else if (!in.open(stdin, QIODevice::ReadOnly)) {
        return usage(QStringLiteral("cannot read standard input"));
    }
    if (!writeDocumentFromText(QString::fromUtf8(in.readAll()), files.last(), conv, changes, error))
        return failure(op, error);
    reportChanges(changes, false, out, err);
    return 0;
}
