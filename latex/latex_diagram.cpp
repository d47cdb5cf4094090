// Commutative diagrams: \begin{CD} A @>f>> B \\ @VgVV @VVhV \\ C @>>k> D \end{CD}.
//
// The body is read onto a grid as TeX sets it: a row of objects holds the objects in the even
// columns and the horizontal arrows between them in the odd columns; a row of vertical arrows holds
// each arrow under an object, in the even columns. The arrows become the commands that draw the
// same thing: @>a>b> is \xrightarrow[b]{a}, @<<< \xleftarrow, @= a long equals sign, @VaVbV the
// label a, a tall \Big\downarrow and the label b, @AAA the same upwards, @| a tall double bar, and
// @. an empty place.

#include "latex/latex_parser.h"
#include "latex/parser_support.h"

namespace {

bool isCharToken(const Token& token, QChar c)
{
    return token.kind == TokenKind::Char && token.text.size() == 1 && token.text.front() == c;
}

bool isArrowKind(const Token& token)
{
    if (token.kind != TokenKind::Char || token.text.size() != 1)
        return false;
    switch (token.text.front().unicode()) {
    case u'>':
    case u'<':
    case u'V':
    case u'A':
    case u'=':
    case u'|':
    case u'.':
        return true;
    default:
        return false;
    }
}

bool isVerticalKind(QChar kind)
{
    return kind == QLatin1Char('V') || kind == QLatin1Char('A') || kind == QLatin1Char('|');
}

bool endsDiagramRow(const Token& token)
{
    return isCommandToken(token, "end") || isCommandToken(token, "\\\\");
}

bool isEmptyGroup(const KLatexNode* node)
{
    const auto* group = latexAs<KLatexGroup>(node);
    return !node || (group && group->children.empty());
}

KLatexNodePtr commandWith(const char* name, KLatexArgs args = {})
{
    return makeCommand(QString::fromLatin1(name), std::move(args));
}

// \Big followed by one delimiter command: a fence as tall as the arrows of a diagram.
KLatexNodePtr tallFence(const char* delimiter)
{
    KLatexNodeList inner;
    inner.push_back(commandWith(delimiter));
    KLatexArgs args;
    args.push_back(KLatexArg{false, makeGroup(std::move(inner))});
    return commandWith("Big", std::move(args));
}

struct KDiagramArrow {
    QChar kind;
    KLatexNodePtr node;
};

} // namespace

KLatexNodePtr KLatexParser::parseDiagramArrow(QChar kind)
{
    // A label runs up to the next kind letter of its arrow, outside braces.
    auto label = [this, kind]() {
        KLatexNodePtr text = parseExprUntil(
            [kind](const Token& t) { return isCharToken(t, kind) || endsDiagramRow(t); }, false);
        if (isCharToken(peek(), kind))
            advance();
        return text;
    };
    switch (kind.unicode()) {
    case u'>':
    case u'<': {
        KLatexNodePtr above = label();
        KLatexNodePtr below = label();
        KLatexArgs args;
        if (!isEmptyGroup(below.get()))
            args.push_back(KLatexArg{true, std::move(below)});
        if (!isEmptyGroup(above.get()) || !args.empty())
            args.push_back(KLatexArg{false, std::move(above)});
        return commandWith(kind == QLatin1Char('>') ? "xrightarrow" : "xleftarrow", std::move(args));
    }
    case u'V':
    case u'A': {
        KLatexNodePtr left = label();
        KLatexNodePtr right = label();
        KLatexNodeList parts;
        if (!isEmptyGroup(left.get()))
            parts.push_back(std::move(left));
        parts.push_back(tallFence(kind == QLatin1Char('V') ? "downarrow" : "uparrow"));
        if (!isEmptyGroup(right.get()))
            parts.push_back(std::move(right));
        return makeGroup(std::move(parts));
    }
    case u'=':
        return commandWith("xlongequal");
    case u'|':
        return tallFence("Vert");
    default:
        return makeGroup();
    }
}

KLatexNodePtr KLatexParser::parseCommutativeDiagram(const QString& name, KLatexArgs args)
{
    auto stop = [](const Token& t) { return isCharToken(t, QLatin1Char('@')) || endsDiagramRow(t); };
    KLatexNodeList rows;
    while (peek().kind != TokenKind::EndOfInput && !isCommand("end")) {
        // The pieces of one row: the text before, between and after the arrows.
        std::vector<KLatexNodePtr> pieces;
        std::vector<KDiagramArrow> arrows;
        KLatexNodeList current;
        for (;;) {
            KLatexNodePtr part = parseExprUntil(stop, false);
            if (auto* group = latexAs<KLatexGroup>(part.get())) {
                for (auto& child : group->children)
                    current.push_back(std::move(child));
            }
            if (!isCharToken(peek(), QLatin1Char('@')))
                break;
            const std::size_t next = std::size_t(m_position + 1);
            if (next < m_tokens.size() && isArrowKind(m_tokens[next])) {
                advance();
                const QChar kind = advance().text.front();
                pieces.push_back(makeGroup(std::move(current)));
                current = KLatexNodeList();
                arrows.push_back(KDiagramArrow{kind, parseDiagramArrow(kind)});
                continue;
            }
            // An @ that starts no arrow is an ordinary character.
            current.push_back(makeText(advance().text));
        }
        pieces.push_back(makeGroup(std::move(current)));

        bool vertical = false;
        bool onlyEmpty = !arrows.empty();
        for (const KDiagramArrow& arrow : arrows) {
            vertical = vertical || isVerticalKind(arrow.kind);
            onlyEmpty = onlyEmpty && arrow.kind == QLatin1Char('.');
        }
        if (onlyEmpty) {
            vertical = true;
            for (const KLatexNodePtr& piece : pieces)
                vertical = vertical && isEmptyGroup(piece.get());
        }

        KLatexNodeList cells;
        if (vertical) {
            // Each vertical arrow stands under an object; what is written between two of them
            // stays in the column between.
            for (std::size_t i = 0; i < arrows.size(); ++i) {
                if (i > 0)
                    cells.push_back(std::move(pieces[i]));
                KLatexNodeList cell;
                if (i == 0 && !isEmptyGroup(pieces[0].get()))
                    cell.push_back(std::move(pieces[0]));
                cell.push_back(std::move(arrows[i].node));
                cells.push_back(makeGroup(std::move(cell)));
            }
            if (!isEmptyGroup(pieces.back().get()))
                cells.push_back(std::move(pieces.back()));
        } else {
            for (std::size_t i = 0; i < pieces.size(); ++i) {
                cells.push_back(std::move(pieces[i]));
                if (i < arrows.size()) {
                    KLatexNodeList cell;
                    cell.push_back(std::move(arrows[i].node));
                    cells.push_back(makeGroup(std::move(cell)));
                }
            }
        }
        rows.push_back(makeRow(std::move(cells)));

        if (!isCommand("\\\\"))
            break;
        advance();
        parseBracketGroupAsExpr(); // the spacing of a line break does not change the grid
    }
    return closeEnvironment(name, std::move(args), std::move(rows));
}
