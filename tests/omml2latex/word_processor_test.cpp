// OMML as word processors write it (every run with its font, an italic switch on every
// structure's control character, upright runs one character at a time, numbers and
// words split across runs) gives the LaTeX a person would write, and that LaTeX reads
// back to itself. The same samples are compiled by pdflatex in tests/pdflatex.

#include "interface/converter_helper.h"
#include "tests/omml2latex/qstring_printer.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

struct Sample {
    QString name;
    QString omml;
    QString latex;
};

std::vector<Sample> readSamples()
{
    std::vector<Sample> samples;
    QFile file(QStringLiteral(FC_SOURCE_DIR "/tests/data/word-omml.jsonl"));
    if (!file.open(QIODevice::ReadOnly)) {
        ADD_FAILURE() << "missing " << qPrintable(file.fileName());
        return samples;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        samples.push_back({object.value(QStringLiteral("name")).toString(),
                           object.value(QStringLiteral("omml")).toString(),
                           object.value(QStringLiteral("latex")).toString()});
    }
    return samples;
}

TEST(WordProcessorOmml, GivesTheLatexAPersonWrites)
{
    const std::vector<Sample> samples = readSamples();
    EXPECT_GE(samples.size(), 20u);
    KFormulaConverterHelper helper;
    for (const Sample& sample : samples) {
        ASSERT_FALSE(sample.latex.isEmpty()) << qPrintable(sample.name);
        EXPECT_EQ(helper.ommlToLatex(sample.omml), sample.latex) << qPrintable(sample.name);
    }
}

TEST(WordProcessorOmml, LatexReadsBackToItself)
{
    KFormulaConverterHelper helper;
    for (const Sample& sample : readSamples()) {
        const QString latex = helper.ommlToLatex(sample.omml);
        EXPECT_EQ(helper.ommlToLatex(helper.latexToOmml(latex)), latex) << qPrintable(sample.name);
    }
}

} // namespace
