#include "latex/latex_parser.h"

#include "latex/latex_lexer.h"
#include "latex/macro_expander.h"
#include "latex/parser_messages.h"
#include "latex/parser_support.h"

using namespace latexmsg;

namespace {

// Operators that split the brace group they stand in into a numerator and a denominator.
bool isInfixFraction(const QString& name)
{
    static const QLatin1String names[] = {QLatin1String("over"),  QLatin1String("atop"),
                                          QLatin1String("above"), QLatin1String("choose"),
                                          QLatin1String("brace"), QLatin1String("brack")};
    for (const QLatin1String& n : names) {
        if (name == n)
            return true;
    }
    return false;
}

// True for a dimension such as "0pt" or "0.0em": its number is zero.
bool isZeroDimension(const KLatexNode* node)
{
    QString text;
    if (const auto* single = latexAs<KLatexText>(node))
        text = single->text;
    else if (const auto* group = latexAs<KLatexGroup>(node))
        for (const auto& child : group->children)
            if (const auto* part = latexAs<KLatexText>(child.get()))
                text += part->text;
    int end = 0;
    while (end < text.size() && (text.at(end).isDigit() || text.at(end) == QLatin1Char('.') ||
                                 text.at(end) == QLatin1Char('-') || text.at(end) == QLatin1Char('+')))
        ++end;
    bool ok = false;
    const double value = text.left(end).toDouble(&ok);
    return ok && value == 0.0;
}

// The plain-TeX matrix commands that take their rows in one brace group (\pmatrix{a & b \cr c & d}).
bool isPlainMatrix(const QString& name)
{
    static const QLatin1String names[] = {QLatin1String("pmatrix"), QLatin1String("bmatrix"),
                                          QLatin1String("vmatrix"), QLatin1String("Vmatrix"),
                                          QLatin1String("Bmatrix"), QLatin1String("matrix")};
    for (const QLatin1String& n : names) {
        if (name == n)
            return true;
    }
    return false;
}

} // namespace

KLatexParser::KLatexParser(const std::vector<Token>& tokens, LatexDiagnostics& diagnostics, int itemLimit)
    : m_tokens(tokens), m_diagnostics(diagnostics), m_itemLimit(itemLimit), m_failedLeft(tokens.size(), false)
{
    for (int i = int(tokens.size()) - 1; i >= 0; --i) {
        if (isCommandToken(tokens[std::size_t(i)], "right")) {
            m_lastRight = i;
            break;
        }
    }
}

const Token& KLatexParser::peek() const
{
    static const Token endOfInput;
    if (m_position >= 0 && std::size_t(m_position) < m_tokens.size())
        return m_tokens[std::size_t(m_position)];
    return endOfInput;
}

const Token& KLatexParser::advance()
{
    const Token& current = peek();
    if (current.kind != TokenKind::EndOfInput)
        ++m_position;
    return current;
}

bool KLatexParser::isCommand(const char* name) const
{
    return isCommandToken(peek(), name);
}

void KLatexParser::report(int severity, const QString& code, const QString& message)
{
    reportAt(peek(), severity, code, message);
}

void KLatexParser::reportAt(const Token& token, int severity, const QString& code, const QString& message)
{
    // While unwinding doomed \left bodies everything parsed is thrown away and
    // parsed again, so what it would report is reported then.
    if (m_unwinding)
        return;
    m_diagnostics.push_back(LatexDiagnostic{severity, token.pos, token.len, code, message});
}

KLatexNodePtr KLatexParser::parseDocument()
{
    return parseExprUntil([](const Token&) { return false; }, false);
}

KLatexNodePtr KLatexParser::parseExprUntil(const StopPredicate& stop, bool allowInfix)
{
    return parseItems(stop, allowInfix, nullptr);
}

