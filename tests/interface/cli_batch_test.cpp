// `formulaconv batch`: plain lines (or JSON Lines with --jsonl) in, one JSON object
// per input line out, in input order whatever the number of threads.

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

#include <ostream>

// Result lines print as text when a comparison fails.
inline void PrintTo(const QByteArray& bytes, std::ostream* os)
{
    *os << bytes.constData();
}

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

TEST(CliBatch, JsonLinesEachFormGivesOneResultLine)
{
    const QByteArray input = "{\"id\":\"a\",\"input\":\"<m:oMathPara>x</m:oMathPara>\"}\n"
                             "\"<m:oMathPara>\\u00e9\\ud835\\udc65</m:oMathPara>\"\n"
                             "\"plain <m:oMathPara/> without a closing tag\"\r\n"
                             "\n"
                             "{\"input\":3}\n"
                             "{not json\n"
                             "\"unterminated\n"
                             "plain text\n"
                             "42\n"
                             "\"a\", \"b\"\n"
                             "{\"id\":[1,2],\"input\":\"<m:oMathPara>q</m:oMathPara>\"}";
    const BatchRun run = runBatch({"extract", "--jsonl"}, input);
    EXPECT_EQ(run.exitCode, 0);
    const QList<QByteArray> expected = {
        R"({"id":"a","ok":true,"output":"<m:oMathPara>x</m:oMathPara>"})",
        "{\"id\":2,\"ok\":true,\"output\":\"<m:oMathPara>\xC3\xA9\xF0\x9D\x91\xA5</m:oMathPara>\"}",
        R"({"id":3,"ok":false,"output":""})",
        R"({"id":5,"ok":false,"error":"\"input\" must be a string"})",
        R"({"id":6,"ok":false,"error":"invalid JSON: unterminated object"})",
        R"({"id":7,"ok":false,"error":"invalid JSON: unterminated string"})",
        R"({"id":8,"ok":false,"error":"invalid JSON: illegal number"})",
        R"({"id":9,"ok":false,"error":"a line must be a JSON object or string"})",
        R"({"id":10,"ok":false,"error":"invalid JSON: not one value"})",
        R"({"id":[1,2],"ok":true,"output":"<m:oMathPara>q</m:oMathPara>"})",
    };
    EXPECT_EQ(run.lines, expected);
    EXPECT_TRUE(run.err.startsWith("10 inputs, 7 empty, ")) << run.err.constData();
}

TEST(CliBatch, PlainLinesAreInputsWhateverTheirFirstCharacter)
{
    // Without --jsonl nothing is read as JSON: braces, quotes and brackets are formula text.
    const QByteArray input = "<m:oMathPara>{</m:oMathPara>\n"
                             "{\"input\":\"<m:oMathPara>x</m:oMathPara>\"}\n"
                             "\"<m:oMathPara>\\u00e9</m:oMathPara>\"\r\n"
                             "\n"
                             "no paragraph here\n"
                             "<m:oMathPara>\xF0\x9D\x91\xA5</m:oMathPara>";
    const BatchRun run = runBatch({"extract"}, input);
    EXPECT_EQ(run.exitCode, 0);
    const QList<QByteArray> expected = {
        R"({"id":1,"ok":true,"output":"<m:oMathPara>{</m:oMathPara>"})",
        R"({"id":2,"ok":true,"output":"<m:oMathPara>x</m:oMathPara>"})",
        R"({"id":3,"ok":true,"output":"<m:oMathPara>\\u00e9</m:oMathPara>"})",
        R"({"id":5,"ok":false,"output":""})",
        "{\"id\":6,\"ok\":true,\"output\":\"<m:oMathPara>\xF0\x9D\x91\xA5</m:oMathPara>\"}",
    };
    EXPECT_EQ(run.lines, expected);
    EXPECT_TRUE(run.err.startsWith("5 inputs, 1 empty, ")) << run.err.constData();
}

// Every formula of the corpus, one per line as the files hold them, gives one
// successful result line, in order, numbered by its line.
TEST(CliBatch, WholeCorpusAsPlainLines)
{
    for (const char* name : {"arxiv-formulas.txt", "wikipedia-formulas.txt"}) {
        QFile file(QStringLiteral(FC_CORPUS_DIR "/") + QLatin1String(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        const QByteArray content = file.readAll();
        const int formulas = content.count('\n') + (content.endsWith('\n') ? 0 : 1);
        const BatchRun run = runBatch({"latex2omml", "--jobs", "2"}, content);
        EXPECT_EQ(run.exitCode, 0);
        ASSERT_EQ(run.lines.size(), formulas) << name;
        for (int i = 0; i < formulas; ++i) {
            const QJsonObject object = QJsonDocument::fromJson(run.lines[i]).object();
            ASSERT_EQ(object.value("id").toInt(), i + 1) << name << ": " << run.lines[i].constData();
            ASSERT_TRUE(object.value("ok").toBool()) << name << ": " << run.lines[i].constData();
            ASSERT_TRUE(object.value("output").toString().startsWith("<m:oMathPara"))
                << name << ": " << i + 1;
        }
        EXPECT_TRUE(run.err.startsWith(QByteArray::number(formulas) + " inputs, 0 empty, "))
            << run.err.constData();
    }
}

// Two threads write exactly what one writes, for every corpus formula and for
// inputs whose conversion time varies a lot from line to line.
TEST(CliBatch, TwoThreadsWriteWhatOneWrites)
{
    QByteArray corpus;
    for (const char* name : {"arxiv-formulas.txt", "wikipedia-formulas.txt"}) {
        QFile file(QStringLiteral(FC_CORPUS_DIR "/") + QLatin1String(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << name;
        corpus += file.readAll();
    }
    const QByteArray uneven = "\n\n" + QByteArray("\\frac{a}{b}").repeated(3000) + "\nx\n\r\ny\n";
    const QByteArray firstLines = corpus.left(corpus.indexOf('\n', 20000));
    const std::pair<const char*, QByteArray> runs[] = {{"latex2omml", corpus + uneven},
                                                       {"latex2svg", firstLines + uneven}};
    for (const auto& [op, input] : runs) {
        const BatchRun one = runBatch({op, "--jobs", "1"}, input);
        const BatchRun two = runBatch({op, "--jobs", "2"}, input);
        EXPECT_EQ(one.exitCode, 0);
        int inputs = 0;
        for (const QByteArray& line : input.split('\n'))
            inputs += line.isEmpty() || line == "\r" ? 0 : 1;
        EXPECT_EQ(one.lines.size(), inputs) << op;
        EXPECT_TRUE(one.lines == two.lines) << op;
    }
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
    for (const QStringList& args :
         {QStringList{}, QStringList{"lint"}, QStringList{"wrap", "--jobs", "0"}, QStringList{"wrap", "TEXT"},
          QStringList{"wrap", "--bogus"}, QStringList{"wrap", "--jsonl", "--jobs"}}) {
        const BatchRun run = runBatch(args, "x\n");
        EXPECT_EQ(run.exitCode, 2) << args.join(' ').toStdString();
        EXPECT_TRUE(run.lines.isEmpty());
    }
}

} // namespace
