#include "interface/IFormulaConverterHelper.h"
#include "interface/converter_helper.h"

#include <QProcess>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace {

// Written out independently of the library so that a change in either shows.
const char kExpectedPrefix[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?><?mso-application "
    "progid=\"Word.Document\"?>"
    "<w:wordDocument xmlns:w=\"http://schemas.microsoft.com/office/word/2003/wordml\" "
    "xmlns:v=\"urn:schemas-microsoft-com:vml\" xmlns:w10=\"urn:schemas-microsoft-com:office:word\" "
    "xmlns:sl=\"http://schemas.microsoft.com/schemaLibrary/2003/core\" "
    "xmlns:aml=\"http://schemas.microsoft.com/aml/2001/core\" "
    "xmlns:wx=\"http://schemas.microsoft.com/office/word/2003/auxHint\" "
    "xmlns:o=\"urn:schemas-microsoft-com:office:office\" "
    "xmlns:dt=\"uuid:C2F41010-65B3-11d1-A29F-00AA00C14882\" "
    "xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" "
    "xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\" w:macrosPresent=\"no\" "
    "w:embeddedObjPresent=\"no\" w:ocxPresent=\"no\" xml:space=\"preserve\">"
    "<o:DocumentProperties><o:Version>14</o:Version></o:DocumentProperties><w:docPr><w:view w:val=\"print\"/>"
    "<w:zoom w:percent=\"90\"/><w:characterSpacingControl w:val=\"CompressPunctuation\"/>"
    "<w:documentProtection w:enforcement=\"off\"/><w:punctuationKerning/><w:bordersDontSurroundHeader/>"
    "<w:bordersDontSurroundFooter/><w:defaultTabStop w:val=\"420\"/><w:drawingGridVerticalSpacing "
    "w:val=\"156\"/>"
    "<w:displayHorizontalDrawingGridEvery w:val=\"0\"/><w:displayVerticalDrawingGridEvery w:val=\"2\"/>"
    "<w:compat><w:adjustLineHeightInTable/><w:ulTrailSpace/><w:doNotExpandShiftReturn/>"
    "<w:balanceSingleByteDoubleByteWidth/><w:useFELayout/><w:spaceForUL/><w:wrapTextWithPunct/>"
    "<w:breakWrappedTables/><w:useAsianBreakRules/><w:dontGrowAutofit/><w:useFELayout/></w:compat></w:docPr>"
    "<w:body><wx:sect><w:p>";
const char kExpectedSuffix[] = "</w:p></wx:sect></w:body></w:wordDocument>";

const KFormulaConverterHelper kHelper;

TEST(WordDocument, EmbedsTheFragmentUnchanged)
{
    EXPECT_EQ(QString(kExpectedPrefix).size(), 1552);
    EXPECT_EQ(kHelper.wrapInWordDocument(QString()), QString(kExpectedPrefix) + kExpectedSuffix);
    for (const QString& fragment : {QStringLiteral("<m:oMathPara/>"), QStringLiteral("a < b & \"c\""),
                                    QString::fromUtf8("\xF0\x9D\x94\xB8 \xC3\xA9")})
        EXPECT_EQ(kHelper.wrapInWordDocument(fragment), kExpectedPrefix + fragment + kExpectedSuffix);
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

TEST(ConverterInterface, EmptyInputGivesEmptyResult)
{
    EXPECT_TRUE(kHelper.latexToOmml(QStringView()).isEmpty());
    EXPECT_TRUE(kHelper.ommlToLatex(QStringView()).isEmpty());
    EXPECT_TRUE(kHelper.latexToSvg(QStringView(), 12).isEmpty());
    EXPECT_TRUE(kHelper.ommlToSvg(QStringView(), 12).isEmpty());
}

// A host loads the shared library at run time and talks to it only through the
// exported function and the virtual table.
TEST(SharedLibrary, LoadsAndAnswersThroughTheVirtualTable)
{
    const QByteArray path = QByteArray(FC_BINARY_DIR) + "/libformulaconverter.so";
    void* library = dlopen(path.constData(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto entry = reinterpret_cast<GetFormulaConverterHelperFn>(dlsym(library, "GetFormulaConverterHelper"));
    ASSERT_NE(entry, nullptr);
    IFormulaConverterHelper* helper = entry();
    ASSERT_NE(helper, nullptr);
    EXPECT_EQ(entry(), helper);
    EXPECT_EQ(helper->wrapInWordDocument(QStringLiteral("X")),
              QString(kExpectedPrefix) + "X" + kExpectedSuffix);
    EXPECT_EQ(helper->extractMathParagraph(QStringLiteral("a<m:oMathPara>b</m:oMathPara>")),
              QStringLiteral("<m:oMathPara>b</m:oMathPara>"));
    EXPECT_TRUE(helper->latexToOmml(QStringView()).isEmpty());
    dlclose(library);
}

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