KLatexNodePtr KLatexParser::parseItems(const StopPredicate& stop, bool allowInfix, ListRecord* record)
{
    DepthScope scope(m_depth);
    if (m_depth > kMaxNestingDepth) {
        ++m_guardTrips;
        report(kFatal, QStringLiteral("F_nesting_overflow"), nestingOverflow());
        return makeGroup();
    }

    KLatexNodeList items;
    int atoms = 0;
    int lastChain = 0;         // scripts already stacked on the last item
    SkippedKinds skippedSince; // tokens skipped since the last item ended
    // Records where an item starts and whether it may stand for a fresh parse of its tokens.
    auto beginItem = [&](bool reusable) {
        if (record)
            record->items.push_back(
                ItemSpan{m_position, m_position, m_depth, 0, m_guardTrips, false, reusable});
    };
    auto endItem = [&] {
        skippedSince = SkippedKinds();
        if (record) {
            ItemSpan& span = record->items.back();
            span.end = m_position;
            span.chain = lastChain;
            span.tripped = span.tripped || m_guardTrips != span.tripsAtStart;
            span.tripsAtStart = m_guardTrips;
        }
    };
    auto recordSkip = [&](const ItemSpan& skip) {
        skippedSince.merge(skip.crossed);
        if (!record)
            return;
        if (!record->skips.empty() && record->skips.back().end == skip.start) {
            ItemSpan& last = record->skips.back();
            last.end = skip.end;
            last.tripped = last.tripped || skip.tripped;
            last.depth = std::max(last.depth, skip.depth);
            last.crossed.merge(skip.crossed);
        } else {
            record->skips.push_back(skip);
        }
    };
    for (;;) {
        const Token& token = peek();
        if (token.kind == TokenKind::EndOfInput || stop(token))
            break;

        if (allowInfix && token.kind == TokenKind::Command) {
            if (token.text == QLatin1String("buildrel")) {
                beginItem(false);
                advance();
                KLatexNodePtr above = parseExprUntil(
                    [](const Token& t) { return isCommandToken(t, "over") || t.kind == TokenKind::RBrace; },
                    false);
                if (!isCommand("over")) {
                    report(kError, QStringLiteral("E_buildrel_over"), buildrelOver());
                    items.push_back(std::move(above));
                } else {
                    advance();
                    KLatexNodePtr below =
                        peek().kind == TokenKind::LBrace ? parseBraceGroupAsExpr() : parseAtom();
                    KLatexArgs args;
                    args.push_back(KLatexArg{false, std::move(above)});
                    args.push_back(KLatexArg{false, std::move(below)});
                    items.push_back(makeCommand(QStringLiteral("overset"), std::move(args)));
                }
                lastChain = 0;
                endItem();
                continue;
            }
            if (isInfixFraction(token.text)) {
                QString name = advance().text;
                // \above is followed by the thickness of its rule; a zero rule stacks without one.
                if (name == QLatin1String("above") && peek().kind != TokenKind::EndOfInput) {
                    if (isZeroDimension(parseDimensionArgument().get()))
                        name = QStringLiteral("atop");
                }
                KLatexNodePtr right = parseExprUntil(stop, false);
                KLatexArgs args;
                args.push_back(KLatexArg{false, makeGroup(std::move(items))});
                args.push_back(KLatexArg{false, std::move(right)});
                if (record)
                    *record = ListRecord();
                return makeCommand(name, std::move(args));
            }
        }

        if (token.kind == TokenKind::Superscript || token.kind == TokenKind::Subscript) {
            KLatexNodePtr base;
            int chain = 0;
            if (!items.empty() && lastChain < kMaxScriptChain) {
                // Scripts that reach back over skipped tokens join the item in another list only
                // when that list skips the same tokens.
                if (record) {
                    record->items.back().crossed.merge(skippedSince);
                    record->items.back().extended = true;
                }
                base = std::move(items.back());
                items.pop_back();
                chain = lastChain;
            } else {
                if (!items.empty())
                    report(kFatal, QStringLiteral("F_nesting_overflow"), nestingOverflow());
                base = makeGroup();
                // What a leading script attaches to depends on the list it stands in.
                beginItem(false);
            }
            items.push_back(parseScripts(std::move(base), chain));
            lastChain = chain;
            endItem();
            continue;
        }

        if (!m_stash.empty()) {
            const auto found = m_stash.find(m_position);
            // An item that took more scripts after its atom cannot stand for the atom that fills a
            // list: that list stops before the scripts.
            if (found != m_stash.end() && found->second.mayStandAt(m_depth) &&
                passesSkipped(stop, found->second.span.crossed) &&
                !(found->second.span.extended && atoms >= m_itemLimit)) {
                StashedItem stashed = std::move(found->second);
                m_stash.erase(found);
                m_position = stashed.span.end;
                if (!stashed.node) {
                    // The same tokens skipped once more; their diagnostics are already recorded.
                    recordSkip(stashed.span);
                    continue;
                }
                if (record) {
                    record->items.push_back(stashed.span);
                    record->items.back().tripsAtStart = m_guardTrips;
                }
                lastChain = stashed.span.chain;
                skippedSince = SkippedKinds();
                items.push_back(std::move(stashed.node));
                if (atoms < m_itemLimit) {
                    ++atoms;
                    continue;
                }
                report(kFatal, QStringLiteral("F_nesting_overflow"), nestingOverflow());
                break;
            }
        }

        const int start = m_position;
        const int tripsBefore = m_guardTrips;
        beginItem(true);
        KLatexNodePtr atom = parseAtom();
        if (!atom) {
            if (record)
                record->items.pop_back();
            ItemSpan skip{start, 0, m_depth, 0, m_guardTrips, false, true};
            const int at = m_position;
            if (at != start)
                skip.crossed.begin = start;
            else if (token.kind == TokenKind::RBrace)
                skip.crossed.rbrace = start;
            else
                skip.crossed.ampersand = start;
            report(kError, QStringLiteral("E_unexpected_token"), unexpectedToken());
            advance();
            skip.end = m_position;
            skip.tripped = m_guardTrips != tripsBefore;
            recordSkip(skip);
            continue;
        }
        int chain = 0;
        items.push_back(parseScripts(std::move(atom), chain));
        lastChain = chain;
        endItem();
        if (atoms < m_itemLimit) {
            ++atoms;
        } else {
            report(kFatal, QStringLiteral("F_nesting_overflow"), nestingOverflow());
            break;
        }
    }
    return makeGroup(std::move(items));
}

