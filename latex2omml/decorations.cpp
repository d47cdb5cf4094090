// Placeholder definitions until this family is implemented.
#include "latex2omml/handlers.h"

KOmmlNodeList accent(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList underAccent(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList bar(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList negation(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList cancel(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList overGroup(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList underGroup(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}

KOmmlNodeList extensibleArrow(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}
