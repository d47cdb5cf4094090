// Hosts call the converter from many threads at once. Eight threads run every
// operation over real formulas, starting cold (no lookup table built yet when this
// test runs alone, as scripts/test --tsan runs it), and must get exactly what one
// thread gets.

#include "interface/converter_helper.h"

#include <QFile>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <vector>

namespace {

constexpr int kThreads = 8;
constexpr int kEvery = 60; // one corpus formula in kEvery keeps the test quick under sanitizers
constexpr double kFontSize = 12.0;

using Results = std::array<QString, 6>;

QStringList corpusSample()
{
    QStringList formulas;
    for (const char* name : {"arxiv-formulas.txt", "wikipedia-formulas.txt"}) {
        QFile file(QStringLiteral(FC_CORPUS_DIR "/") + QLatin1String(name));
        if (!file.open(QIODevice::ReadOnly)) {
            ADD_FAILURE() << "corpus file missing: " << qPrintable(file.fileName());
            continue;
        }
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (int i = 0; i < lines.size(); i += kEvery) {
            if (!lines.at(i).isEmpty())
                formulas << QString::fromUtf8(lines.at(i));
        }
    }
    return formulas;
}

Results runAll(const KFormulaConverterHelper& helper, const QString& latex)
{
    Results r;
    r[0] = helper.latexToOmml(latex);
    r[1] = helper.ommlToLatex(r[0]);
    r[2] = helper.extractMathParagraph(r[0]);
    r[3] = helper.wrapInWordDocument(r[0]);
    r[4] = helper.latexToSvg(latex, kFontSize);
    r[5] = helper.ommlToSvg(r[0], kFontSize);
    return r;
}

TEST(ConcurrentOperations, EightThreadsAgreeWithOneThread)
{
    const QStringList formulas = corpusSample();
    ASSERT_GT(formulas.size(), 200);
    const KFormulaConverterHelper helper;
    const int n = formulas.size();

    // Every thread converts every formula, each starting at a different place, so
    // that the same formula and the same tables are in use on several threads at once.
    std::vector<std::vector<Results>> parallel(kThreads, std::vector<Results>(n));
    std::atomic<int> ready{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            ++ready;
            while (ready < kThreads) // start together, so first uses collide
                std::this_thread::yield();
            for (int k = 0; k < n; ++k) {
                const int i = (k + t * n / kThreads) % n;
                parallel[t][i] = runAll(helper, formulas.at(i));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    static const char* const kOperations[] = {"latexToOmml",        "ommlToLatex", "extractMathParagraph",
                                              "wrapInWordDocument", "latexToSvg",  "ommlToSvg"};
    int mismatches = 0;
    for (int i = 0; i < n; ++i) {
        const Results single = runAll(helper, formulas.at(i));
        EXPECT_FALSE(single[0].isEmpty()) << formulas.at(i).toStdString();
        for (int t = 0; t < kThreads && mismatches < 10; ++t) {
            for (int op = 0; op < 6; ++op) {
                if (parallel[t][i][op] != single[op]) {
                    ++mismatches;
                    ADD_FAILURE() << kOperations[op] << " on thread " << t << " differs for "
                                  << formulas.at(i).toStdString();
                }
            }
        }
    }
}

} // namespace
