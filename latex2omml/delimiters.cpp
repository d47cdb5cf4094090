// Placeholder definitions until this family is implemented.
#include "latex2omml/handlers.h"

KOmmlNodeList bigDelimiter(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList matrixCommand(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList matrixEnvironment(KLatexAst2Omml&, const KLatexEnv&)
{
    return {};
}

KOmmlNodeList casesEnvironment(KLatexAst2Omml&, const KLatexEnv&)
{
    return {};
}

KOmmlNodeList alignEnvironment(KLatexAst2Omml&, const KLatexEnv&)
{
    return {};
}
