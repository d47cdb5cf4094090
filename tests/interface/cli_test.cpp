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
    EXPECT_TRUE(r.out.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"));
    EXPECT_TRUE(r.out.endsWith("<w:p></w:p></wx:sect></w:body></w:wordDocument>\n"));
    EXPECT_TRUE(runCli({"wrap", "--", "-x"}).out.contains("<w:p>-x</w:p>"));
}

TEST(Cli, InputFromArgumentStdinDashAndFile)
{
    const QByteArray text = "<r><m:oMathPara>\xC3\xA9</m:oMathPara></r>";
    EXPECT_EQ(runCli({"extract", QString::fromUtf8(text)}).out, "<m:oMathPara>\xC3\xA9</m:oMathPara>\n");
    const QByteArray omml =
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"><m:oMath>"
        "<m:f><m:num><m:r><m:t>\xCE\xB1</m:t></m:r></m:num><m:den><m:r><m:t>2</m:t></m:r></m:den></m:f>"
        "</m:oMath></m:oMathPara>";
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write(omml);
    file.flush();
    for (const CliResult& r :
         {runCli({"omml2latex", QString::fromUtf8(omml)}), runCli({"omml2latex"}, omml),
          runCli({"omml2latex", "-"}, omml), runCli({"omml2latex", "--file", file.fileName()})}) {
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_EQ(r.out, "\\frac{\xCE\xB1}{2}\n");
    }
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
    // An equation outside a paragraph converts to nothing.
    const CliResult e = runCli({"omml2latex", "<m:oMath><m:r><m:t>x</m:t></m:r></m:oMath>"});
    EXPECT_EQ(e.exitCode, 1);
    EXPECT_TRUE(e.out.isEmpty());
}

TEST(Cli, RenderOperationsPrintAnSvgDocument)
{
    const CliResult latex = runCli({"latex2svg", "\\frac{a}{b}"});
    EXPECT_EQ(latex.exitCode, 0);
    EXPECT_TRUE(latex.out.startsWith("<?xml")) << latex.out.constData();
    EXPECT_TRUE(latex.out.contains("<title>Math Formula</title>"));
    const QByteArray omml = runCli({"latex2omml", "x^2"}).out;
    const CliResult small = runCli({"omml2svg", QString::fromUtf8(omml)});
    const CliResult large = runCli({"omml2svg", "--size", "36", QString::fromUtf8(omml)});
    EXPECT_EQ(small.exitCode, 0);
    EXPECT_EQ(large.exitCode, 0);
    EXPECT_TRUE(small.out.contains("</svg>"));
    EXPECT_GT(large.out.size(), 0);
    EXPECT_NE(small.out, large.out);
    EXPECT_EQ(runCli({"latex2svg", "--size", "5000", "x"}).exitCode, 1); // above the largest size
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
    for (const QStringList& args : {QStringList{"--help"}, {"-h"}, {"latex2omml", "--help"}}) {
        const CliResult r = runCli(args);
        EXPECT_EQ(r.exitCode, 0);
        EXPECT_TRUE(r.out.startsWith(args.size() == 1 ? "usage: formulaconv OP" : "usage:"));
    }
    const CliResult version = runCli({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.startsWith("formulaconv "));
}

} // namespace

namespace {

TEST(CliAst, PrintsTheIndentedTree)
{
    const CliResult r = runCli({"ast", "\\sqrt[3]{x}^2"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "Group\n"
                     "  Script\n"
                     "    base\n"
                     "      Command \"sqrt\"\n"
                     "        optarg\n"
                     "          Group\n"
                     "            Text \"3\"\n"
                     "        arg\n"
                     "          Group\n"
                     "            Text \"x\"\n"
                     "    sup\n"
                     "      Text \"2\"\n");
    EXPECT_TRUE(r.err.isEmpty());
}

TEST(CliAst, EveryKindAndEscapedStrings)
{
    const CliResult r =
        runCli({"ast", "--", "\\left\\langle \\begin{matrix}a\\end{matrix}\\foo{\"}\\right. \\\\"});
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "Group\n"
                     "  LeftRight \"\\\\langle\" \".\" left-right\n"
                     "    Group\n"
                     "      Env \"matrix\"\n"
                     "        body\n"
                     "          Row\n"
                     "            Group\n"
                     "              Text \"a\"\n"
                     "      Unknown \"foo\"\n"
                     "        arg\n"
                     "          Group\n"
                     "            Text \"\\\"\"\n"
                     "  Command \"\\\\\\\\\"\n");
}

TEST(CliAst, EmptyAndMalformedInputFromStdin)
{
    EXPECT_EQ(runCli({"ast"}, "").out, "Group\n");
    const CliResult r = runCli({"ast"}, "{\\frac}\t\n}");
    EXPECT_EQ(r.exitCode, 0);
    EXPECT_EQ(r.out, "Group\n  Group\n    Command \"frac\"\n");
}

TEST(CliLint, OneLinePerDiagnosticWithLineAndColumn)
{
    const CliResult r = runCli({"lint", "a\n\\left( x\n\xF0\x9D\x91\xA5}"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "3:3: error: Unexpected token while parsing expression. [E_unexpected_token]\n"
                     "3:4: error: Missing \\right. [E_missing_right]\n");
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

TEST(CliLint, JsonLines)
{
    const CliResult r = runCli({"lint", "--json", "{\\frac a"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "{\"severity\":2,\"pos\":8,\"length\":0,\"code\":\"E_arg2_missing\","
                     "\"message\":\"\\\\frac missing second argument.\"}\n"
                     "{\"severity\":2,\"pos\":7,\"length\":1,\"code\":\"E_missing_rbrace\",\"message\":"
                     "\"Missing '}'.\"}\n");
}

TEST(CliLint, CleanInputExitsZeroSilently)
{
    for (const char* text : {"", "\\frac{a}{b}", "x^2"}) {
        const CliResult r = runCli({"lint", text});
        EXPECT_EQ(r.exitCode, 0) << text;
        EXPECT_TRUE(r.out.isEmpty()) << text;
        EXPECT_TRUE(runCli({"lint", "--json", text}).out.isEmpty()) << text;
    }
}

} // namespace
