#pragma once
// Macros that the input defines: \def, \gdef, \edef, \xdef, \let, \newcommand, \renewcommand,
// \providecommand and \DeclareMathOperator(*). The expander runs between the lexer and the parser:
// it takes the definitions out of the token list and replaces every use of a defined name by its
// body, the parameters #1..#9 filled with the arguments of that use.
//
// Expansion is bounded twice, so that no input loops or grows without limit: an expansion nested
// more than kMaxDepth uses deep, or one that would take the tokens produced past kMaxTokens, is not
// made; its name is dropped and the first time each bound is hit it is reported.

#include "latex/latex_ast.h"

#include <vector>

class KMacroExpander {
public:
    static constexpr int kMaxDepth = 64;
    static constexpr int kMaxTokens = 200000;

    explicit KMacroExpander(LatexDiagnostics& diagnostics) : m_diagnostics(diagnostics) {}

    // The tokens with definitions taken out and uses expanded. A list without definitions comes
    // back unchanged.
    std::vector<Token> expand(std::vector<Token> tokens);

private:
    struct KMacro;
    struct KPending;
    class KRun;

    LatexDiagnostics& m_diagnostics;
};
