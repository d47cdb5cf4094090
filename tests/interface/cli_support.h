#pragma once
// Runs the built formulaconv tool as a user would and collects what it wrote.

#include <QByteArray>
#include <QProcess>
#include <QStringList>

struct CliResult {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

inline CliResult runCli(const QStringList& args, const QByteArray& stdinText = {})
{
    QProcess process;
    process.start(QString::fromUtf8(FC_BINARY_DIR) + QStringLiteral("/formulaconv"), args);
    process.write(stdinText);
    process.closeWriteChannel();
    process.waitForFinished(60000);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}
