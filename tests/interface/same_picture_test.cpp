// A formula drawn from its LaTeX and drawn from the OMML we write for that LaTeX
// should be the same picture: the OMML writer and reader carry everything the
// renderer uses. Measured over the whole corpus; the formulas whose pictures
// differ are written to the build folder for inspection.

#include "interface/converter_helper.h"

#include <QDir>
#include <QFile>
#include <QTextStream>

#include <gtest/gtest.h>

namespace {

TEST(SamePicture, LatexAndItsOwnOmmlRenderAlikeForAlmostTheWholeCorpus)
{
    const QDir dir(QStringLiteral(FC_CORPUS_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*.txt")}, QDir::Files);
    if (files.isEmpty())
        GTEST_SKIP() << "no corpus at " << FC_CORPUS_DIR;

    const KFormulaConverterHelper helper;
    QFile report(QStringLiteral(FC_BINARY_DIR) + QStringLiteral("/same_picture_differences.txt"));
    ASSERT_TRUE(report.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QTextStream out(&report);
    out.setCodec("UTF-8");

    int formulas = 0;
    int same = 0;
    int emptyBoth = 0;
    for (const QString& name : files) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
            if (line.trimmed().isEmpty())
                continue;
            ++formulas;
            const QString fromLatex = helper.latexToSvg(line, 12);
            const QString omml = helper.latexToOmml(line);
            const QString fromOmml = helper.ommlToSvg(omml, 12);
            if (fromLatex == fromOmml) {
                ++same;
                emptyBoth += fromLatex.isEmpty();
            } else {
                out << name << '\t' << line << '\n';
            }
        }
    }
    out.flush();
    ASSERT_GT(formulas, 1000);
    // A formula that draws nothing either way says nothing about the round trip.
    EXPECT_LT(emptyBoth, formulas / 100);
    const double share = double(same) / formulas;
    RecordProperty("same_picture_percent", QString::number(100 * share, 'f', 2).toStdString());
    std::printf("same picture: %d of %d formulas (%.2f%%)\n", same, formulas, 100 * share);
    EXPECT_GE(share, 0.98) << "differing formulas are listed in " << report.fileName().toStdString();
}

} // namespace
