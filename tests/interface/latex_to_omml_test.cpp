// latexToOmml end to end: lexer, parser, converter and writer behind the host interface.
#include "interface/converter_helper.h"
#include "tests/latex2omml/omml_text.h"

#include <QDir>
#include <QFile>
#include <QTextStream>
#include <QThread>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

using namespace omml_text;

namespace {

const KFormulaConverterHelper kHelper;

const QString kNamespace = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");

QString paragraph(const QString& equation)
{
    const QString equationXml = equation.isEmpty()
                                    ? "<m:oMath xmlns:m=\"" + kNamespace + "\"/>"
                                    : "<m:oMath xmlns:m=\"" + kNamespace + "\">" + equation + "</m:oMath>";
    return "<m:oMathPara xmlns:m=\"" + kNamespace +
           "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr>" + equationXml + "</m:oMathPara>";
}

QString latexToOmml(const QString& latex)
{
    return kHelper.latexToOmml(latex);
}

// Compared as standard strings so that a failure prints readable XML.
#define EXPECT_SAME_XML(actual, expected) EXPECT_EQ((actual).toStdString(), (expected).toStdString())

TEST(LatexToOmml, EmptyInputGivesEmptyString)
{
    EXPECT_EQ(latexToOmml(QString()), QString());
    EXPECT_EQ(kHelper.latexToOmml(QStringView()), QString());
}

TEST(LatexToOmml, WholeParagraphs)
{
    EXPECT_SAME_XML(latexToOmml("\\frac{a}{b}"), paragraph(frac(r("a"), r("b"))));
    EXPECT_SAME_XML(latexToOmml("}"), paragraph(QString()));
    EXPECT_SAME_XML(latexToOmml(" "), paragraph(QString()));
    EXPECT_SAME_XML(latexToOmml("\\foo"), paragraph(r("\\foo")));
    // A bare & outside a table is dropped by the parser; the escaped one is a character.
    EXPECT_SAME_XML(latexToOmml("a<b&c\\&"), paragraph(r("a&lt;bc&amp;")));
    EXPECT_SAME_XML(latexToOmml("\\sum_{i=1}^n x_i"),
                    paragraph(nary(QStringLiteral("\u2211"), false, false, false, r("i=1"), r("n"),
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

TEST(LatexToOmml, ConcurrentConversionsAgree)
{
    const QString inputs[] = {"\\frac{a}{b}", "\\int\\limits_0^1 f", "\\binom{n}{k}", "\\sqrt[3]{x}"};
    std::vector<QString> sequential;
    for (const QString& input : inputs)
        sequential.push_back(latexToOmml(input));
    std::vector<QString> parallel(4);
    std::vector<QThread*> threads;
    for (int t = 0; t < 4; ++t) {
        threads.push_back(QThread::create([&, t] {
            for (int round = 0; round < 50; ++round)
                parallel[t] = latexToOmml(inputs[t]);
        }));
        threads.back()->start();
    }
    for (QThread* thread : threads) {
        thread->wait();
        delete thread;
    }
    for (int t = 0; t < 4; ++t)
        EXPECT_EQ(parallel[t], sequential[t]);
}

// Checks that the text is one m:oMathPara holding one m:oMath, as XML without
// namespace processing (the w prefix is declared by the embedding document).
bool isParagraph(const QString& xml, QString* why)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    int equations = 0;
    bool sawRoot = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            if (depth == 0) {
                if (sawRoot || reader.qualifiedName() != QLatin1String("m:oMathPara")) {
                    *why = "root " + reader.qualifiedName().toString();
                    return false;
                }
                sawRoot = true;
            } else if (depth == 1 && reader.qualifiedName() == QLatin1String("m:oMath")) {
                ++equations;
            }
            ++depth;
        } else if (reader.isEndElement()) {
            --depth;
        }
    }
    if (reader.hasError()) {
        *why = reader.errorString();
        return false;
    }
    if (equations != 1) {
        *why = QStringLiteral("%1 equations").arg(equations);
        return false;
    }
    return sawRoot;
}

TEST(LatexToOmml, EveryCorpusFormulaGivesOneWellFormedParagraph)
{
    // The corpus lives beside the repository, not in it; a checkout elsewhere has none.
    if (!QDir(QStringLiteral(FC_CORPUS_DIR)).exists())
        GTEST_SKIP() << "no corpus at " FC_CORPUS_DIR;
    const char* files[] = {"arxiv-formulas.txt", "wikipedia-formulas.txt"};
    int formulas = 0;
    for (const char* name : files) {
        QFile file(QStringLiteral(FC_CORPUS_DIR "/") + name);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text)) << name;
        QTextStream stream(&file);
        stream.setCodec("UTF-8");
        int line = 0;
        while (!stream.atEnd()) {
            const QString latex = stream.readLine();
            ++line;
            if (latex.isEmpty())
                continue;
            ++formulas;
            QString why;
            EXPECT_TRUE(isParagraph(latexToOmml(latex), &why))
                << name << ":" << line << " " << latex.toStdString() << ": " << why.toStdString();
        }
    }
    EXPECT_GT(formulas, 16000);
}

} // namespace
