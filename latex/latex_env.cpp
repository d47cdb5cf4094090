// \begin{name} ... \end{name}, and the plain-TeX matrix commands.

#include "latex/latex_env.h"
#include "latex/latex_parser.h"
#include "latex/parser_messages.h"
#include "latex/parser_support.h"

#include <QHash>

using namespace latexmsg;

namespace {

bool endsCell(const Token& token)
{
    return isCommandToken(token, "end") || isCommandToken(token, "\\\\") ||
           token.kind == TokenKind::Ampersand;
}

// The arguments an environment takes in LaTeX: 'o' an optional [..], 'm' a brace group.
const char* environmentSignature(const QString& name)
{
    static const QHash<QString, const char*> signatures = {
        {QStringLiteral("array"), "om"},   // [t|b|c]{column spec}
        {QStringLiteral("subarray"), "m"}, // {column spec}
        {QStringLiteral("tabular"), "om"}, {QStringLiteral("darray"), "om"},
        {QStringLiteral("alignat"), "m"},  // {column pairs}
        {QStringLiteral("alignat*"), "m"},   {QStringLiteral("xalignat"), "m"},
        {QStringLiteral("xalignat*"), "m"},  {QStringLiteral("xxalignat"), "m"},
        {QStringLiteral("alignedat"), "om"}, // [t|b|c]{column pairs}
        {QStringLiteral("aligned"), "o"},    // [t|b|c]
        {QStringLiteral("gathered"), "o"},   // [t|b|c]
        {QStringLiteral("matrix*"), "o"},    // [column alignment]
        {QStringLiteral("pmatrix*"), "o"},   {QStringLiteral("bmatrix*"), "o"},
        {QStringLiteral("Bmatrix*"), "o"},   {QStringLiteral("vmatrix*"), "o"},
        {QStringLiteral("Vmatrix*"), "o"},   {QStringLiteral("smallmatrix*"), "o"},
    };
    return signatures.value(name, "");
}

// A body read as rows whose only row holds one cell and no line break is the body of an
// environment that is not a table (equation, or one we do not know): it stays one group.
KLatexNodeList collapseSingleCell(KLatexNodeList rows)
{
    if (rows.size() != 1)
        return rows;
    auto* row = latexAs<KLatexRow>(rows.front().get());
    if (!row || row->cells.size() != 1)
        return rows;
    KLatexNodeList body;
    body.push_back(std::move(row->cells.front()));
    return body;
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

    // Only the environments that take arguments in LaTeX read them; anything else after \begin{name},
    // a brace group included (\begin{matrix}{5}&{0}\end{matrix}), is the body.
    KLatexArgs args;
    for (const char* letter = environmentSignature(name); *letter; ++letter) {
        if (*letter == 'o') {
            if (KLatexNodePtr optional = parseBracketGroupAsExpr())
                args.push_back(KLatexArg{true, std::move(optional)});
        } else if (peek().kind == TokenKind::LBrace) {
            // Without braces the column layout is left to the body, so no cell is lost.
            args.push_back(KLatexArg{false, parseBraceGroupAsExpr()});
        }
    }

    if (isKnownEnvironment(name))
        return parseAlignedEnvBody(name, std::move(args));
    if (name == QLatin1String("CD"))
        return parseCommutativeDiagram(name, std::move(args));

    // Any other environment keeps the cells and rows its body is written in; a body without
    // them is one group.
    KLatexNodeList body = collapseSingleCell(readRows());
    return closeEnvironment(name, std::move(args), std::move(body));
}

KLatexNodePtr KLatexParser::parseAlignedEnvBody(const QString& name, KLatexArgs args)
{
    KLatexNodeList rows = readRows();
    return closeEnvironment(name, std::move(args), std::move(rows));
}

KLatexNodeList KLatexParser::readRows()
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
    return rows;
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
