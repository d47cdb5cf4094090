// Placeholder rules: each kind lays out as its content alone until its own rule
// replaces the function here. Delete a function when its real rule lands.

#include "render/layout_engine.h"

namespace {

KTypoNodePtr contentOnly(const KLayoutContext& context, const KOmmlNodeList& list)
{
    return layoutList(context, list);
}

} // namespace

KTypoNodePtr layoutRun(const KLayoutContext& context, const ORun&)
{
    return makeContainer(context);
}
KTypoNodePtr layoutFraction(const KLayoutContext& c, const OFraction& e)
{
    return contentOnly(c, e.num);
}
KTypoNodePtr layoutSuperscript(const KLayoutContext& c, const OSuperscript& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutSubscript(const KLayoutContext& c, const OSubscript& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutSubSuperscript(const KLayoutContext& c, const OSubSuperscript& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutNary(const KLayoutContext& c, const ONaryOperator& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutRadical(const KLayoutContext& c, const ORadical& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutFunction(const KLayoutContext& c, const OFunction& e)
{
    return contentOnly(c, e.fName);
}
KTypoNodePtr layoutLimitLower(const KLayoutContext& c, const OLimitLower& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutLimitUpper(const KLayoutContext& c, const OLimitUpper& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutBox(const KLayoutContext& c, const OBox& e)
{
    return contentOnly(c, e.e);
}
