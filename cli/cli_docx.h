#pragma once
// The Word document commands: docx2latex, latex2docx and docx.

#include <QStringList>

bool isDocxCommand(const QString& op);
// Runs one of the document commands with the arguments after OP; returns the exit status.
int runDocxCommand(const QString& op, const QStringList& args);
