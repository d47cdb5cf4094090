// LaTeX -> OMML -> LaTeX -> OMML -> LaTeX reaches a fixed point after one trip
// for nearly all corpus formulas: the second LaTeX text equals the first. (That
// each gives one paragraph is checked by the corpus host and the batch test.)

#include "interface/converter_helper.h"

#include <QFile>
#include <QTextStream>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

QStringList readCorpus()
{
    QStringList formulas;
    for (const char* name : {"arxiv-formulas.txt", "wikipedia-formulas.txt"}) {
        QFile file(QStringLiteral(FC_CORPUS_DIR "/") + QLatin1String(name));
        if (!file.open(QIODevice::ReadOnly)) {
            ADD_FAILURE() << "corpus file missing: " << qPrintable(file.fileName());
            continue;
        }
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            if (!line.trimmed().isEmpty())
                formulas << line;
        }
    }
    return formulas;
}

// Below this share of the corpus reaching a fixed point something regressed.
// The formulas that do not get there lose information on the way: spacing
// commands next to run spaces, \mathop names that become plain runs, commands
// shown as literal text, colours named differently on the way back.
constexpr double kMinimumFixedShare = 0.99;

TEST(CorpusRoundTrip, ReachesAFixedPoint)
{
    const QStringList formulas = readCorpus();
    ASSERT_FALSE(formulas.isEmpty()) << "the formula corpus is missing from " << FC_CORPUS_DIR;
    QFile report(QStringLiteral(FC_BINARY_DIR "/round_trip_not_fixed.txt"));
    const bool writeReport = report.open(QIODevice::WriteOnly | QIODevice::Truncate);
    QTextStream out(&report);
    out.setCodec("UTF-8");
    int fixed = 0;
    const KFormulaConverterHelper helper;
    for (const QString& formula : formulas) {
        const QString first = helper.ommlToLatex(helper.latexToOmml(formula));
        const QString second = helper.ommlToLatex(helper.latexToOmml(first));
        if (first == second)
            ++fixed;
        else if (writeReport)
            out << "L0: " << formula << "\nL1: " << first << "\nL2: " << second << "\n\n";
    }
    const double share = double(fixed) / formulas.size();
    std::printf("round trip: %d of %d formulas reach a fixed point (%.2f%%)\n", fixed, int(formulas.size()),
                100.0 * share);
    EXPECT_GE(share, kMinimumFixedShare);
    EXPECT_GT(formulas.size(), 16000);
}

} // namespace
