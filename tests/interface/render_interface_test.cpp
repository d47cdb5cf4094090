// The two render operations through the host interface: guards, hostile nesting,
// and real formulas that a second SVG reader accepts.

#include "interface/converter_helper.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <limits>

namespace {

const KFormulaConverterHelper kHelper;

bool wellFormed(const QString& svg)
{
    QXmlStreamReader xml(svg);
    bool sawSvg = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("svg"))
            sawSvg = true;
    }
    return sawSvg && !xml.hasError();
}

TEST(RenderOperations, UnusableSizesGiveNothing)
{
    const QString omml = kHelper.latexToOmml(u"x");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (double size :
         {nan, inf, -inf, 0.0, -0.0, -12.0, 4096.0001, 1e300, std::numeric_limits<double>::min() * -1}) {
        EXPECT_TRUE(kHelper.latexToSvg(u"x", size).isEmpty()) << size;
        EXPECT_TRUE(kHelper.ommlToSvg(omml, size).isEmpty()) << size;
    }
    for (double size : {0.5, 12.0, 4096.0}) {
        EXPECT_TRUE(wellFormed(kHelper.latexToSvg(u"x", size))) << size;
        EXPECT_TRUE(wellFormed(kHelper.ommlToSvg(omml, size))) << size;
    }
}

TEST(RenderOperations, WithoutAGuiApplicationTheResultIsEmptyAndTheProcessLives)
{
    QProcess process;
    process.start(QString::fromUtf8(FC_BINARY_DIR) + QStringLiteral("/render_without_gui"), QStringList());
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(process.readAllStandardOutput(), QByteArray("none 0 0\ncore 0 0\n"));
}

TEST(RenderOperations, OmmlWithoutAnEquationInAParagraphGivesNothing)
{
    const char* const cases[] = {
        "<m:oMath "
        "xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:r><m:t>x</m:t></m:r></"
        "m:oMath>",
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"/>",
        "not xml at all", "<m:oMathPara"};
    for (const char* omml : cases)
        EXPECT_TRUE(kHelper.ommlToSvg(QString::fromUtf8(omml), 12).isEmpty()) << omml;
}

TEST(RenderOperations, EmptyEquationIsAFourByFourDocument)
{
    const QString svg = kHelper.latexToSvg(u"}", 12);
    EXPECT_TRUE(svg.contains(QStringLiteral("viewBox=\"0 0 4 4\""))) << qPrintable(svg);
    EXPECT_TRUE(
        kHelper.ommlToSvg(kHelper.latexToOmml(u"}"), 12).contains(QStringLiteral("viewBox=\"0 0 4 4\"")));
}

TEST(RenderOperations, HostileNestingReturns)
{
    const int deep = 100000;
    EXPECT_TRUE(wellFormed(kHelper.latexToSvg(QString(deep, QLatin1Char('{')), 12)));
    EXPECT_TRUE(wellFormed(kHelper.latexToSvg(
        QString(deep, QLatin1Char('{')) + QLatin1Char('x') + QString(deep, QLatin1Char('}')), 12)));
    EXPECT_TRUE(wellFormed(kHelper.latexToSvg(
        QStringLiteral("\\frac{").repeated(2000) + QStringLiteral("}{y}").repeated(2000), 12)));
    EXPECT_TRUE(wellFormed(
        kHelper.latexToSvg(QStringLiteral("x^{").repeated(2000) + QString(2000, QLatin1Char('}')), 12)));
    QString omml = QStringLiteral(
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:oMath>");
    omml += QStringLiteral("<m:rad><m:e>").repeated(deep) + QStringLiteral("<m:r><m:t>x</m:t></m:r>") +
            QStringLiteral("</m:e></m:rad>").repeated(deep) + QStringLiteral("</m:oMath></m:oMathPara>");
    EXPECT_TRUE(kHelper.ommlToSvg(omml, 12).isEmpty());
    // As deep as the reader allows still renders.
    const int allowed = 300;
    QString nested = QStringLiteral(
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:oMath>");
    nested += QStringLiteral("<m:sSup><m:e><m:r><m:t>x</m:t></m:r></m:e><m:sup>").repeated(allowed) +
              QStringLiteral("<m:r><m:t>2</m:t></m:r>") +
              QStringLiteral("</m:sup></m:sSup>").repeated(allowed) +
              QStringLiteral("</m:oMath></m:oMathPara>");
    EXPECT_TRUE(wellFormed(kHelper.ommlToSvg(nested, 12)));
}

const char* const kRealFormulas[] = {
    "\\frac{a}{b}",
    "x^2_i + y^{2^{2}}",
    "\\sum_{k=1}^n k^2 \\le \\int_0^1 f(x)\\,dx",
    "\\sqrt{x^2+1} + \\sqrt[3]{y}",
    "\\lim_{x \\to 0} \\frac{\\sin x}{x} = 1",
    "\\partial f \\in \\nabla \\otimes \\alpha\\beta\\gamma",
    "\\prod_{i=1}^{n} \\frac{1}{1+x_i} \\oint \\iint",
    "\\left( \\frac{a}{b} \\right) \\hat{x} \\overline{ab} \\boxed{z} \\overbrace{a+b}",
    "\\begin{pmatrix} 1 & 2 \\\\ 3 & 4 \\end{pmatrix} \\begin{cases} a & b \\\\ c \\end{cases}",
    "\\color{red}{x} + \\mathbf{v} + \\text{if } \\unknowncommand",
    "\\mathbb{R} \\ni \xF0\x9D\x91\xA5",
};

TEST(RenderOperations, RealFormulasAreReadBySecondSvgReader)
{
    const QString rsvg = QStandardPaths::findExecutable(QStringLiteral("rsvg-convert"));
    if (rsvg.isEmpty())
        GTEST_SKIP() << "rsvg-convert is not installed";
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    int index = 0;
    for (const char* latex : kRealFormulas) {
        const QString formula = QString::fromUtf8(latex);
        for (const QString& svg :
             {kHelper.latexToSvg(formula, 12), kHelper.ommlToSvg(kHelper.latexToOmml(formula), 20)}) {
            ASSERT_TRUE(wellFormed(svg)) << latex;
            const QString path = dir.filePath(QStringLiteral("%1.svg").arg(index++));
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(svg.toUtf8());
            file.close();
            QProcess process;
            process.start(rsvg, {path, QStringLiteral("-o"), path + QStringLiteral(".png")});
            ASSERT_TRUE(process.waitForFinished(30000));
            EXPECT_EQ(process.exitCode(), 0) << latex << process.readAllStandardError().constData();
            EXPECT_GT(QFileInfo(path + QStringLiteral(".png")).size(), 0) << latex;
        }
    }
}

} // namespace
