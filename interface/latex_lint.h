#pragma once
// The diagnostics of reading LaTeX, for the lint tools of the command line and the C library:
// what the lexer, the macro expander and the parser report, followed by a warning for each
// command and environment that the converter does not know.

#include "latex/latex_ast.h"

#include <QStringView>

LatexDiagnostics lintLatex(QStringView latex);
