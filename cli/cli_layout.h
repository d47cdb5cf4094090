#pragma once
// The `layout` inspection command: the typeset tree of a formula as JSON.

#include "render/typo_node.h"

#include <QString>
#include <QTextStream>

// The tree below `root` as one JSON object; `pretty` indents by two spaces.
QString typoTreeJson(const KTypoNode& root, bool pretty);

// Lays out LaTeX (or OMML when `omml`) at `size` points and prints the tree.
// Exit code 0 when a tree was printed, 1 when the input laid out to nothing.
int runLayout(const QString& input, bool omml, double size, bool pretty, QTextStream& out, QTextStream& err);
