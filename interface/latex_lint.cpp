#include "interface/latex_lint.h"

#include "latex/command_args.h"
#include "latex/latex_lexer.h"
#include "latex/latex_parser.h"
#include "latex/macro_expander.h"
#include "latex2omml/tables.h"

#include <vector>

namespace {

bool isKnownCommand(const QString& name)
{
    return commandArgShape(name) != ArgShape::Unknown || lookupCommand(name) != nullptr;
}

// The name of the environment that `\begin` at index `at` opens, read from the Char tokens between
// its braces, or empty when no braced name follows.
QString environmentName(const std::vector<Token>& tokens, std::size_t at)
{
    std::size_t i = at + 1;
    if (i >= tokens.size() || tokens[i].kind != TokenKind::LBrace)
        return QString();
    QString name;
    for (++i; i < tokens.size() && tokens[i].kind == TokenKind::Char; ++i)
        name += tokens[i].text;
    return i < tokens.size() && tokens[i].kind == TokenKind::RBrace ? name : QString();
}

// A warning for every command and environment that the converter does not know, in the order of
// the source, so that what shows as its name (or keeps only its content) can be found.
void reportUnknownNames(const std::vector<Token>& tokens, LatexDiagnostics& diagnostics)
{
    constexpr int kWarning = 1;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Token& token = tokens[i];
        if (token.kind != TokenKind::Command)
            continue;
        const QString name = token.starred ? token.text + QLatin1Char('*') : token.text;
        if (name == QLatin1String("begin")) {
            const QString environment = environmentName(tokens, i);
            if (!environment.isEmpty() && !lookupEnvironment(environment))
                diagnostics.push_back(LatexDiagnostic{
                    kWarning, token.pos, token.len, QStringLiteral("W_unknown_environment"),
                    QStringLiteral("Unknown environment %1; its content is kept.").arg(environment)});
            continue;
        }
        // A backslash that ends the input has a warning of its own.
        if (name != QLatin1String("\\") && !isKnownCommand(name))
            diagnostics.push_back(
                LatexDiagnostic{kWarning, token.pos, token.len, QStringLiteral("W_unknown_command"),
                                QStringLiteral("Unknown command \\%1; it shows as its name.").arg(name)});
    }
}

} // namespace

LatexDiagnostics lintLatex(QStringView latex)
{
    // As parseLatex reads the source, keeping the expanded tokens to look the names up in.
    KLatexLexer lexer(latex);
    KLatexLexResult lexed = lexer.tokenize();
    LatexDiagnostics diagnostics = std::move(lexed.diagnostics);
    const std::vector<Token> tokens = KMacroExpander(diagnostics).expand(std::move(lexed.tokens));
    KLatexParser parser(tokens, diagnostics);
    parser.parseDocument();
    reportUnknownNames(tokens, diagnostics);
    return diagnostics;
}
