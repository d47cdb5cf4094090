#include "cli/cli_inspect.h"

int runAst(const QString&, QTextStream&, QTextStream& err)
{
    err << "formulaconv: ast: not available yet\n";
    return 2;
}

int runLint(const QString&, bool, QTextStream&, QTextStream& err)
{
    err << "formulaconv: lint: not available yet\n";
    return 2;
}
