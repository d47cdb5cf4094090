// Reading a command's arguments by the shape its table entry gives.

#include "latex/latex_parser.h"
#include "latex/parser_messages.h"

using namespace latexmsg;

KLatexArgs KLatexParser::parseCommandArgs(ArgShape shape, const QString& name)
{
    KLatexArgs args;
    // Only a braced argument counts: "\hat x" leaves x to be parsed as an atom of its own.
    auto tryMandatory = [&](const char* code, const QString& message) {
        if (peek().kind == TokenKind::LBrace) {
            if (KLatexNodePtr group = parseBraceGroupAsExpr()) {
                args.push_back(KLatexArg{false, std::move(group)});
                return;
            }
        }
        report(kError, QLatin1String(code), message);
    };
    auto tryOptional = [&] {
        if (KLatexNodePtr group = parseBracketGroupAsExpr())
            args.push_back(KLatexArg{true, std::move(group)});
    };

    switch (shape) {
    case ArgShape::NoArgs:
        break;
    case ArgShape::OneArg:
        tryMandatory("E_arg_missing", argMissing(name));
        break;
    case ArgShape::TwoArgs:
        tryMandatory("E_arg1_missing", arg1Missing(name));
        tryMandatory("E_arg2_missing", arg2Missing(name));
        break;
    case ArgShape::OptArgThenArg:
        tryOptional();
        tryMandatory("E_req_missing", reqMissing(name));
        break;
    case ArgShape::Special:
    case ArgShape::Unknown:
        tryOptional();
        if (peek().kind == TokenKind::LBrace)
            args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});
        break;
    }
    return args;
}
