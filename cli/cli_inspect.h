#pragma once
// Inspection commands of the formulaconv tool. Each returns the process exit code.

#include <QString>
#include <QTextStream>

// The syntax tree of LaTeX input, one node per line.
int runAst(const QString& latex, QTextStream& out, QTextStream& err);
// The lexer's and parser's diagnostics; json selects one JSON object per line.
int runLint(const QString& latex, bool json, QTextStream& out, QTextStream& err);
