#pragma once
// The three lookup tables of the LaTeX-to-OMML conversion, built once on first use.

#include "latex2omml/ast2omml.h"

#include <QString>

#include <cstddef>
#include <vector>

struct KLatexSymbol {
    QString text;           // the character(s) the command stands for; may be empty
    CommandHandler command; // always set
    ScriptHandler script;   // set only for families that take their own limits
    // Non-zero for a command that takes the node after it as its last argument:
    // its argument count with that node included.
    std::size_t arity = 0;
};

struct KLatexEnvironment {
    QString delimiters; // opening and closing fence of a matrix, one fence for cases, or empty
    EnvironmentHandler handler;
};

const KLatexSymbol* lookupCommand(const QString& name);
const KLatexEnvironment* lookupEnvironment(const QString& name);
// The fence character for a \left/\right token, or null when the token is not a delimiter.
const QString* lookupDelimiter(const QString& token);

// Every key of each table, in the order of its data files.
std::vector<QString> commandTableKeys();
std::vector<QString> environmentTableKeys();
std::vector<QString> delimiterMapKeys();
