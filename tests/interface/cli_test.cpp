// Runs the formulaconv tool as a user would and checks its contract: where the
// input comes from, what goes to each stream, and the exit status.

#include <QProcess>
#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace {

struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliResult runCli(const QStringList& args, const QByteArray& stdinText = {})
{
    QProcess process;
    process.start(QString::fromUtf8(FC_BINARY_DIR) + QStringLiteral("/formulaconv"), args);
    process.write(stdinText);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

TEST(Cli, WrapOfEmptyTextPrintsTheEmptyDocument)
{
    const CliResult r = runCli({"wrap", ""});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out.size(), 1594 + 1);
    EXPECT_TRUE(r.out.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"));
    EXPECT_TRUE(r.out.endsWith("<w:p></w:p></wx:sect></w:body></w:wordDocument>\n"));
}

TEST(Cli, InputFromArgumentStdinDashAndFile)
{
    const QByteArray text = "<r><m:oMathPara>\xC3\xA9</m:oMathPara></r>";
    const QByteArray expected = "<m:oMathPara>\xC3\xA9</m:oMathPara>\n";
    EXPECT_EQ(runCli({"extract", QString::fromUtf8(text)}).out, expected);
    EXPECT_EQ(runCli({"extract"}, text).out, expected);
    EXPECT_EQ(runCli({"extract", "-"}, text).out, expected);

    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(text);
    file.flush();
    const CliResult r = runCli({"extract", "--file", file.fileName()});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, expected);
}

TEST(Cli, DoubleDashAllowsTextStartingWithDash)
{
    const CliResult r = runCli({"wrap", "--", "-x"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_TRUE(r.out.contains("<w:p>-x</w:p>"));
}

TEST(Cli, EmptyResultExitsOneWithAReason)
{
    const CliResult r = runCli({"extract", "<nothing/>"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.out.isEmpty());
    EXPECT_EQ(r.err.count('\n'), 1);
    EXPECT_TRUE(r.err.startsWith("formulaconv: extract:"));

    for (const char* op : {"latex2omml", "omml2latex", "latex2svg", "omml2svg"}) {
        const CliResult e = runCli({op, ""});
        EXPECT_EQ(e.exitCode, 1) << op;
        EXPECT_TRUE(e.out.isEmpty()) << op;
    }
}

TEST(Cli, UsageErrorsExitTwo)
{
    const QStringList cases[] = {{},
                                 {"frobnicate"},
                                 {"wrap", "--bogus", "x"},
                                 {"wrap", "--file", "/nonexistent/definitely/missing"},
                                 {"latex2svg", "--size", "abc", "x"},
                                 {"wrap", "a", "b"},
                                 {"wrap", "--file"}};
    for (const QStringList& args : cases) {
        const CliResult r = runCli(args);
        EXPECT_EQ(r.exitCode, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << args.join(' ').toStdString();
        EXPECT_TRUE(r.err.contains("usage: formulaconv OP")) << args.join(' ').toStdString();
    }
}

TEST(Cli, HelpAndVersion)
{
    for (const char* flag : {"--help", "-h"}) {
        const CliResult r = runCli({flag});
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_TRUE(r.out.startsWith("usage: formulaconv OP"));
    }
    const CliResult op = runCli({"latex2omml", "--help"});
    EXPECT_EQ(op.exitCode, 0);
    EXPECT_TRUE(op.out.startsWith("usage:"));
    const CliResult version = runCli({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith("formulaconv "));
}

} // namespace
