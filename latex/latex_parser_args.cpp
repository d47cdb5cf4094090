// Reading a command's arguments: the LaTeX arguments its signature lists, each mandatory one braced or
// a single atom as TeX reads it.

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

bool isUnitLetter(const Token& token)
{
    return token.kind == TokenKind::Char && token.text.size() == 1 && token.text.front().isLetter() &&
           token.text.front().unicode() < 0x80;
}

// A colour model or colour value as one text node, as the lexer delivers a colour name.
KLatexNodeList textNodes(const QString& text)
{
    KLatexNodeList nodes;
    if (!text.isEmpty())
        nodes.push_back(makeText(text));
    return nodes;
}

// An old font switch acts up to the end of its group: the closing brace, the end of a cell or a
// row, or the fence or environment end that closes the list it stands in.
bool endsSwitchScope(const Token& t)
{
    return t.kind == TokenKind::RBrace || t.kind == TokenKind::Ampersand || isCommandToken(t, "\\\\") ||
           isCommandToken(t, "cr") || isCommandToken(t, "end") || isCommandToken(t, "right") ||
           isCommandToken(t, "middle");
}

} // namespace

KLatexNodePtr KLatexParser::commandAlone()
{
    const Token& command = advance();
    QString name = command.starred ? command.text + QLatin1Char('*') : command.text;
    if (commandArgShape(name) == ArgShape::Unknown)
        return makeUnknownCommand(std::move(name));
    return makeCommand(std::move(name));
}

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
        parts.push_back(commandAlone()); // the length register, without arguments of its own
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

KLatexNodePtr KLatexParser::parseSwitchScope()
{
    return parseExprUntil(endsSwitchScope, false);
}

KLatexArgs KLatexParser::parseCommandArgs(const QString& name)
{
    const ArgShape shape = commandArgShape(name);
    // Missing mandatory arguments are reported with the codes of the command's shape; the commands of
    // the other shapes never were, and are not.
    auto missing = [&](int index) {
        switch (shape) {
        case ArgShape::OneArg:
            report(kError, QStringLiteral("E_arg_missing"), argMissing(name));
            break;
        case ArgShape::TwoArgs:
            if (index == 0)
                report(kError, QStringLiteral("E_arg1_missing"), arg1Missing(name));
            else
                report(kError, QStringLiteral("E_arg2_missing"), arg2Missing(name));
            break;
        case ArgShape::OptArgThenArg:
            report(kError, QStringLiteral("E_req_missing"), reqMissing(name));
            break;
        default:
            break;
        }
    };

    KLatexArgs args;
    // The lexer delivers a colour model and its value ("[rgb]{1,0,0}") as one token; the
    // value is the mandatory argument that follows the model.
    KLatexNodePtr pendingColourValue;
    int mandatory = 0;
    for (const char* letter = commandSignature(name); *letter; ++letter) {
        switch (*letter) {
        case 'm': {
            KLatexNodePtr argument =
                pendingColourValue ? std::move(pendingColourValue) : parseMandatoryArgument();
            if (argument)
                args.push_back(KLatexArg{false, std::move(argument)});
            else
                missing(mandatory);
            ++mandatory;
            break;
        }
        case 'o':
            if (KLatexNodePtr group = parseBracketGroupAsExpr()) {
                args.push_back(KLatexArg{true, std::move(group)});
            } else if (peek().kind == TokenKind::Char && peek().text.startsWith(QLatin1Char('['))) {
                const QString form = advance().text;
                const int close = int(form.indexOf(QLatin1Char(']')));
                args.push_back(KLatexArg{true, makeGroup(textNodes(form.mid(1, close - 1)))});
                if (close + 1 < form.size()) {
                    QString value = form.mid(close + 1);
                    if (value.startsWith(QLatin1Char('{')))
                        value.remove(0, 1);
                    if (value.endsWith(QLatin1Char('}')))
                        value.chop(1);
                    pendingColourValue = makeGroup(textNodes(value.trimmed()));
                }
            }
            break;
        case 's':
            if (peek().kind == TokenKind::LBrace)
                args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});
            else if (peek().kind == TokenKind::EndOfInput || endsSwitchScope(peek()))
                missing(mandatory);
            else
                args.push_back(KLatexArg{false, parseSwitchScope()});
            ++mandatory;
            break;
        case 'g':
            if (peek().kind == TokenKind::LBrace)
                args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});
            break;
        case 'd':
            if (KLatexNodePtr dimension = parseDimensionArgument())
                args.push_back(KLatexArg{false, std::move(dimension)});
            else
                missing(mandatory);
            ++mandatory;
            break;
        case 'c':
            if (peek().kind == TokenKind::LBrace) {
                args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});
            } else if (peek().kind == TokenKind::Command) {
                KLatexNodeList alone;
                alone.push_back(commandAlone());
                args.push_back(KLatexArg{false, makeGroup(std::move(alone))});
            }
            break;
        case 'p':
            while (peek().kind == TokenKind::Digit ||
                   (peek().kind == TokenKind::Char && peek().text == QLatin1String("#")))
                advance();
            break;
        case '=':
            if (peek().kind == TokenKind::Char && peek().text == QLatin1String("="))
                advance();
            break;
        default:
            break;
        }
    }
    return args;
}