KLatexNodePtr KLatexParser::parseBraceGroupAsExpr()
{
    if (peek().kind != TokenKind::LBrace) {
        report(kError, QStringLiteral("E_expected_lbrace"), expectedLBrace());
        return makeGroup();
    }
    advance();
    KLatexNodePtr content = parseExprUntil([](const Token& t) { return t.kind == TokenKind::RBrace; }, true);
    if (peek().kind == TokenKind::RBrace)
        advance();
    else
        reportAt(m_tokens[std::size_t(m_position - 1)], kError, QStringLiteral("E_missing_rbrace"),
                 missingRBrace());
    return content;
}

KLatexNodePtr KLatexParser::parseBracketGroupAsExpr()
{
    if (peek().kind != TokenKind::LBracket)
        return nullptr;
    advance();
    KLatexNodePtr content =
        parseExprUntil([](const Token& t) { return t.kind == TokenKind::RBracket; }, false);
    if (peek().kind == TokenKind::RBracket)
        advance();
    else
        reportAt(m_tokens[std::size_t(m_position - 1)], kError, QStringLiteral("E_missing_rbracket"),
                 missingRBracket());
    return content;
}

KLatexNodePtr KLatexParser::parseAtom()
{
    const Token& token = peek();
    switch (token.kind) {
    case TokenKind::Char:
    case TokenKind::Digit:
    case TokenKind::LBracket:
    case TokenKind::RBracket:
        return makeText(advance().text);
    case TokenKind::LBrace:
        return parseBraceGroupAsExpr();
    case TokenKind::Command:
        return parseCommandAtom();
    case TokenKind::EndOfInput:
    case TokenKind::RBrace:
    case TokenKind::Superscript:
    case TokenKind::Subscript:
    case TokenKind::Ampersand:
        return nullptr;
    }
    return nullptr;
}

KLatexNodePtr KLatexParser::parseCommandAtom()
{
    const Token& token = peek();
    if (token.text == QLatin1String("left"))
        return parseLeftRightGroup();
    if (token.text == QLatin1String("begin")) {
        advance();
        return parseEnv();
    }
    const Token& command = advance();
    QString name = command.text;
    if (command.starred)
        name.append(QLatin1Char('*'));

    if (name == QLatin1String("\\\\")) {
        KLatexArgs args;
        if (KLatexNodePtr spacing = parseBracketGroupAsExpr())
            args.push_back(KLatexArg{true, std::move(spacing)});
        return makeCommand(name, std::move(args));
    }
    if (name == QLatin1String("right")) {
        QString right = readDelimiter(DelimiterSide::Right, false);
        return makeLeftRight(QStringLiteral("."), std::move(right), makeGroup(), true);
    }
    if (isPlainMatrix(name))
        return parsePlainMatrix(name);

    const ArgShape shape = commandArgShape(name);
    KLatexArgs args;
    if (name != QLatin1String("left") && name != QLatin1String("begin") && name != QLatin1String("end"))
        args = parseCommandArgs(name);
    if (shape == ArgShape::Unknown)
        return makeUnknownCommand(std::move(name), std::move(args));
    return makeCommand(std::move(name), std::move(args));
}

KLatexNodePtr KLatexParser::parseScripts(KLatexNodePtr node, int& chainDepth)
{
    for (;;) {
        const TokenKind first = peek().kind;
        if (first != TokenKind::Superscript && first != TokenKind::Subscript)
            return node;
        KLatexNodePtr sup;
        KLatexNodePtr sub;
        advance();
        if (first == TokenKind::Superscript)
            sup = parseScriptArg();
        else
            sub = parseScriptArg();

        bool both = false;
        if (peek().kind == TokenKind::Superscript) {
            // After x^a a second ^ is dropped unread; its argument becomes an atom of its own.
            advance();
            if (first != TokenKind::Superscript) {
                sup = parseScriptArg();
                both = true;
            }
        }
        if (!both && peek().kind == TokenKind::Subscript) {
            advance();
            if (first != TokenKind::Subscript) {
                sub = parseScriptArg();
                both = true;
            }
        }
        if (!node)
            node = makeGroup();
        node = makeScript(std::move(node), std::move(sup), std::move(sub));
        ++chainDepth;
        if (!both || chainDepth >= kMaxScriptChain)
            return node;
    }
}

