// Reading a command's arguments by the shape its table entry gives.

#include "latex/latex_parser.h"
#include "latex/parser_messages.h"
#include "latex/parser_support.h"

using namespace latexmsg;

namespace {

// Whether a token can be an argument without braces. TeX takes the next token whatever it is; the
// tokens that end the list, the row or the cell the command stands in are left to that list, so that
// a missing argument is reported and the structure around it survives.
bool startsUnbracedArgument(const Token& token)
{
    switch (token.kind) {
    case TokenKind::Char:
    case TokenKind::Digit:
    case TokenKind::LBracket:
    case TokenKind::RBracket:
        return true;
    case TokenKind::Command:
        for (const char* name : {"right", "end", "\\\\", "cr", "over", "atop", "above", "choose"}) {
            if (isCommandToken(token, name))
                return false;
        }
        return true;
    default:
        return false;
    }
}

// The TeX primitives that read a dimension, not an argument: \kern3mu is three mu.
bool readsDimension(const QString& name)
{
    static const QLatin1String names[] = {QLatin1String("kern"), QLatin1String("mkern"),
                                          QLatin1String("hskip"), QLatin1String("mskip"),
                                          QLatin1String("vskip")};
    for (const QLatin1String& n : names) {
        if (name == n)
            return true;
    }
    return false;
}

bool isUnitLetter(const Token& token)
{
    return token.kind == TokenKind::Char && token.text.size() == 1 && token.text.front().isLetter() &&
           token.text.front().unicode() < 0x80;
}

} // namespace

KLatexNodePtr KLatexParser::parseDimensionArgument()
{
    if (peek().kind == TokenKind::LBrace)
        return parseBraceGroupAsExpr();
    // Signs, then a number and a two-letter unit, or a control sequence that holds a length
    // (\kern-\nulldelimiterspace).
    KLatexNodeList parts;
    auto take = [&] { parts.push_back(makeText(advance().text)); };
    while (peek().kind == TokenKind::Char &&
           (peek().text == QLatin1String("-") || peek().text == QLatin1String("+")))
        take();
    if (peek().kind == TokenKind::Command && startsUnbracedArgument(peek())) {
        // The length register alone, without arguments of its own.
        const Token& length = advance();
        QString name = length.starred ? length.text + QLatin1Char('*') : length.text;
        parts.push_back(commandArgShape(name) == ArgShape::Unknown ? makeUnknownCommand(std::move(name))
                                                                   : makeCommand(std::move(name)));
        return makeGroup(std::move(parts));
    }
    bool number = false;
    while (peek().kind == TokenKind::Digit ||
           (peek().kind == TokenKind::Char &&
            (peek().text == QLatin1String(".") || peek().text == QLatin1String(",")))) {
        number = true;
        take();
    }
    if (!number)
        return parts.empty() ? parseMandatoryArgument() : makeGroup(std::move(parts));
    if (isUnitLetter(peek()) && m_position + 1 < int(m_tokens.size()) &&
        isUnitLetter(m_tokens[std::size_t(m_position + 1)])) {
        take();
        take();
    }
    return makeGroup(std::move(parts));
}

KLatexNodePtr KLatexParser::parseMandatoryArgument()
{
    if (peek().kind == TokenKind::LBrace)
        return parseBraceGroupAsExpr();
    if (!startsUnbracedArgument(peek()))
        return nullptr;
    // One character, or one control sequence with the arguments it takes itself (\frac\alpha\beta,
    // \sqrt\frac12). Held in a group, as the same argument in braces would be.
    DepthScope scope(m_depth);
    if (m_depth > kMaxNestingDepth) {
        ++m_guardTrips;
        report(kFatal, QStringLiteral("F_nesting_overflow"), nestingOverflow());
        return makeGroup();
    }
    KLatexNodeList atom;
    if (KLatexNodePtr node = parseAtom())
        atom.push_back(std::move(node));
    return makeGroup(std::move(atom));
}

KLatexArgs KLatexParser::parseCommandArgs(ArgShape shape, const QString& name)
{
    KLatexArgs args;
    auto tryMandatory = [&](const char* code, const QString& message) {
        if (KLatexNodePtr argument = parseMandatoryArgument()) {
            args.push_back(KLatexArg{false, std::move(argument)});
            return;
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
        if (readsDimension(name)) {
            if (KLatexNodePtr dimension = parseDimensionArgument())
                args.push_back(KLatexArg{false, std::move(dimension)});
            else
                report(kError, QStringLiteral("E_arg_missing"), argMissing(name));
            break;
        }
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
