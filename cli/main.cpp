// formulaconv: the command-line face of the library. The six conversions go
// through the exported entry point exactly as a host application calls them.

#include "cli/cli_batch.h"
#include "cli/cli_docx.h"
#include "cli/cli_inspect.h"
#include "cli/cli_layout.h"
#include "interface/IFormulaConverterHelper.h"

#include <QFile>
#include <QGuiApplication>
#include <QTextStream>
#include <QThread>

#include <cstdio>
#include <optional>
#include <unistd.h>

namespace {

const char kUsage[] =
    "usage: formulaconv OP [OPTIONS] [TEXT]\n"
    "\n"
    "Operations:\n"
    "  latex2omml   LaTeX -> OMML paragraph (m:oMathPara)\n"
    "  omml2latex   OMML -> LaTeX\n"
    "  latex2svg    LaTeX -> SVG document (--size PT, default 12)\n"
    "  omml2svg     OMML -> SVG document (--size PT, default 12)\n"
    "  extract      the first m:oMathPara element of a larger XML text\n"
    "  wrap         a Word 2003 XML clipboard document around an OMML fragment\n"
    "  lint         diagnostics of lexing and parsing LaTeX (--json for JSON Lines)\n"
    "  ast          the LaTeX syntax tree, indented\n"
    "  layout       the typeset tree as JSON (--size PT, --omml, --pretty)\n"
    "  batch OP     runs OP (one of the six above) on each line of standard input, one\n"
    "               JSON object out per line (--jobs N, --size PT); each line is the input\n"
    "               as it stands, or with --jsonl a JSON object {\"input\": ..., \"id\": ...}\n"
    "               or a JSON string\n"
    "  docx2latex FILE.docx          every equation of a Word document as JSON Lines\n"
    "               (--text: the LaTeX only, one per line)\n"
    "  latex2docx IN.docx OUT.docx   LaTeX typed in the text becomes native equations\n"
    "               (--dry-run: list what would change)\n"
    "  docx [IN.txt|-] OUT.docx      a new document from text with $...$ / $$...$$\n"
    "\n"
    "Input is TEXT, or standard input when TEXT is absent or '-'; --file PATH reads a file.\n"
    "'--' ends the options. Exit status: 0 result written, 1 empty result, 2 usage error.\n"
    "  -h, --help     show this help\n"
    "  --version      show the version\n";

const char kVersion[] = "formulaconv 0.1.0\n";

struct Options {
    QString op;
    std::optional<QString> text;
    QString file;
    double size = 12.0;
    bool json = false;
    bool jsonl = false;
    bool omml = false;
    bool pretty = false;
    int jobs = 0;
};

int usageError(const QString& reason)
{
    QTextStream err(stderr);
    err << "formulaconv: " << reason << "\n" << kUsage;
    return 2;
}

bool isConversion(const QString& op)
{
    static const QStringList ops = {QStringLiteral("latex2omml"), QStringLiteral("omml2latex"),
                                    QStringLiteral("latex2svg"),  QStringLiteral("omml2svg"),
                                    QStringLiteral("extract"),    QStringLiteral("wrap")};
    return ops.contains(op);
}

bool isKnownOp(const QString& op)
{
    return isConversion(op) || op == QLatin1String("lint") || op == QLatin1String("ast") ||
           op == QLatin1String("layout") || op == QLatin1String("batch") || isDocxCommand(op);
}

// Parses the arguments after OP. Returns an error text, or an empty string.
QString parseOptions(const QStringList& args, Options& options)
{
    bool optionsEnded = false;
    for (int i = 0; i < args.size(); ++i) {
        const QString& arg = args.at(i);
        const bool isOption = !optionsEnded && arg.startsWith(QLatin1Char('-')) && arg != QLatin1String("-");
        if (!isOption) {
            if (options.text)
                return QStringLiteral("more than one TEXT given");
            options.text = arg;
            continue;
        }
        auto value = [&](QString& out) {
            if (i + 1 >= args.size())
                return false;
            out = args.at(++i);
            return true;
        };
        QString v;
        if (arg == QLatin1String("--")) {
            optionsEnded = true;
        } else if (arg == QLatin1String("--file")) {
            if (!value(options.file))
                return QStringLiteral("--file needs a PATH");
        } else if (arg == QLatin1String("--size")) {
            bool ok = false;
            if (!value(v) || (options.size = v.toDouble(&ok), !ok) || options.size <= 0)
                return QStringLiteral("--size needs a positive number of points");
        } else if (arg == QLatin1String("--jobs")) {
            bool ok = false;
            if (!value(v) || (options.jobs = v.toInt(&ok), !ok) || options.jobs <= 0)
                return QStringLiteral("--jobs needs a positive number");
        } else if (arg == QLatin1String("--json")) {
            options.json = true;
        } else if (arg == QLatin1String("--jsonl")) {
            options.jsonl = true;
        } else if (arg == QLatin1String("--omml")) {
            options.omml = true;
        } else if (arg == QLatin1String("--pretty")) {
            options.pretty = true;
        } else {
            return QStringLiteral("unknown option '%1'").arg(arg);
        }
    }
    return {};
}

std::optional<QString> readInput(const Options& options)
{
    if (!options.file.isEmpty()) {
        QFile file(options.file);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        return QString::fromUtf8(file.readAll());
    }
    if (options.text && *options.text != QLatin1String("-"))
        return *options.text;
    QFile in;
    if (!in.open(stdin, QIODevice::ReadOnly))
        return QString();
    return QString::fromUtf8(in.readAll());
}

QString convert(const Options& options, const QString& input)
{
    IFormulaConverterHelper* helper = GetFormulaConverterHelper();
    const QString& op = options.op;
    if (op == QLatin1String("latex2omml"))
        return helper->latexToOmml(input);
    if (op == QLatin1String("omml2latex"))
        return helper->ommlToLatex(input);
    if (op == QLatin1String("latex2svg"))
        return helper->latexToSvg(input, options.size);
    if (op == QLatin1String("omml2svg"))
        return helper->ommlToSvg(input, options.size);
    if (op == QLatin1String("extract"))
        return helper->extractMathParagraph(input);
    return helper->wrapInWordDocument(input);
}

QString emptyReason(const QString& op, const QString& input)
{
    if (input.isEmpty())
        return QStringLiteral("empty input");
    if (op == QLatin1String("extract"))
        return QStringLiteral("no m:oMathPara element found");
    if (op.startsWith(QLatin1String("omml")))
        return QStringLiteral("the input is not a readable m:oMathPara document");
    return QStringLiteral("the input produced no result");
}

int runBatchCommand(const Options& options)
{
    if (options.text)
        return usageError(QStringLiteral("batch reads its inputs from standard input, not from TEXT"));
    QFile in;
    if (!options.file.isEmpty()) {
        in.setFileName(options.file);
        if (!in.open(QIODevice::ReadOnly))
            return usageError(QStringLiteral("cannot read file '%1'").arg(options.file));
    } else if (!in.open(stdin, QIODevice::ReadOnly)) {
        return usageError(QStringLiteral("cannot read standard input"));
    }
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    QTextStream err(stderr);
    err.setCodec("UTF-8");
    BatchOptions batch;
    batch.jobs = options.jobs > 0 ? options.jobs : std::max(1, QThread::idealThreadCount());
    batch.progress = isatty(fileno(stderr));
    batch.jsonl = options.jsonl;
    return runBatch(in, out, err, batch, [&](const QString& input) { return convert(options, input); });
}

// The library never logs; what reaches here is platform chatter from Qt
// (missing runtime directories and the like) that would pollute the output.
void dropQtMessages(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtFatalMsg || type == QtCriticalMsg)
        QTextStream(stderr) << message << "\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(dropQtMessages);
    QGuiApplication app(argc, argv);

    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromUtf8(argv[i]);

    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        const int end = args.indexOf(QLatin1String("--"));
        const int help = std::max(args.indexOf(QLatin1String("--help")), args.indexOf(QLatin1String("-h")));
        if (end < 0 || help < end) {
            std::fputs(kUsage, stdout);
            return 0;
        }
    }
    if (!args.isEmpty() && args.first() == QLatin1String("--version")) {
        std::fputs(kVersion, stdout);
        return 0;
    }
    if (args.isEmpty())
        return usageError(QStringLiteral("no operation given"));

    Options options;
    options.op = args.takeFirst();
    if (!isKnownOp(options.op))
        return usageError(QStringLiteral("unknown operation '%1'").arg(options.op));
    if (isDocxCommand(options.op))
        return runDocxCommand(options.op, args);
    const bool batch = options.op == QLatin1String("batch");
    if (batch) {
        if (args.isEmpty() || !isConversion(args.first()))
            return usageError(QStringLiteral("batch needs one of the six conversions as its OP"));
        options.op = args.takeFirst();
    }
    const QString error = parseOptions(args, options);
    if (!error.isEmpty())
        return usageError(error);
    if (batch)
        return runBatchCommand(options);
    if (options.jsonl)
        return usageError(QStringLiteral("--jsonl applies to batch only"));
    const std::optional<QString> input = readInput(options);
    if (!input)
        return usageError(QStringLiteral("cannot read file '%1'").arg(options.file));

    QTextStream out(stdout);
    out.setCodec("UTF-8");
    QTextStream err(stderr);
    err.setCodec("UTF-8");
    if (options.op == QLatin1String("ast"))
        return runAst(*input, out, err);
    if (options.op == QLatin1String("lint"))
        return runLint(*input, options.json, out, err);
    if (options.op == QLatin1String("layout"))
        return runLayout(*input, options.omml, options.size, options.pretty, out, err);

    const QString result = convert(options, *input);
    if (result.isEmpty()) {
        err << "formulaconv: " << options.op << ": " << emptyReason(options.op, *input) << "\n";
        return 1;
    }
    out << result << "\n";
    return 0;
}
