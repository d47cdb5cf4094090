#pragma once
// Small helpers shared by the parser's source files; not part of the front end's interface.

#include "latex/latex_ast.h"

#include <QLatin1String>

inline bool isCommandToken(const Token& token, const char* name)
{
    return token.kind == TokenKind::Command && token.text == QLatin1String(name);
}

// Keeps a nesting counter right on every way out of a function.
class DepthScope {
public:
    explicit DepthScope(int& depth) : m_depth(depth) { ++m_depth; }
    ~DepthScope() { --m_depth; }
    DepthScope(const DepthScope&) = delete;
    DepthScope& operator=(const DepthScope&) = delete;

private:
    int& m_depth;
};
