#include "cli/cli_batch.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace {

// One non-empty line of the input: what to convert, or why it cannot be.
struct BatchItem {
    QByteArray id; // JSON text of the id
    QString input;
    QString error; // set when the line is not valid JSON
};

QByteArray jsonText(const QJsonValue& value)
{
    // QJsonDocument only serialises arrays and objects; strip the array around the value.
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}

// A line read as JSON: an object with a string "input" and an optional "id", or a
// bare JSON string.
BatchItem parseJsonLine(const QByteArray& line, int lineNumber)
{
    BatchItem item;
    item.id = QByteArray::number(lineNumber);
    // Wrapping the line in an array lets one parser accept both forms.
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson('[' + line + ']', &error);
    if (error.error != QJsonParseError::NoError || document.array().size() != 1) {
        item.error = QStringLiteral("invalid JSON: %1")
                         .arg(error.error != QJsonParseError::NoError ? error.errorString()
                                                                      : QStringLiteral("not one value"));
        return item;
    }
    const QJsonValue value = document.array().at(0);
    if (value.isString()) {
        item.input = value.toString();
        return item;
    }
    if (!value.isObject()) {
        item.error = QStringLiteral("a line must be a JSON object or string");
        return item;
    }
    const QJsonObject object = value.toObject();
    if (object.contains(QLatin1String("id")))
        item.id = jsonText(object.value(QLatin1String("id")));
    if (!object.value(QLatin1String("input")).isString())
        item.error = QStringLiteral("\"input\" must be a string");
    else
        item.input = object.value(QLatin1String("input")).toString();
    return item;
}

QByteArray resultLine(const BatchItem& item, const QString& output)
{
    QByteArray line = "{\"id\":" + item.id;
    if (!item.error.isEmpty())
        return line + ",\"ok\":false,\"error\":" + jsonText(item.error) + '}';
    line += output.isEmpty() ? ",\"ok\":false" : ",\"ok\":true";
    return line + ",\"output\":" + jsonText(output) + '}';
}

// Reads the input one line at a time, so that memory does not grow with its length.
class KBatchLineReader {
public:
    KBatchLineReader(QIODevice& in, bool jsonl) : m_in(in), m_jsonl(jsonl) {}

    // The next non-empty line as an item, or nothing at the end of the input.
    std::optional<BatchItem> next()
    {
        while (!m_in.atEnd()) {
            QByteArray line = m_in.readLine();
            ++m_lineNumber;
            if (line.endsWith('\n'))
                line.chop(1);
            if (line.endsWith('\r'))
                line.chop(1);
            if (line.isEmpty())
                continue;
            if (m_jsonl)
                return parseJsonLine(line, m_lineNumber);
            // A plain line is the input as it stands, whatever its first character.
            BatchItem item;
            item.id = QByteArray::number(m_lineNumber);
            item.input = QString::fromUtf8(line);
            return item;
        }
        return std::nullopt;
    }

private:
    QIODevice& m_in;
    bool m_jsonl;
    int m_lineNumber = 0;
};

// Inputs read ahead of the output per worker: enough to keep every worker busy
// while the writer waits for the oldest result, few enough that memory stays flat.
constexpr int kWindowPerJob = 32;

} // namespace

int runBatch(QIODevice& in, QTextStream& out, QTextStream& err, const BatchOptions& options,
             const BatchConversion& convert)
{
    // The inputs in flight sit in a ring: the reader fills it at the back, the
    // workers take them in order and each puts its whole result line in its slot,
    // and the writer prints the front slot once it is done and frees it.
    struct Slot {
        BatchItem item;
        QByteArray line;
        bool empty = false; // no result
        bool done = false;
    };
    const int jobs = std::max(1, options.jobs);
    const qint64 window = qint64(jobs) * kWindowPerJob;
    std::vector<Slot> ring(static_cast<size_t>(window));
    qint64 front = 0; // oldest input not yet written
    qint64 back = 0;  // next input to read
    qint64 taken = 0; // next input for a worker
    bool endOfInput = false;
    std::mutex mutex;
    std::condition_variable workReady;
    std::condition_variable resultReady;
    const auto slot = [&](qint64 index) -> Slot& { return ring[size_t(index % window)]; };

    auto work = [&] {
        for (;;) {
            std::unique_lock<std::mutex> lock(mutex);
            workReady.wait(lock, [&] { return taken < back || endOfInput; });
            if (taken == back)
                return;
            Slot& mine = slot(taken++);
            lock.unlock();
            // The slot is not reused before its result is written, so it is read unlocked.
            const QString output = mine.item.error.isEmpty() ? convert(mine.item.input) : QString();
            QByteArray line = resultLine(mine.item, output);
            lock.lock();
            mine.line = std::move(line);
            mine.empty = output.isEmpty();
            mine.done = true;
            lock.unlock();
            resultReady.notify_one();
        }
    };
    std::vector<std::thread> workers;
    for (int j = 0; j < jobs; ++j)
        workers.emplace_back(work);

    // Result lines go to the device under the stream as bytes when there is one.
    QIODevice* const device = out.device();
    QElapsedTimer timer;
    timer.start();
    qint64 lastProgress = 0;
    qint64 written = 0;
    qint64 empty = 0;
    KBatchLineReader reader(in, options.jsonl);
    for (;;) {
        // Read ahead while the window has room; reading happens outside the lock.
        while (!endOfInput && back - front < window) {
            std::optional<BatchItem> item = reader.next();
            std::lock_guard<std::mutex> lock(mutex);
            if (!item) {
                endOfInput = true;
                workReady.notify_all();
                break;
            }
            Slot& fresh = slot(back);
            fresh.item = std::move(*item);
            fresh.line.clear();
            fresh.done = false;
            ++back;
            workReady.notify_one();
        }
        if (front == back)
            break;
        QByteArray line;
        {
            std::unique_lock<std::mutex> lock(mutex);
            resultReady.wait(lock, [&] { return slot(front).done; });
            Slot& oldest = slot(front);
            line = std::move(oldest.line);
            empty += oldest.empty ? 1 : 0;
            oldest.item = BatchItem();
            ++front;
        }
        line += '\n';
        if (device)
            device->write(line);
        else
            out << QString::fromUtf8(line);
        ++written;
        if (options.progress && timer.elapsed() - lastProgress >= 200) {
            lastProgress = timer.elapsed();
            err << QStringLiteral("\r%1 done, %2 inputs/s")
                       .arg(written)
                       .arg(written * 1000.0 / std::max<qint64>(1, lastProgress), 0, 'f', 0);
            err.flush();
        }
    }
    for (std::thread& worker : workers)
        worker.join();
    out.flush(); // flushes the device too

    const double seconds = timer.nsecsElapsed() / 1e9;
    if (options.progress)
        err << '\r';
    err << QStringLiteral("%1 inputs, %2 empty, %3 s, %4 inputs/s\n")
               .arg(written)
               .arg(empty)
               .arg(seconds, 0, 'f', 2)
               .arg(seconds > 0 ? written / seconds : 0.0, 0, 'f', 0);
    return 0;
}
