// latexToOmml end to end: lexer, parser, converter and writer behind the host
// interface. Every corpus formula is checked in the corpus round trip.
#include "interface/converter_helper.h"
#include "tests/latex2omml/omml_text.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace omml_text;

namespace {

const KFormulaConverterHelper kHelper;

const QString kNamespace = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const QString kWordNamespace = QStringLiteral("http://schemas.openxmlformats.org/wordprocessingml/2006/main");

QString paragraph(const QString& equation)
{
    const QString ns = "xmlns:m=\"" + kNamespace + "\" xmlns:w=\"" + kWordNamespace + "\"";
    return "<m:oMathPara " + ns + "><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr>" +
           (equation.isEmpty() ? "<m:oMath " + ns + "/>" : "<m:oMath " + ns + ">" + equation + "</m:oMath>") +
           "</m:oMathPara>";
}

const auto latexToOmml = [](const QString& latex) { return kHelper.latexToOmml(latex); };

// Compared as standard strings so that a failure prints readable XML.
#define EXPECT_SAME_XML(actual, expected) EXPECT_EQ((actual).toStdString(), (expected).toStdString())

TEST(LatexToOmml, WholeParagraphs)
{
    EXPECT_SAME_XML(latexToOmml("\\frac{a}{b}"), paragraph(frac(r("a"), r("b"))));
    EXPECT_SAME_XML(latexToOmml("}"), paragraph(QString()));
    EXPECT_SAME_XML(latexToOmml(" "), paragraph(QString()));
    EXPECT_SAME_XML(latexToOmml("\\foo"), paragraph(r("\\foo")));
    // A bare & outside a table is dropped by the parser; the escaped one is a character.
    EXPECT_SAME_XML(latexToOmml("a<b&c\\&"), paragraph(r("a&lt;bc&amp;")));
    EXPECT_SAME_XML(latexToOmml("\\sum_{i=1}^n x_i"),
                    paragraph(nary(QStringLiteral("\u2211"), true, false, false, r("i=1"), r("n"),
                                   sSub(r("x"), r("i")))));
    EXPECT_SAME_XML(
        latexToOmml("\\lim_{x\\to 0} \\sin x"),
        // The limit takes the function as its operand, and a taken function takes nothing.
        paragraph(func(limLow(rp("lim"), r(QStringLiteral("x\u21920"))), func(rp("sin"), QString())) +
                  r("x")));
}

TEST(LatexToOmml, ControlCharactersNeverBreakTheXml)
{
    const QString hostile[] = {QString(QChar(0x0001)), QString("x") + QChar(0xD800) + "^2",
                               QString(QChar(0xFFFF)), QString("\\") + QChar(0x0008),
                               QString("\\left") + QChar(0x000B)};
    for (const QString& latex : hostile) {
        QXmlStreamReader reader(latexToOmml(latex));
        reader.setNamespaceProcessing(false);
        while (!reader.atEnd())
            reader.readNext();
        EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    }
}

} // namespace
