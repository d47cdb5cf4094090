// Runs the formulaconv tool as a user would and checks its contract: where the
// input comes from, what goes to each stream, and the exit status.

#include "cli_support.h"

#include <QTemporaryFile>

#include <gtest/gtest.h>

namespace {

TEST(Cli, WrapPrintsTheDocumentAndDoubleDashAllowsALeadingDash)
{
    const CliResult r = runCli({"wrap", ""});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out.size(), 1594 + 1);
    EXPECT_TRUE(runCli({"wrap", "--", "-x"}).out.contains("<w:p>-x</w:p>"));
}

TEST(Cli, InputFromArgumentStdinDashAndFile)
{
    const QByteArray text = "<r><m:oMathPara>\xC3\xA9</m:oMathPara></r>";
    EXPECT_EQ(runCli({"extract", QString::fromUtf8(text)}).out, "<m:oMathPara>\xC3\xA9</m:oMathPara>\n");
    const QByteArray omml =
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:oMath>"
        "<m:f><m:num><m:r><m:t>\xD0\xB6</m:t></m:r></m:num><m:den><m:r><m:t>2</m:t></m:r></m:den></m:f>"
        "</m:oMath></m:oMathPara>";
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(omml);
    file.flush();
    for (const CliResult& r :
         {runCli({"omml2latex", QString::fromUtf8(omml)}), runCli({"omml2latex"}, omml),
          runCli({"omml2latex", "-"}, omml), runCli({"omml2latex", "--file", file.fileName()})}) {
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out, "\\frac{\xD0\xB6}{2}\n");
    }
}

// An empty result exits 1 with one line saying why; a usage error exits 2 with the usage.
TEST(Cli, ExitCodesAndMessages)
{
    const struct {
        QStringList args;
        int exitCode;
        const char* err;
    } cases[] = {
        {{"extract", "<nothing/>"}, 1, "formulaconv: extract:"},
        {{"latex2omml", ""}, 1, "formulaconv: latex2omml:"},
        {{"omml2latex", ""}, 1, "formulaconv: omml2latex:"},
        {{"latex2svg", ""}, 1, "formulaconv: latex2svg:"},
        {{"omml2svg", ""}, 1, "formulaconv: omml2svg:"},
        // An equation outside a paragraph converts to nothing; the size has an upper limit.
        {{"omml2latex", "<m:oMath><m:r><m:t>x</m:t></m:r></m:oMath>"}, 1, "formulaconv: omml2latex:"},
        {{"latex2svg", "--size", "5000", "x"}, 1, "formulaconv: latex2svg:"},
        {{"layout", ""}, 1, "formulaconv: layout: "},
        {{"layout", "--omml", "<nothing/>"}, 1, "formulaconv: layout: "},
        {{"layout", "--omml", "not xml at all <"}, 1, "formulaconv: layout: "},
        {{"layout", "--size", "1e9", "x"}, 1, "formulaconv: layout: "},
        {{}, 2, "usage: formulaconv OP"},
        {{"frobnicate"}, 2, "usage: formulaconv OP"},
        {{"wrap", "--bogus", "x"}, 2, "usage: formulaconv OP"},
        {{"wrap", "--file", "/nonexistent/definitely/missing"}, 2, "usage: formulaconv OP"},
        {{"latex2svg", "--size", "abc", "x"}, 2, "usage: formulaconv OP"},
        {{"wrap", "a", "b"}, 2, "usage: formulaconv OP"},
        {{"wrap", "--file"}, 2, "usage: formulaconv OP"},
        {{"layout", "--size", "0", "x"}, 2, "usage: formulaconv OP"},
        {{"layout", "a", "b"}, 2, "usage: formulaconv OP"},
    };
    for (const auto& c : cases) {
        const CliResult r = runCli(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode) << c.args.join(' ').toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << c.args.join(' ').toStdString();
        EXPECT_TRUE(c.exitCode == 2 ? r.err.contains(c.err)
                                    : r.err.startsWith(c.err) && r.err.count('\n') == 1)
            << c.args.join(' ').toStdString() << ": " << r.err.constData();
    }
    const CliResult svg = runCli({"latex2svg", "--size", "36", "\\frac{a}{b}"});
    EXPECT_EQ(svg.exitCode, 0);
    EXPECT_TRUE(svg.out.startsWith("<?xml") && svg.out.contains("<title>Math Formula</title>"));
    EXPECT_NE(svg.out, runCli({"latex2svg", "\\frac{a}{b}"}).out);
}

