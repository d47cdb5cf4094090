// `formulaconv batch`: JSON Lines and plain lines in, one JSON object per input
// line out, in input order whatever the number of threads.

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct BatchRun {
    int exitCode = -1;
    QList<QByteArray> lines;
    QByteArray err;
};

BatchRun runBatch(const QStringList& args, const QByteArray& input)
{
    QProcess process;
    process.start(QString::fromUtf8(FC_BINARY_DIR) + QStringLiteral("/formulaconv"),
                  QStringList{QStringLiteral("batch")} + args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(120000);
    QByteArray out = process.readAllStandardOutput();
    if (out.endsWith('\n'))
        out.chop(1);
    return {process.exitCode(), out.isEmpty() ? QList<QByteArray>() : out.split('\n'),
            process.readAllStandardError()};
}

TEST(CliBatch, EachInputFormGivesOneResultLine)
{
    const QByteArray input = "{\"id\":\"a\",\"input\":\"<m:oMathPara>x</m:oMathPara>\"}\n"
                             "\"<m:oMathPara>\\u00e9\\ud835\\udc65</m:oMathPara>\"\n"
                             "plain <m:oMathPara/> without a closing tag\r\n"
                             "\n"
                             "{\"input\":3}\n"
                             "{not json\n"
                             "\"unterminated\n"
                             "{\"id\":[1,2],\"input\":\"<m:oMathPara>q</m:oMathPara>\"}";
    const BatchRun run = runBatch({"extract"}, input);
    EXPECT_EQ(run.exitCode, 0);
    const QList<QByteArray> expected = {
        R"({"id":"a","ok":true,"output":"<m:oMathPara>x</m:oMathPara>"})",
        "{\"id\":2,\"ok\":true,\"output\":\"<m:oMathPara>\xC3\xA9\xF0\x9D\x91\xA5</m:oMathPara>\"}",
        R"({"id":3,"ok":false,"output":""})",
        R"({"id":5,"ok":false,"error":"\"input\" must be a string"})",
        R"({"id":6,"ok":false,"error":"invalid JSON: unterminated object"})",
        R"({"id":7,"ok":false,"error":"not a JSON string"})",
        R"({"id":[1,2],"ok":true,"output":"<m:oMathPara>q</m:oMathPara>"})",
    };
    EXPECT_EQ(run.lines, expected);
    EXPECT_TRUE(run.err.startsWith("7 inputs, 4 empty, ")) << run.err.constData();
}

TEST(CliBatch, ManyThreadsKeepInputOrder)
{
    QByteArray input;
    for (int i = 0; i < 2000; ++i)
        input += "<m:oMathPara>" + QByteArray::number(i) + "</m:oMathPara>\n";
    const BatchRun run = runBatch({"extract", "--jobs", "4"}, input);
    ASSERT_EQ(run.lines.size(), 2000);
    for (int i = 0; i < 2000; ++i) {
        const QJsonObject object = QJsonDocument::fromJson(run.lines[i]).object();
        ASSERT_EQ(object.value("id").toInt(), i + 1);
        ASSERT_EQ(object.value("output").toString(), QStringLiteral("<m:oMathPara>%1</m:oMathPara>").arg(i));
    }
}

TEST(CliBatch, EmptyInputWritesNothingButTheSummary)
{
    const BatchRun run = runBatch({"wrap"}, "");
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.lines.isEmpty());
    EXPECT_TRUE(run.err.startsWith("0 inputs, 0 empty, ")) << run.err.constData();
}

TEST(CliBatch, UsageErrors)
{
    for (const QStringList& args : {QStringList{}, QStringList{"lint"}, QStringList{"wrap", "--jobs", "0"},
                                    QStringList{"wrap", "TEXT"}, QStringList{"wrap", "--bogus"}}) {
        const BatchRun run = runBatch(args, "x\n");
        EXPECT_EQ(run.exitCode, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(run.lines.isEmpty());
    }
}

} // namespace
