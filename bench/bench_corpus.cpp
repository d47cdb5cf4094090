// Throughput over the formula corpus: formulas per second for each conversion,
// run through the same converter object a host uses.
//
//   build/bench_corpus [CORPUS_DIR] [--rounds N]

#include "interface/converter_helper.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <functional>

namespace {

QStringList readCorpus(const QString& dir)
{
    QStringList formulas;
    for (const QString& name : QDir(dir).entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name)) {
        QFile file(QDir(dir).filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
            if (!line.trimmed().isEmpty())
                formulas << line;
        }
    }
    return formulas;
}

QString g_only;

void measure(const char* name, const QStringList& inputs, int rounds,
             const std::function<QString(const QString&)>& operation)
{
    if (!g_only.isEmpty() && g_only != QLatin1String(name))
        return;
    qint64 produced = 0;
    QElapsedTimer timer;
    timer.start();
    for (int round = 0; round < rounds; ++round) {
        for (const QString& input : inputs)
            produced += operation(input).isEmpty() ? 0 : 1;
    }
    const double seconds = timer.nsecsElapsed() / 1e9;
    const double count = double(inputs.size()) * rounds;
    std::printf("%-12s %8.0f formulas/s  %7.1f us/formula  (%lld of %.0f non-empty, %.2f s)\n", name,
                count / seconds, seconds * 1e6 / count, static_cast<long long>(produced), count, seconds);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QString dir = QStringLiteral(FC_CORPUS_DIR);
    int rounds = 1;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--only") && i + 1 < args.size())
            g_only = args[++i];
        else if (args[i] == QLatin1String("--rounds") && i + 1 < args.size())
            rounds = std::max(1, args[++i].toInt());
        else
            dir = args[i];
    }
    const QStringList latex = readCorpus(dir);
    if (latex.isEmpty()) {
        std::fprintf(stderr, "bench_corpus: no formulas found in %s\n", qPrintable(dir));
        return 1;
    }
    const KFormulaConverterHelper helper;
    QStringList omml;
    for (const QString& formula : latex)
        omml << helper.latexToOmml(formula);

    std::printf("%d formulas from %s, %d round(s)\n", int(latex.size()), qPrintable(dir), rounds);
    measure("latex2omml", latex, rounds, [&](const QString& s) { return helper.latexToOmml(s); });
    measure("omml2latex", omml, rounds, [&](const QString& s) { return helper.ommlToLatex(s); });
    measure("latex2svg", latex, rounds, [&](const QString& s) { return helper.latexToSvg(s, 12); });
    measure("wrap", omml, rounds, [&](const QString& s) { return helper.wrapInWordDocument(s); });
    return 0;
}
