// \begin{name} ... \end{name}, and the plain-TeX matrix commands.

#include "latex/latex_env.h"
#include "latex/latex_parser.h"
#include "latex/parser_messages.h"
#include "latex/parser_support.h"

using namespace latexmsg;

namespace {

bool endsCell(const Token& token)
{
    return isCommandToken(token, "end") || isCommandToken(token, "\\\\") ||
           token.kind == TokenKind::Ampersand;
}

bool endsMatrixCell(const Token& token)
{
    return token.kind == TokenKind::Ampersand || token.kind == TokenKind::RBrace ||
           isCommandToken(token, "cr") || isCommandToken(token, "\\\\");
}

} // namespace

const QStringList& knownEnvironments()
{
    static const QStringList names = {
        QStringLiteral("cases"),        QStringLiteral("dcases"),   QStringLiteral("rcases"),
        QStringLiteral("matrix"),       QStringLiteral("pmatrix"),  QStringLiteral("bmatrix"),
        QStringLiteral("vmatrix"),      QStringLiteral("Vmatrix"),  QStringLiteral("smallmatrix"),
        QStringLiteral("array"),        QStringLiteral("pmatrix*"), QStringLiteral("bmatrix*"),
        QStringLiteral("vmatrix*"),     QStringLiteral("Vmatrix*"), QStringLiteral("matrix*"),
        QStringLiteral("aligned"),      QStringLiteral("align"),    QStringLiteral("align*"),
        QStringLiteral("alignat"),      QStringLiteral("alignat*"), QStringLiteral("alignedat"),
        QStringLiteral("gather"),       QStringLiteral("gather*"),  QStringLiteral("split"),
        QStringLiteral("flalign"),      QStringLiteral("flalign*"), QStringLiteral("eqnarray"),
        QStringLiteral("eqnarray*"),    QStringLiteral("gathered"), QStringLiteral("smallpmatrix"),
        QStringLiteral("smallbmatrix"),
    };
    return names;
}

bool isKnownEnvironment(const QString& name)
{
    return knownEnvironments().contains(name);
}

QString KLatexParser::readEnvironmentName(bool warn)
{
    QString name;
    while (peek().kind != TokenKind::RBrace && peek().kind != TokenKind::EndOfInput) {
        if (peek().kind == TokenKind::Char)
            name.append(peek().text);
        else if (warn)
            report(kWarning, QStringLiteral("W_envname_char"), envNameChar());
        advance();
    }
    return name;
}

KLatexNodePtr KLatexParser::parseEnv()
{
    if (peek().kind != TokenKind::LBrace) {
        report(kError, QStringLiteral("E_begin_need_name"), beginNeedName());
        return makeCommand(QStringLiteral("begin"));
    }
    advance();
    const QString name = readEnvironmentName(true);
    if (peek().kind == TokenKind::RBrace)
        advance();
    else
        report(kError, QStringLiteral("E_missing_rbrace"), missingRBraceAfterBegin());

    // A brace group right after \begin{name} is taken as an argument even when it
    // was meant as the start of the body.
    KLatexArgs args;
    if (KLatexNodePtr optional = parseBracketGroupAsExpr())
        args.push_back(KLatexArg{true, std::move(optional)});
    while (peek().kind == TokenKind::LBrace)
        args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});

    if (isKnownEnvironment(name))
        return parseAlignedEnvBody(name, std::move(args));

    KLatexNodeList body;
    body.push_back(parseExprUntil([](const Token& t) { return isCommandToken(t, "end"); }, false));
    return closeEnvironment(name, std::move(args), std::move(body));
}

KLatexNodePtr KLatexParser::parseAlignedEnvBody(const QString& name, KLatexArgs args)
{
    KLatexNodeList rows;
    KLatexNodeList cells;
    while (peek().kind != TokenKind::EndOfInput) {
        cells.push_back(parseExprUntil(endsCell, false));
        if (peek().kind == TokenKind::Ampersand) {
            advance();
            continue;
        }
        if (isCommand("\\\\")) {
            advance();
            if (KLatexNodePtr spacing = parseBracketGroupAsExpr()) {
                KLatexArgs lineBreakArgs;
                lineBreakArgs.push_back(KLatexArg{true, std::move(spacing)});
                cells.push_back(makeCommand(QStringLiteral("\\\\"), std::move(lineBreakArgs)));
            }
            rows.push_back(makeRow(std::move(cells)));
            cells = KLatexNodeList();
            continue;
        }
        break;
    }
    if (!cells.empty())
        rows.push_back(makeRow(std::move(cells)));
    return closeEnvironment(name, std::move(args), std::move(rows));
}

KLatexNodePtr KLatexParser::closeEnvironment(const QString& name, KLatexArgs args, KLatexNodeList body)
{
    if (!isCommand("end")) {
        report(kError, QStringLiteral("E_missing_end"), missingEnd(name));
        return makeEnvironment(name, std::move(args), std::move(body));
    }
    advance();
    if (peek().kind != TokenKind::LBrace) {
        report(kError, QStringLiteral("E_end_need_name"), endNeedName());
        return makeEnvironment(name, std::move(args), std::move(body));
    }
    advance();
    const QString closing = readEnvironmentName(false);
    if (peek().kind == TokenKind::RBrace)
        advance();
    else
        report(kError, QStringLiteral("E_missing_rbrace"), missingRBraceAfterEnd());
    if (closing != name)
        report(kError, QStringLiteral("E_env_mismatch"), envMismatch(closing, name));
    return makeEnvironment(name, std::move(args), std::move(body));
}

KLatexNodePtr KLatexParser::parsePlainMatrix(const QString& name)
{
    if (peek().kind != TokenKind::LBrace)
        return makeCommand(name);
    advance();
    KLatexNodeList rows = parseMatrixBody();
    if (peek().kind == TokenKind::RBrace)
        advance();
    else
        report(kError, QStringLiteral("E_missing_rbrace"), missingRBrace());
    KLatexArgs args;
    args.push_back(KLatexArg{false, makeGroup(std::move(rows))});
    return makeCommand(name, std::move(args));
}

KLatexNodeList KLatexParser::parseMatrixBody()
{
    KLatexNodeList rows;
    KLatexNodeList cells;
    while (peek().kind != TokenKind::EndOfInput && peek().kind != TokenKind::RBrace) {
        cells.push_back(parseExprUntil(endsMatrixCell, false));
        if (peek().kind == TokenKind::Ampersand) {
            advance();
            continue;
        }
        if (isCommand("cr") || isCommand("\\\\")) {
            advance();
            rows.push_back(makeRow(std::move(cells)));
            cells = KLatexNodeList();
            continue;
        }
        break;
    }
    if (!cells.empty())
        rows.push_back(makeRow(std::move(cells)));
    return rows;
}
