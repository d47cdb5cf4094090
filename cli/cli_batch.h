#pragma once
// `formulaconv batch OP`: one conversion over many inputs, one per line in (plain text,
// or JSON Lines with --jsonl), JSON Lines out.

#include <QIODevice>
#include <QString>
#include <QTextStream>

#include <functional>

struct BatchOptions {
    int jobs = 1;          // worker threads
    bool progress = false; // show a progress line on the error stream
    bool jsonl = false;    // each line is JSON (an object with "input", or a string)
};

// One conversion; called from several threads at once.
using BatchConversion = std::function<QString(const QString& input)>;

// Reads the lines of `in` as they come, converts the inputs on `jobs` threads and
// writes one JSON object per input line to `out`, in input order. Only a bounded
// number of inputs is held at a time, so memory does not grow with the input.
// Returns the exit code.
int runBatch(QIODevice& in, QTextStream& out, QTextStream& err, const BatchOptions& options,
             const BatchConversion& convert);