KLatexNodePtr KLatexParser::parseScriptArg()
{
    if (peek().kind == TokenKind::LBrace)
        return parseBraceGroupAsExpr();
    if (KLatexNodePtr atom = parseAtom())
        return atom;
    report(kError, QStringLiteral("E_missing_script_arg"), missingScriptArg());
    return makeGroup();
}

QString KLatexParser::readDelimiter(DelimiterSide side, bool warn)
{
    const Token& token = peek();
    switch (token.kind) {
    case TokenKind::Command:
        advance();
        return QLatin1Char('\\') + token.text;
    case TokenKind::Char:
        advance();
        return token.text;
    case TokenKind::LBracket:
        advance();
        return QStringLiteral("[");
    case TokenKind::RBracket:
        advance();
        return QStringLiteral("]");
    default:
        if (warn && side == DelimiterSide::Left)
            report(kWarning, QStringLiteral("W_left_delim"), leftDelim(token.text));
        else if (warn)
            report(kWarning, QStringLiteral("W_right_delim"), rightDelim(token.text));
        return QStringLiteral(".");
    }
}

KLatexNodePtr KLatexParser::parseLeftRightGroup()
{
    const int leftIndex = m_position;
    advance();
    QString left = readDelimiter(DelimiterSide::Left, true);
    const int bodyStart = m_position;
    if (std::size_t(leftIndex) < m_failedLeft.size() && m_failedLeft[std::size_t(leftIndex)])
        return makeLeftRight(std::move(left), QStringLiteral("."), makeGroup(), true);

    ++m_openLeftSearches;
    ListRecord record;
    KLatexNodePtr body =
        parseItems([](const Token& t) { return isCommandToken(t, "right"); }, false, &record);
    --m_openLeftSearches;

    if (!isCommand("right")) {
        const bool wasUnwinding = m_unwinding;
        m_unwinding = false;
        report(kError, QStringLiteral("E_missing_right"), missingRight());
        if (std::size_t(leftIndex) < m_failedLeft.size())
            m_failedLeft[std::size_t(leftIndex)] = true;
        if (peek().kind == TokenKind::EndOfInput && m_openLeftSearches > 0 && m_lastRight < bodyStart) {
            // No \right follows, so every enclosing \left body would run to the end of the input
            // again and fail the same way.
            m_unwinding = true;
        } else {
            m_position = bodyStart;
            // The caller parses these tokens again; the items of the dropped body stand in for
            // that parse wherever it meets them, so a chain of failing \left reads its tokens once.
            if (!wasUnwinding)
                stashItems(std::move(body), record);
        }
        return makeLeftRight(std::move(left), QStringLiteral("."), makeGroup(), true);
    }
    advance();
    QString right = readDelimiter(DelimiterSide::Right, true);
    return makeLeftRight(std::move(left), std::move(right), std::move(body), true);
}

bool KLatexParser::StashedItem::mayStandAt(int depth) const
{
    // A parse cut short by the nesting guard is only what a parse at the same depth gives.
    return depth == span.depth || (depth < span.depth && !span.tripped);
}

void KLatexParser::stashItems(KLatexNodePtr body, ListRecord& record)
{
    auto* group = latexAs<KLatexGroup>(body.get());
    if (!group || group->children.size() != record.items.size())
        return;
    for (std::size_t i = 0; i < record.items.size(); ++i) {
        const ItemSpan& span = record.items[i];
        if (span.reusable && group->children[i])
            m_stash[span.start] = StashedItem{std::move(group->children[i]), span};
    }
    for (const ItemSpan& skip : record.skips)
        m_stash[skip.start] = StashedItem{nullptr, skip};
}

bool KLatexParser::passesSkipped(const StopPredicate& stop, const SkippedKinds& kinds) const
{
    for (const int index : {kinds.rbrace, kinds.ampersand, kinds.begin}) {
        if (index >= 0 && stop(m_tokens[std::size_t(index)]))
            return false;
    }
    return true;
}

void KLatexParser::SkippedKinds::merge(const SkippedKinds& other)
{
    if (rbrace < 0)
        rbrace = other.rbrace;
    if (ampersand < 0)
        ampersand = other.ampersand;
    if (begin < 0)
        begin = other.begin;
}

KLatexNodePtr parseLatex(QStringView source, LatexDiagnostics& diagnostics, int itemLimit)
{
    KLatexLexer lexer(source);
    KLatexLexResult lexed = lexer.tokenize();
    diagnostics = std::move(lexed.diagnostics);
    const std::vector<Token> tokens = KMacroExpander(diagnostics).expand(std::move(lexed.tokens));
    KLatexParser parser(tokens, diagnostics, itemLimit);
    return parser.parseDocument();
}
