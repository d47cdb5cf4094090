// Throughput over the formula corpus: formulas per second for each of the six
// operations, run through the same converter object a host uses, on one thread
// or on several at once. Each measurement is repeated; the best and the median
// repetition are printed, with the rate per CPU-second of the busiest run (on a
// shared machine the wall clock also counts other processes), then the peak
// resident memory of the process.
//
//   bench_corpus [CORPUS_DIR] [--only OPERATION] [--threads N] [--repeat K]
//   bench_corpus [CORPUS_DIR] --dump DIR   (writes the inputs of each operation, one per line)

#include "interface/converter_helper.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <sys/resource.h>

#include <ctime>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <functional>
#include <mutex>
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

struct Operation {
    const char* name;
    const QStringList* inputs;
    std::function<QString(const QString&)> run;
};

// CPU time of the calling thread.
double threadCpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec + now.tv_nsec / 1e9;
}

// Runs the operation over every input once, split over `threads` threads;
// returns the seconds taken, counts the non-empty results and adds up the CPU
// time of the threads.
double runOnce(const Operation& operation, int threads, std::atomic<long>& produced, double& cpuSeconds)
{
    std::mutex mutex;
    const QStringList& inputs = *operation.inputs;
    QElapsedTimer timer;
    timer.start();
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&, t] {
            const double cpuStart = threadCpuSeconds();
            long mine = 0;
            for (int i = t; i < inputs.size(); i += threads)
                mine += operation.run(inputs.at(i)).isEmpty() ? 0 : 1;
            produced += mine;
            std::lock_guard<std::mutex> lock(mutex);
            cpuSeconds += threadCpuSeconds() - cpuStart;
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    return timer.nsecsElapsed() / 1e9;
}

void measure(const Operation& operation, int threads, int repeat)
{
    std::vector<double> rates;
    std::atomic<long> produced{0};
    double bestCpuRate = 0;
    for (int r = 0; r < repeat; ++r) {
        double cpuSeconds = 0;
        rates.push_back(operation.inputs->size() / runOnce(operation, threads, produced, cpuSeconds));
        bestCpuRate = std::max(bestCpuRate, operation.inputs->size() / std::max(cpuSeconds, 1e-9));
    }
    std::sort(rates.begin(), rates.end());
    std::printf("%-10s %2d thread(s)  best %9.0f  median %9.0f formulas/s  %9.0f per CPU-second  (%d inputs, "
                "%ld non-empty)\n",
                operation.name, threads, rates.back(), rates[(rates.size() - 1) / 2], bestCpuRate,
                int(operation.inputs->size()), produced.load() / repeat);
    std::fflush(stdout);
}

bool dump(const QString& dir, const char* name, const QStringList& lines)
{
    QFile file(QDir(dir).filePath(QLatin1String(name) + QLatin1String(".txt")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QString& line : lines)
        file.write(line.toUtf8() + '\n');
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    QString dir = QStringLiteral(FC_CORPUS_DIR);
    QString only;
    QString dumpDir;
    int threads = 1;
    int repeat = 3;
    const QStringList args = app.arguments().mid(1);
    for (int i = 0; i < args.size(); ++i) {
        const bool hasValue = i + 1 < args.size();
        if (args[i] == QLatin1String("--only") && hasValue)
            only = args[++i];
        else if (args[i] == QLatin1String("--threads") && hasValue)
            threads = std::max(1, args[++i].toInt());
        else if ((args[i] == QLatin1String("--repeat") || args[i] == QLatin1String("--rounds")) && hasValue)
            repeat = std::max(1, args[++i].toInt());
        else if (args[i] == QLatin1String("--dump") && hasValue)
            dumpDir = args[++i];
        else
            dir = args[i];
    }
    const QStringList latex = readCorpus(dir);
    if (latex.isEmpty()) {
        std::fprintf(stderr, "bench_corpus: no formulas found in %s\n", qPrintable(dir));
        return 1;
    }
    // OMML inputs are the library's own OMML for each formula; the documents
    // that extract searches are those paragraphs wrapped as Word documents.
    const KFormulaConverterHelper helper;
    QStringList omml;
    QStringList documents;
    for (const QString& formula : latex) {
        omml << helper.latexToOmml(formula);
        documents << helper.wrapInWordDocument(omml.last());
    }
    if (!dumpDir.isEmpty()) {
        const bool ok = dump(dumpDir, "latex", latex) && dump(dumpDir, "omml", omml) &&
                        dump(dumpDir, "documents", documents);
        return ok ? 0 : 1;
    }

    const Operation operations[] = {
        {"latex2omml", &latex, [&](const QString& s) { return helper.latexToOmml(s); }},
        {"omml2latex", &omml, [&](const QString& s) { return helper.ommlToLatex(s); }},
        {"extract", &documents, [&](const QString& s) { return helper.extractMathParagraph(s); }},
        {"wrap", &omml, [&](const QString& s) { return helper.wrapInWordDocument(s); }},
        {"latex2svg", &latex, [&](const QString& s) { return helper.latexToSvg(s, 12); }},
        {"omml2svg", &omml, [&](const QString& s) { return helper.ommlToSvg(s, 12); }},
    };
    std::printf("%d formulas from %s\n", int(latex.size()), qPrintable(dir));
    for (const Operation& operation : operations) {
        if (only.isEmpty() || only == QLatin1String(operation.name))
            measure(operation, threads, repeat);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak resident memory %ld MB\n", usage.ru_maxrss / 1024);
    return 0;
}
