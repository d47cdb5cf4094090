// The fast XML stages against the Qt classes they replace, over real input:
// every corpus formula and every fuzz seed. The OMML written straight to a
// string must equal what a QXmlStreamWriter writes for the same model, and the
// streaming reader must build the same model as the DOM reader.
#include "latex/latex_parser.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_reader.h"
#include "omml/omml_writer.h"
#include "omml/xml_element_tree.h"

#include <QDir>
#include <QFile>
#include <QXmlStreamWriter>

#include <gtest/gtest.h>

namespace {

QStringList linesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeAll(QString());
    return lines;
}

QStringList filesIn(const QString& dir, const QString& pattern)
{
    QStringList paths;
    for (const QString& name : QDir(dir).entryList({pattern}, QDir::Files, QDir::Name))
        paths << QDir(dir).filePath(name);
    return paths;
}

// Every corpus formula, and every line of the LaTeX fuzz seeds.
QStringList latexInputs()
{
    QStringList inputs;
    const QStringList corpusFiles = filesIn(QStringLiteral(FC_CORPUS_DIR), QStringLiteral("*.txt"));
    EXPECT_FALSE(corpusFiles.isEmpty()) << "the formula corpus is missing from " << FC_CORPUS_DIR;
    for (const QString& path : corpusFiles)
        inputs << linesOf(path);
    for (const QString& path :
         filesIn(QStringLiteral(FC_SOURCE_DIR "/fuzz/seeds"), QStringLiteral("latex_*")))
        inputs << linesOf(path);
    return inputs;
}

// The paragraph the LaTeX to OMML operation writes for `latex`.
OMathParagraph paragraphOf(const QString& latex)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    OMathParagraph paragraph;
    if (!tree)
        return paragraph;
    KLatexAst2Omml converter;
    converter.prepare(false);
    paragraph.equation = makeOmmlNode(OMathEquation{converter.convert(*tree)});
    return paragraph;
}

TEST(XmlStagesOverCorpus, StringWriterEqualsStreamWriter)
{
    const QStringList inputs = latexInputs();
    ASSERT_GT(inputs.size(), 10000);
    int differences = 0;
    for (const QString& latex : inputs) {
        const OMathParagraph paragraph = paragraphOf(latex);
        QString expected;
        QXmlStreamWriter xml(&expected);
        xml.setAutoFormatting(false);
        writeOmmlParagraph(paragraph, xml);
        const QString actual = ommlParagraphToXml(paragraph);
        if (actual != expected && ++differences <= 5)
            ADD_FAILURE() << latex.toStdString() << "\n"
                          << actual.toStdString() << "\n"
                          << expected.toStdString();
    }
    EXPECT_EQ(differences, 0);
}

QString modelText(const KOmmlNodePtr& node)
{
    return node ? ommlNodeToXml(*node) : QStringLiteral("<null>");
}

TEST(XmlStagesOverCorpus, StreamingReaderEqualsDomReader)
{
    QStringList documents;
    for (const QString& latex : latexInputs())
        documents << ommlParagraphToXml(paragraphOf(latex));
    ASSERT_GT(documents.size(), 10000);
    const int ours = documents.size();
    for (const QString& path :
         filesIn(QStringLiteral(FC_SOURCE_DIR "/fuzz/seeds"), QStringLiteral("omml_*"))) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        documents << QString::fromUtf8(file.readAll());
    }
    int differences = 0;
    for (int i = 0; i < documents.size(); ++i) {
        const QString& xml = documents.at(i);
        if (i < ours) {
            // What the library writes is read by streaming, never by the DOM parser.
            KXmlElementTree tree;
            EXPECT_EQ(readXmlElementTree(xml, kMaxOmmlReadDepth, tree), KXmlStreamResult::read);
        }
        const QString expected = modelText(readOmmlDocumentDom(xml));
        const QString actual = modelText(readOmmlDocument(xml));
        if (actual != expected && ++differences <= 5)
            ADD_FAILURE() << xml.toStdString() << "\n"
                          << actual.toStdString() << "\n"
                          << expected.toStdString();
    }
    EXPECT_EQ(differences, 0);
}

} // namespace
