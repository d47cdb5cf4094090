// The formulaconv command prints the LaTeX of an OMML paragraph.

#include "tests/omml2latex/qstring_printer.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct CliRun {
    int exitCode = -1;
    QString out;
};

CliRun formulaconv(const QStringList& args, const QByteArray& input = {})
{
    QProcess process;
    process.start(QStringLiteral(FC_BINARY_DIR "/formulaconv"), args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput())};
}

const char* const kFraction =
    "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:oMath>"
    "<m:f><m:num><m:r><m:t>\xCE\xB1</m:t></m:r></m:num><m:den><m:r><m:t>2</m:t></m:r></m:den></m:f>"
    "</m:oMath></m:oMathPara>";

TEST(CliOmmlToLatex, PrintsTheLatexOfAnArgument)
{
    const CliRun r = formulaconv({"omml2latex", QString::fromUtf8(kFraction)});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QString::fromUtf8("\\frac{\xCE\xB1}{2}\n"));
}

TEST(CliOmmlToLatex, ReadsStandardInput)
{
    const CliRun r = formulaconv({"omml2latex"}, kFraction);
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, QString::fromUtf8("\\frac{\xCE\xB1}{2}\n"));
}

TEST(CliOmmlToLatex, EmptyResultForAnEquationWithoutParagraph)
{
    const CliRun r = formulaconv({"omml2latex", "<m:oMath><m:r><m:t>x</m:t></m:r></m:oMath>"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
}

} // namespace
