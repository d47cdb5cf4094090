// Placeholder rules: each kind lays out as its content alone until its own rule
// replaces the function here. Delete a function when its real rule lands.

#include "render/layout_engine.h"

namespace {

KTypoNodePtr contentOnly(const KLayoutContext& context, const KOmmlNodeList& list)
{
    return layoutList(context, list);
}

} // namespace

KTypoNodePtr layoutDelimiter(const KLayoutContext& c, const ODelimiter& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutAccent(const KLayoutContext& c, const OAccent& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutBar(const KLayoutContext& c, const OBar& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutBorderBox(const KLayoutContext& c, const OBorderBox& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutGroupChar(const KLayoutContext& c, const OGroupChar& e)
{
    return contentOnly(c, e.e);
}
KTypoNodePtr layoutMatrix(const KLayoutContext&, const OMatrix&)
{
    return nullptr;
}
KTypoNodePtr layoutEquationArray(const KLayoutContext&, const OEquationArray&)
{
    return nullptr;
}
