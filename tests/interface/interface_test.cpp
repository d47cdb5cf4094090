#include "interface/converter_helper.h"

#include <QProcess>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

const KFormulaConverterHelper kHelper;

// A Word 2003 XML document whose one paragraph holds the fragment exactly as given.
TEST(WordDocument, EmbedsTheFragmentUnchanged)
{
    const QString empty = kHelper.wrapInWordDocument(QString());
    EXPECT_EQ(empty.size(), 1594);
    EXPECT_TRUE(
        empty.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><?mso-application "
                         "progid=\"Word.Document\"?><w:wordDocument "));
    EXPECT_TRUE(empty.contains(" xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\" "));
    EXPECT_TRUE(empty.endsWith("<w:body><wx:sect><w:p></w:p></wx:sect></w:body></w:wordDocument>"));
    QXmlStreamReader xml(empty);
    ASSERT_TRUE(xml.readNextStartElement());
    EXPECT_EQ(xml.namespaceUri(), QLatin1String("http://schemas.microsoft.com/office/word/2003/wordml"));
    while (!xml.atEnd())
        xml.readNext();
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    const int paragraph = empty.indexOf("<w:p></w:p>") + 5;
    for (const QString& fragment : {QStringLiteral("<m:oMathPara/>"), QStringLiteral("a < b & \"c\""),
                                    QString::fromUtf8("\xF0\x9D\x94\xB8 \xC3\xA9")})
        EXPECT_EQ(kHelper.wrapInWordDocument(fragment),
                  empty.left(paragraph) + fragment + empty.mid(paragraph));
}

TEST(ExtractMathParagraph, Cases)
{
    const struct {
        const char* input;
        const char* expected;
    } cases[] = {
        {"", ""},
        {"<w:p><m:oMathPara><m:oMath/></m:oMathPara></w:p>", "<m:oMathPara><m:oMath/></m:oMathPara>"},
        {"x<m:oMathPara a=\"1\">\n<m:oMath/>\n</m:oMathPara>y<m:oMathPara>2</m:oMathPara>",
         "<m:oMathPara a=\"1\">\n<m:oMath/>\n</m:oMathPara>"},
        {"<m:oMathPara><m:oMath/>", ""},
        {"<M:OMATHPARA></M:OMATHPARA>", ""},
        {"<m:oMathPara/>", ""},
        {"<m:oMathParaPr></m:oMathPara>", "<m:oMathParaPr></m:oMathPara>"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(kHelper.extractMathParagraph(QString::fromUtf8(c.input)), QString::fromUtf8(c.expected))
            << c.input;
}

// Hosts load the shared library at run time (tests/host/corpus_host.cpp does, over the corpus) and
// must see nothing but the entry point.
TEST(SharedLibrary, ExportsExactlyTheEntryPoint)
{
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {QStringLiteral("-D"), QStringLiteral("--defined-only"),
              QString::fromUtf8(FC_BINARY_DIR) + QStringLiteral("/libformulaconverter.so")});
    ASSERT_TRUE(nm.waitForFinished(30000));
    QStringList symbols;
    for (const QString& line : QString::fromUtf8(nm.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts))
        symbols << line.section(' ', -1);
    EXPECT_EQ(symbols, QStringList{QStringLiteral("GetFormulaConverterHelper")});
}

} // namespace