TEST(Cli, HelpAndVersion)
{
    for (const QStringList& args : {QStringList{"--help"}, {"-h"}, {"latex2omml", "--help"}}) {
        const CliResult r = runCli(args);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_TRUE(r.out.startsWith(args.size() == 1 ? "usage: formulaconv OP" : "usage:"));
    }
    const CliResult version = runCli({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith("formulaconv "));
}

// The inspection operations: the tree dump, and the diagnostics as lines or JSON.
TEST(CliInspect, ExactOutputAndExitCode)
{
    const struct {
        QStringList args;
        QByteArray stdinText;
        int exitCode;
        QByteArray out;
    } cases[] = {
        {{"ast", "--", "\\left\\langle \\begin{matrix}a\\end{matrix}\\foo{\"}\\right. \\\\"},
         {},
         0,
         "Group\n  LeftRight \"\\\\langle\" \".\" left-right\n    Group\n      Env \"matrix\"\n        body\n"
         "          Row\n            Group\n              Text \"a\"\n      Unknown \"foo\"\n        arg\n"
         "          Group\n            Text \"\\\"\"\n  Command \"\\\\\\\\\"\n"},
        {{"ast"}, "", 0, "Group\n"},
        {{"ast"}, "{\\frac}\t\n}", 0, "Group\n  Group\n    Command \"frac\"\n"},
        {{"lint", "a\n\\left( x\n\xF0\x9D\x91\xA5}"},
         {},
         1,
         "3:3: error: Unexpected token while parsing expression. [E_unexpected_token]\n"
         "3:4: error: Missing \\right. [E_missing_right]\n"},
        {{"lint", "--json", "{\\frac a"},
         {},
         1,
         "{\"severity\":2,\"pos\":8,\"length\":0,\"code\":\"E_arg2_missing\","
         "\"message\":\"\\\\frac missing second argument.\"}\n"
         "{\"severity\":2,\"pos\":7,\"length\":1,\"code\":\"E_missing_rbrace\",\"message\":\"Missing "
         "'}'.\"}\n"},
        {{"lint", "\\frac{a}{b}"}, {}, 0, ""},
        // Names the converter does not know are found where they stand; defined macros, known
        // names and environments are not reported.
        {{"lint", "\\def\\f{x}\\f+\\alpha\n\\foo{y}+\\begin{bar}z\\end{bar}\\begin{CD}A\\end{CD}"},
         {},
         1,
         "2:1: warning: Unknown command \\foo; it shows as its name. [W_unknown_command]\n"
         "2:9: warning: Unknown environment bar; its content is kept. [W_unknown_environment]\n"},
        {{"lint", "--json", "\\text{\\'e}\\zz*"},
         {},
         1,
         "{\"severity\":1,\"pos\":10,\"length\":4,\"code\":\"W_unknown_command\","
         "\"message\":\"Unknown command \\\\zz*; it shows as its name.\"}\n"},
        {{"lint", "--json", "x^2"}, {}, 0, ""},
    };
    for (const auto& c : cases) {
        const CliResult r = runCli(c.args, c.stdinText);
        EXPECT_EQ(r.exitCode, c.exitCode) << c.args.join(' ').toStdString();
        EXPECT_EQ(r.out, c.out) << c.args.join(' ').toStdString();
    }
}

TEST(CliLint, SeverityWords)
{
    const CliResult r = runCli({"lint", "\\left1\\right)" + QString(1100, QLatin1Char('a')) + "\\"});
    EXPECT_EQ(r.exitCode, 1);
    const QList<QByteArray> lines = r.out.split('\n');
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], "1:1114: warning: Trailing backslash at end of input [W_backslash_eof]");
    EXPECT_EQ(lines[1], "1:6: warning: \\left expects a delimiter; got '1'. Using '.'. [W_left_delim]");
    EXPECT_EQ(lines[2], "1:1038: fatal: Maximum nesting depth exceeded. [F_nesting_overflow]");
}

} // namespace
