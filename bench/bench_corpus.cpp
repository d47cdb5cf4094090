// Throughput over the formula corpus: formulas per second for each conversion,
// run through the same converter object a host uses.
//
//   build/bench_corpus [CORPUS_DIR] [--rounds N] [--only NAME] [--threads N]
//
// --only runs one measurement (latex2omml, omml2latex, latex2svg, omml2svg, wrap);
// --threads N also runs LaTeX to SVG on N threads at once and reports the total rate.

#include "interface/converter_helper.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <ctime>
#include <functional>
#include <thread>
#include <vector>

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

// CPU time of the calling thread: on a shared machine the wall clock also counts other processes.
double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

void measure(const char* name, const QStringList& inputs, int rounds,
             const std::function<QString(const QString&)>& operation)
{
    qint64 produced = 0;
    QElapsedTimer timer;
    timer.start();
    const double cpuStart = threadCpuSeconds();
    for (int round = 0; round < rounds; ++round) {
        for (const QString& input : inputs)
            produced += operation(input).isEmpty() ? 0 : 1;
    }
    const double cpu = threadCpuSeconds() - cpuStart;
    const double seconds = timer.nsecsElapsed() / 1e9;
    const double count = double(inputs.size()) * rounds;
    std::printf(
        "%-12s %8.0f formulas/s  %7.1f us/formula  %8.0f per CPU-second  (%lld of %.0f non-empty, %.2f s)\n",
        name, count / seconds, seconds * 1e6 / count, count / cpu, static_cast<long long>(produced), count,
        seconds);
}

// The same operation on `threads` threads at once, each over the whole corpus.
void measureThreads(const QStringList& inputs, int rounds, int threads,
                    const std::function<QString(const QString&)>& operation)
{
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                for (const QString& input : inputs)
                    operation(input);
            }
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    const double seconds = timer.nsecsElapsed() / 1e9;
    const double count = double(inputs.size()) * rounds * threads;
    std::printf("latex2svg on %d threads: %8.0f formulas/s in total  (%.2f s)\n", threads, count / seconds,
                seconds);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QString dir = QStringLiteral(FC_CORPUS_DIR);
    int rounds = 1;
    int threads = 0;
    QString only;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        if (args[i] == QLatin1String("--rounds") && i + 1 < args.size())
            rounds = std::max(1, args[++i].toInt());
        else if (args[i] == QLatin1String("--only") && i + 1 < args.size())
            only = args[++i];
        else if (args[i] == QLatin1String("--threads") && i + 1 < args.size())
            threads = std::max(1, args[++i].toInt());
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
    const auto wanted = [&](const char* name) { return only.isEmpty() || only == QLatin1String(name); };
    if (wanted("latex2omml"))
        measure("latex2omml", latex, rounds, [&](const QString& s) { return helper.latexToOmml(s); });
    if (wanted("omml2latex"))
        measure("omml2latex", omml, rounds, [&](const QString& s) { return helper.ommlToLatex(s); });
    if (wanted("latex2svg"))
        measure("latex2svg", latex, rounds, [&](const QString& s) { return helper.latexToSvg(s, 12); });
    if (wanted("omml2svg"))
        measure("omml2svg", omml, rounds, [&](const QString& s) { return helper.ommlToSvg(s, 12); });
    if (wanted("wrap"))
        measure("wrap", omml, rounds, [&](const QString& s) { return helper.wrapInWordDocument(s); });
    if (threads > 0)
        measureThreads(latex, rounds, threads, [&](const QString& s) { return helper.latexToSvg(s, 12); });
    return 0;
}
