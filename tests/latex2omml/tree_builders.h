#pragma once
// Small builders for syntax trees written directly in tests.

#include "latex/latex_ast.h"

#include <utility>

namespace tree {

inline KLatexNodePtr text(const char* utf8)
{
    return makeText(utf8);
}

template <class... Nodes> KLatexNodeList list(Nodes&&... nodes)
{
    KLatexNodeList result;
    (result.push_back(std::forward<Nodes>(nodes)), ...);
    return result;
}

template <class... Nodes> KLatexNodePtr group(Nodes&&... nodes)
{
    return makeGroup(list(std::forward<Nodes>(nodes)...));
}

inline KLatexArg arg(KLatexNodePtr node, bool optional = false)
{
    return KLatexArg{optional, std::move(node)};
}

template <class... Args> KLatexNodePtr command(const char* name, Args&&... args)
{
    KLatexArgs list;
    (list.push_back(std::forward<Args>(args)), ...);
    return makeCommand(QString::fromUtf8(name), std::move(list));
}

// A braced argument holding a group of the given nodes, as the parser builds it.
template <class... Nodes> KLatexArg braced(Nodes&&... nodes)
{
    return arg(group(std::forward<Nodes>(nodes)...));
}

inline KLatexNodePtr sup(KLatexNodePtr base, KLatexNodePtr superscript)
{
    return makeScript(std::move(base), std::move(superscript), nullptr);
}

inline KLatexNodePtr sub(KLatexNodePtr base, KLatexNodePtr subscript)
{
    return makeScript(std::move(base), nullptr, std::move(subscript));
}

inline KLatexNodePtr subSup(KLatexNodePtr base, KLatexNodePtr subscript, KLatexNodePtr superscript)
{
    return makeScript(std::move(base), std::move(superscript), std::move(subscript));
}

inline KLatexNodePtr leftRight(const char* left, const char* right, KLatexNodePtr body)
{
    return makeLeftRight(QString::fromUtf8(left), QString::fromUtf8(right), std::move(body), true);
}

inline KLatexNodePtr unknown(const char* name)
{
    return makeUnknownCommand(QString::fromUtf8(name));
}

} // namespace tree
