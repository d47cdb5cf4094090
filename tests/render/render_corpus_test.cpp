// Every corpus formula renders through both paths to a well-formed SVG document,
// and rendering from many threads at once gives what one thread gives.

#include "interface/converter_helper.h"

#include <QDir>
#include <QFile>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <array>
#include <thread>
#include <vector>

namespace {

const KFormulaConverterHelper kHelper;

QStringList corpus()
{
    QStringList formulas;
    const QDir dir(QStringLiteral(FC_CORPUS_DIR));
    for (const QString& name : dir.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name)) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
            if (!line.trimmed().isEmpty())
                formulas << line;
        }
    }
    return formulas;
}

bool wellFormedSvg(const QString& svg)
{
    QXmlStreamReader xml(svg);
    bool root = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && !root) {
            if (xml.name() != QLatin1String("svg"))
                return false;
            root = true;
        }
    }
    return root && !xml.hasError();
}

TEST(RenderCorpus, EveryFormulaRendersFromItsLatexAndFromItsOmml)
{
    const QStringList formulas = corpus();
    if (formulas.isEmpty())
        GTEST_SKIP() << "no corpus at " << FC_CORPUS_DIR;
    for (const QString& latex : formulas) {
        ASSERT_TRUE(wellFormedSvg(kHelper.latexToSvg(latex, 12))) << latex.toStdString();
        const QString omml = kHelper.latexToOmml(latex);
        ASSERT_TRUE(wellFormedSvg(kHelper.ommlToSvg(omml, 12))) << latex.toStdString();
    }
}

// The six operations over one formula.
std::array<QString, 6> allOperations(const QString& latex)
{
    const QString omml = kHelper.latexToOmml(latex);
    return {omml,
            kHelper.ommlToLatex(omml),
            kHelper.extractMathParagraph(QStringLiteral("<doc>") + omml + QStringLiteral("</doc>")),
            kHelper.wrapInWordDocument(omml),
            kHelper.latexToSvg(latex, 10 + latex.size() % 7),
            kHelper.ommlToSvg(omml, 14)};
}

TEST(RenderThreads, EightThreadsGiveTheSingleThreadedResults)
{
    QStringList formulas = corpus();
    if (formulas.isEmpty())
        GTEST_SKIP() << "no corpus at " << FC_CORPUS_DIR;
    // A spread sample, so that the threads meet many characters and structures.
    QStringList sample;
    for (int i = 0; i < formulas.size() && sample.size() < 240; i += std::max(1, int(formulas.size() / 240)))
        sample << formulas[i];
    sample << QStringLiteral(
        "\\sum_{i=1}^n \\int_0^1 \\sqrt[3]{\\frac{a}{b}} \\partial \\nabla \\otimes \\in \\le");
    std::vector<std::array<QString, 6>> expected;
    for (const QString& latex : sample)
        expected.push_back(allOperations(latex));

    constexpr int kThreads = 8;
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            // Each thread starts at another place, so different formulas run at the same moment.
            for (int k = 0; k < sample.size(); ++k) {
                const int i = (k + t * 31) % sample.size();
                if (allOperations(sample[i]) != expected[i])
                    ++mismatches[t];
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
    for (const auto& results : expected)
        EXPECT_FALSE(results[4].isEmpty());
}

} // namespace
