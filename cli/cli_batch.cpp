#include "cli/cli_batch.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <atomic>
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

std::vector<BatchItem> readItems(QIODevice& in, bool jsonl)
{
    std::vector<BatchItem> items;
    const QList<QByteArray> lines = in.readAll().split('\n');
    for (int i = 0; i < lines.size(); ++i) {
        QByteArray line = lines.at(i);
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        if (jsonl) {
            items.push_back(parseJsonLine(line, i + 1));
        } else {
            // A plain line is the input as it stands, whatever its first character.
            BatchItem item;
            item.id = QByteArray::number(i + 1);
            item.input = QString::fromUtf8(line);
            items.push_back(std::move(item));
        }
    }
    return items;
}

} // namespace

int runBatch(QIODevice& in, QTextStream& out, QTextStream& err, const BatchOptions& options,
             const BatchConversion& convert)
{
    const std::vector<BatchItem> items = readItems(in, options.jsonl);
    const int total = int(items.size());
    std::vector<std::optional<QString>> results(items.size());
    std::atomic<int> next{0};
    std::mutex mutex;
    std::condition_variable finished;

    // Workers take inputs in order; the writer below prints each result as soon as
    // every earlier one is out, so memory stays bounded by how far workers run ahead.
    auto work = [&] {
        for (int i = next++; i < total; i = next++) {
            QString output = items[i].error.isEmpty() ? convert(items[i].input) : QString();
            {
                std::lock_guard<std::mutex> lock(mutex);
                results[i] = std::move(output);
            }
            finished.notify_one();
        }
    };
    const int jobs = std::clamp(options.jobs, 1, std::max(1, total));
    std::vector<std::thread> workers;
    for (int j = 0; j < jobs; ++j)
        workers.emplace_back(work);

    QElapsedTimer timer;
    timer.start();
    qint64 lastProgress = 0;
    int empty = 0;
    for (int i = 0; i < total; ++i) {
        QString output;
        {
            std::unique_lock<std::mutex> lock(mutex);
            finished.wait(lock, [&] { return results[i].has_value(); });
            output = std::move(*results[i]);
            results[i].reset();
        }
        if (output.isEmpty())
            ++empty;
        out << QString::fromUtf8(resultLine(items[i], output)) << '\n';
        if (options.progress && timer.elapsed() - lastProgress >= 200) {
            lastProgress = timer.elapsed();
            err << QStringLiteral("\r%1/%2 done, %3 inputs/s")
                       .arg(i + 1)
                       .arg(total)
                       .arg((i + 1) * 1000.0 / std::max<qint64>(1, lastProgress), 0, 'f', 0);
            err.flush();
        }
    }
    for (std::thread& worker : workers)
        worker.join();
    out.flush();

    const double seconds = timer.nsecsElapsed() / 1e9;
    if (options.progress)
        err << '\r';
    err << QStringLiteral("%1 inputs, %2 empty, %3 s, %4 inputs/s\n")
               .arg(total)
               .arg(empty)
               .arg(seconds, 0, 'f', 2)
               .arg(seconds > 0 ? total / seconds : 0.0, 0, 'f', 0);
    return 0;
}
