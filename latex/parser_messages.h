#pragma once
// Codes and English texts of the parser's diagnostics. Severity follows the code's
// prefix: "W_" warning (1), "E_" error (2), "F_" fatal (3).

#include <QString>

namespace latexmsg {

constexpr int kWarning = 1;
constexpr int kError = 2;
constexpr int kFatal = 3;

inline QString leftDelim(const QString& got)
{
    return QStringLiteral("\\left expects a delimiter; got '%1'. Using '.'.").arg(got);
}
inline QString rightDelim(const QString& got)
{
    return QStringLiteral("\\right expects a delimiter; got '%1'. Using '.'.").arg(got);
}
inline QString unexpectedToken()
{
    return QStringLiteral("Unexpected token while parsing expression.");
}
inline QString buildrelOver()
{
    return QStringLiteral("\\buildrel expects \\over.");
}
inline QString expectedLBrace()
{
    return QStringLiteral("Expected '{'.");
}
inline QString missingRBrace()
{
    return QStringLiteral("Missing '}'.");
}
inline QString missingRBracket()
{
    return QStringLiteral("Missing ']'.");
}
inline QString missingRight()
{
    return QStringLiteral("Missing \\right.");
}
inline QString missingScriptArg()
{
    return QStringLiteral("Missing superscript/subscript argument.");
}
inline QString nestingOverflow()
{
    return QStringLiteral("Maximum nesting depth exceeded.");
}
inline QString argMissing(const QString& name)
{
    return QStringLiteral("\\%1 expects one argument.").arg(name);
}
inline QString arg1Missing(const QString& name)
{
    return QStringLiteral("\\%1 missing first argument.").arg(name);
}
inline QString arg2Missing(const QString& name)
{
    return QStringLiteral("\\%1 missing second argument.").arg(name);
}
inline QString reqMissing(const QString& name)
{
    return QStringLiteral("\\%1 missing required argument.").arg(name);
}
inline QString beginNeedName()
{
    return QStringLiteral("\\begin must be followed by {name}.");
}
inline QString envNameChar()
{
    return QStringLiteral("Unexpected char in environment name; ignoring.");
}
inline QString missingRBraceAfterBegin()
{
    return QStringLiteral("Missing '}' after \\begin{name}.");
}
inline QString missingRBraceAfterEnd()
{
    return QStringLiteral("Missing '}' after \\end{name}.");
}
inline QString endNeedName()
{
    return QStringLiteral("\\end must be followed by {name}.");
}
inline QString missingEnd(const QString& name)
{
    return QStringLiteral("Missing \\end{%1}.").arg(name);
}
inline QString envMismatch(const QString& closing, const QString& opening)
{
    return QStringLiteral("\\end{%1} mismatched (expect %2).").arg(closing, opening);
}

inline QString macroDepth(const QString& name)
{
    return QStringLiteral("Macro expansion nested too deeply; \\%1 not expanded.").arg(name);
}
inline QString macroGrowth(const QString& name)
{
    return QStringLiteral("Macro expansion produced too many tokens; \\%1 not expanded.").arg(name);
}

} // namespace latexmsg
