#pragma once
// How many arguments a control word takes, and of which kind. The table also
// decides the node kind: a name missing from it becomes a KLatexUnknownCommand.

#include <QString>

#include <cstdint>

enum class ArgShape : int32_t {
    NoArgs = 0,        // nothing
    OneArg = 1,        // {..}
    TwoArgs = 2,       // {..}{..}
    OptArgThenArg = 3, // optional [..], then {..}
    Special = 4,       // optional [..], then optional {..}, never a diagnostic
    Unknown = 5,       // as Special; the answer for a name missing from the table
};

// Exact, case-sensitive lookup; a starred control word is looked up with its "*".
ArgShape commandArgShape(const QString& name);

// The arguments the command reads, one letter each, as listed in command_signatures.inc: the LaTeX
// arguments of the command, derived from its shape unless listed there.
const char* commandSignature(const QString& name);

// Number of distinct names in the table.
int commandArgTableSize();
