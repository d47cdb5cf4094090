// Placeholder definitions until this family is implemented.
#include "latex2omml/handlers.h"

KOmmlNodeList mathFont(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList textFont(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList color(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList colorBox(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList box(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList space(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList modulo(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}
