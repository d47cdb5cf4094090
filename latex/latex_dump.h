#pragma once
// A readable dump of the LaTeX syntax tree: one node per line, two spaces of
// indentation per level, strings as JSON string literals.

#include "latex/latex_ast.h"

#include <QString>

// The dump of a whole tree, each line ending in '\n'. A null root dumps as "null".
QString dumpLatexTree(const KLatexNode* root);

// text as a JSON string literal: quotes, backslashes and control characters
// escaped, every other character as it is.
QString jsonQuote(const QString& text);
