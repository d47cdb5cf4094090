#include "latex/macro_expander.h"

#include "latex/command_args.h"
#include "latex/parser_messages.h"
#include "latex/parser_support.h"

#include <QHash>

#include <optional>

using namespace latexmsg;

namespace {

// Tokens examined while looking for the end of delimited arguments, over a whole run: a use
// whose delimiter never comes scans to the end of the input, and many such uses would otherwise
// take time that grows with the square of the input.
constexpr long long kMaxScanned = 4000000;

bool isChar(const Token& token, char16_t c)
{
    return token.kind == TokenKind::Char && token.text.size() == 1 && token.text.front().unicode() == c;
}

// The digit 1..9 of a parameter, or 0.
int parameterDigit(const Token& token)
{
    if (token.kind != TokenKind::Digit || token.text.size() != 1)
        return 0;
    const char16_t c = token.text.front().unicode();
    return c >= u'1' && c <= u'9' ? int(c - u'0') : 0;
}

bool sameToken(const Token& a, const Token& b)
{
    return a.kind == b.kind && a.text == b.text && a.starred == b.starred;
}

enum class KDefinition { None, Def, Edef, Let, NewCommand, RenewCommand, ProvideCommand, MathOperator };

KDefinition definitionKind(const Token& token)
{
    static const QHash<QString, KDefinition> kinds = {
        {QStringLiteral("def"), KDefinition::Def},
        {QStringLiteral("gdef"), KDefinition::Def},
        {QStringLiteral("edef"), KDefinition::Edef},
        {QStringLiteral("xdef"), KDefinition::Edef},
        {QStringLiteral("let"), KDefinition::Let},
        {QStringLiteral("newcommand"), KDefinition::NewCommand},
        {QStringLiteral("renewcommand"), KDefinition::RenewCommand},
        {QStringLiteral("providecommand"), KDefinition::ProvideCommand},
        {QStringLiteral("DeclareMathOperator"), KDefinition::MathOperator},
    };
    if (token.kind != TokenKind::Command)
        return KDefinition::None;
    return kinds.value(token.text, KDefinition::None);
}

// Prefixes that may stand before \def and change nothing here.
bool isDefinitionPrefix(const Token& token)
{
    return isCommandToken(token, "global") || isCommandToken(token, "long") ||
           isCommandToken(token, "protected") || isCommandToken(token, "outer");
}

bool mayDefine(const std::vector<Token>& tokens)
{
    for (const Token& token : tokens) {
        if (definitionKind(token) != KDefinition::None)
            return true;
    }
    return false;
}

Token charToken(const QString& text, const Token& at)
{
    Token token;
    token.kind = TokenKind::Char;
    token.text = text;
    token.pos = at.pos;
    token.len = at.len;
    return token;
}

} // namespace

// One piece of a parameter text: a parameter (1..9) or a token that must be matched.
struct KPatternItem {
    int parameter = 0;
    Token literal;
};

struct KMacroExpander::KMacro {
    std::vector<KPatternItem> pattern; // \def's parameter text; #1..#n for \newcommand
    int parameters = 0;
    std::optional<std::vector<Token>> optionalDefault; // \newcommand's optional first argument
    std::vector<Token> body;
    bool alias = false; // \let to something that is not a macro: the body is that one token
};

struct KMacroExpander::KPending {
    Token token;
    int depth = 0;        // number of expansions that produced it
    bool literal = false; // produced by \let from a token that is not a macro: not expanded again
};

class KMacroExpander::KRun {
public:
    KRun(LatexDiagnostics& diagnostics, QHash<QString, KMacro>& macros) : m_diagnostics(diagnostics), m_macros(macros) {}

    // Expands `tokens` (in order) into the output. With `define` off only uses are expanded
    // (the body of \edef); definitions stay as they are.
    std::vector<Token> run(const std::vector<Token>& tokens, int depth, bool define)
    {
        m_pending.clear();
        m_pending.reserve(tokens.size());
        for (auto it = tokens.rbegin(); it != tokens.rend(); ++it)
            m_pending.push_back(KPending{*it, depth, false});
        std::vector<Token> output;
        output.reserve(tokens.size());
        while (!m_pending.empty()) {
            KPending next = std::move(m_pending.back());
            m_pending.pop_back();
            const Token& token = next.token;
            if (token.kind != TokenKind::Command || next.literal) {
                output.push_back(std::move(next.token));
                continue;
            }
            if (define && isDefinitionPrefix(token) && prefixesDefinition())
                continue;
            const KDefinition kind = define ? definitionKind(token) : KDefinition::None;
            if (kind != KDefinition::None) {
                // An incomplete definition is left as written, for the parser to read.
                if (!readDefinition(kind, next))
                    output.push_back(std::move(next.token));
                continue;
            }
            const auto found = m_macros.constFind(token.text);
            if (found == m_macros.constEnd()) {
                output.push_back(std::move(next.token));
                continue;
            }
            expandUse(next, *found);
        }
        return output;
    }

    bool depthReported = false;
    bool growthReported = false;
    long long produced = 0;
    long long scanned = 0;

private:
    // ---- reading ahead: index 0 is the next token; nothing is consumed until drop() --------

    using KTokens = std::vector<KPending>;

    std::size_t remaining() const { return m_pending.size(); }
    // Whether prefixes (\global, \long, ...) and then a definition follow.
    bool prefixesDefinition() const
    {
        std::size_t i = 0;
        while (!atEnd(i) && isDefinitionPrefix(ahead(i)))
            ++i;
        return !atEnd(i) && definitionKind(ahead(i)) != KDefinition::None;
    }
    const Token& ahead(std::size_t i) const { return m_pending[m_pending.size() - 1 - i].token; }
    bool atEnd(std::size_t i) const { return i >= remaining() || ahead(i).kind == TokenKind::EndOfInput; }
    // The tokens [from, to) ahead, in order.
    KTokens copyAhead(std::size_t from, std::size_t to) const
    {
        KTokens copy;
        copy.reserve(to - from);
        for (std::size_t i = from; i < to; ++i)
            copy.push_back(m_pending[m_pending.size() - 1 - i]);
        return copy;
    }
    // Consumes the next `count` tokens.
    void drop(std::size_t count) { m_pending.resize(m_pending.size() - count); }

    static std::vector<Token> tokensOf(const KTokens& pending)
    {
        std::vector<Token> tokens;
        tokens.reserve(pending.size());
        for (const KPending& p : pending)
            tokens.push_back(p.token);
        return tokens;
    }

    // The length of the balanced brace group starting at `at` (which must be '{'), or 0 when it
    // does not close before the end.
    std::size_t groupLength(std::size_t at)
    {
        int depth = 0;
        for (std::size_t i = at; !atEnd(i); ++i) {
            ++scanned;
            if (ahead(i).kind == TokenKind::LBrace)
                ++depth;
            else if (ahead(i).kind == TokenKind::RBrace && --depth == 0)
                return i - at + 1;
        }
        return 0;
    }

    // An undelimited argument at `i`: a brace group without its braces, or one token. Null when
    // none can be read (the end, or a closing brace). `i` moves past what was read.
    std::optional<KTokens> argumentAt(std::size_t& i)
    {
        if (atEnd(i) || ahead(i).kind == TokenKind::RBrace)
            return std::nullopt;
        if (ahead(i).kind != TokenKind::LBrace) {
            ++i;
            return copyAhead(i - 1, i);
        }
        const std::size_t length = groupLength(i);
        if (length == 0)
            return std::nullopt;
        KTokens inner = copyAhead(i + 1, i + length - 1);
        i += length;
        return inner;
    }

    // [..] at `i` without its brackets, brackets inside braces not counting; null when no bracket
    // group follows or it does not close.
    std::optional<KTokens> bracketAt(std::size_t& i)
    {
        if (atEnd(i) || ahead(i).kind != TokenKind::LBracket)
            return std::nullopt;
        int depth = 0;
        for (std::size_t k = i + 1; !atEnd(k); ++k) {
            ++scanned;
            const TokenKind kind = ahead(k).kind;
            if (kind == TokenKind::LBrace) {
                ++depth;
            } else if (kind == TokenKind::RBrace && --depth < 0) {
                return std::nullopt;
            } else if (kind == TokenKind::RBracket && depth == 0) {
                KTokens inner = copyAhead(i + 1, k);
                i = k + 1;
                return inner;
            }
        }
        return std::nullopt;
    }

    // The control sequence being defined, at `i`: \name, or {\name}.
    std::optional<Token> nameAt(std::size_t& i)
    {
        if (!atEnd(i) && ahead(i).kind == TokenKind::Command) {
            ++i;
            return ahead(i - 1);
        }
        if (!atEnd(i + 2) && ahead(i).kind == TokenKind::LBrace && ahead(i + 1).kind == TokenKind::Command &&
            ahead(i + 2).kind == TokenKind::RBrace) {
            i += 3;
            return ahead(i - 2);
        }
        return std::nullopt;
    }

    // ---- definitions --------------------------------------------------------------------

    // Reads a definition after its command; false (nothing consumed) when it is incomplete.
    bool readDefinition(KDefinition kind, const KPending& at)
    {
        std::size_t i = 0;
        std::optional<Token> name = nameAt(i);
        if (!name)
            return false;
        std::optional<KMacro> macro;
        switch (kind) {
        case KDefinition::Def:
        case KDefinition::Edef:
            macro = readDef(i);
            break;
        case KDefinition::Let:
            macro = readLet(i);
            break;
        case KDefinition::NewCommand:
        case KDefinition::RenewCommand:
        case KDefinition::ProvideCommand:
            macro = readNewCommand(i);
            break;
        case KDefinition::MathOperator:
            macro = readMathOperator(i, at.token);
            break;
        case KDefinition::None:
            break;
        }
        if (!macro || i > remaining())
            return false;
        drop(i);
        if (kind == KDefinition::Edef)
            expandBody(*macro, *name, at.depth);
        // \providecommand leaves a name that already means something as it is.
        if (kind == KDefinition::ProvideCommand &&
            (m_macros.contains(name->text) || commandArgShape(name->text) != ArgShape::Unknown))
            return true;
        m_macros.insert(name->text, std::move(*macro));
        return true;
    }

    std::optional<KMacro> readDef(std::size_t& i)
    {
        KMacro macro;
        // The parameter text runs up to the brace that opens the body.
        for (; !atEnd(i) && ahead(i).kind != TokenKind::LBrace; ++i) {
            if (ahead(i).kind == TokenKind::RBrace || ++scanned > kMaxScanned)
                return std::nullopt;
            const int digit = isChar(ahead(i), u'#') && !atEnd(i + 1) ? parameterDigit(ahead(i + 1)) : 0;
            if (digit == macro.parameters + 1) {
                macro.pattern.push_back(KPatternItem{digit, Token()});
                macro.parameters = digit;
                ++i;
            } else {
                macro.pattern.push_back(KPatternItem{0, ahead(i)});
            }
        }
        std::optional<KTokens> body = atEnd(i) ? std::nullopt : argumentAt(i);
        if (!body)
            return std::nullopt;
        macro.body = tokensOf(*body);
        return macro;
    }

    // \edef and \xdef: the body as it expands now.
    void expandBody(KMacro& macro, const Token& name, int depth)
    {
        if (depth + 1 >= kMaxDepth) {
            reportDepth(name);
            return;
        }
        KRun inner(m_diagnostics, m_macros);
        inner.depthReported = depthReported;
        inner.growthReported = growthReported;
        inner.produced = produced;
        inner.scanned = scanned;
        macro.body = inner.run(macro.body, depth + 1, false);
        depthReported = inner.depthReported;
        growthReported = inner.growthReported;
        produced = inner.produced;
        scanned = inner.scanned;
    }

    std::optional<KMacro> readLet(std::size_t& i)
    {
        if (!atEnd(i) && isChar(ahead(i), u'='))
            ++i;
        if (atEnd(i))
            return std::nullopt;
        const Token meaning = ahead(i++);
        const auto found = meaning.kind == TokenKind::Command ? m_macros.constFind(meaning.text) : m_macros.constEnd();
        if (found != m_macros.constEnd())
            return *found;
        KMacro alias;
        alias.alias = true;
        alias.body.push_back(meaning);
        return alias;
    }

    std::optional<KMacro> readNewCommand(std::size_t& i)
    {
        // \newcommand* only forbids paragraphs in the arguments; the lexer has taken its star.
        KMacro macro;
        if (std::optional<KTokens> count = bracketAt(i)) {
            if (count->size() != 1 || count->front().token.kind != TokenKind::Digit)
                return std::nullopt;
            const Token& digit = count->front().token;
            if (digit.text != QLatin1String("0")) {
                macro.parameters = parameterDigit(digit);
                if (macro.parameters == 0)
                    return std::nullopt;
            }
            if (!atEnd(i) && ahead(i).kind == TokenKind::LBracket) {
                std::optional<KTokens> fallback = bracketAt(i);
                if (!fallback)
                    return std::nullopt;
                if (macro.parameters > 0)
                    macro.optionalDefault = tokensOf(*fallback);
            }
        }
        std::optional<KTokens> body = argumentAt(i);
        if (!body)
            return std::nullopt;
        for (int p = 1; p <= macro.parameters; ++p)
            macro.pattern.push_back(KPatternItem{p, Token()});
        macro.body = tokensOf(*body);
        return macro;
    }

    std::optional<KMacro> readMathOperator(std::size_t& i, const Token& at)
    {
        std::optional<KTokens> text = argumentAt(i);
        if (!text)
            return std::nullopt;
        // \DeclareMathOperator*{\op}{text} takes its limits below and above, as \operatorname* does.
        KMacro macro;
        Token command = at;
        command.text = QStringLiteral("operatorname");
        Token open;
        open.kind = TokenKind::LBrace;
        open.text = QStringLiteral("{");
        open.pos = at.pos;
        open.len = at.len;
        Token close = open;
        close.kind = TokenKind::RBrace;
        close.text = QStringLiteral("}");
        macro.body.push_back(command);
        macro.body.push_back(open);
        for (const KPending& p : *text)
            macro.body.push_back(p.token);
        macro.body.push_back(close);
        return macro;
    }

    // ---- uses -----------------------------------------------------------------------------

    void reportDepth(const Token& at)
    {
        if (depthReported)
            return;
        depthReported = true;
        m_diagnostics.push_back(
            LatexDiagnostic{kFatal, at.pos, at.len, QStringLiteral("F_macro_depth"), macroDepth(at.text)});
    }

    void reportGrowth(const Token& at)
    {
        if (growthReported)
            return;
        growthReported = true;
        m_diagnostics.push_back(
            LatexDiagnostic{kFatal, at.pos, at.len, QStringLiteral("F_macro_growth"), macroGrowth(at.text)});
    }

    // Reads the arguments of a use by the macro's parameter text, from `i` on. False when the
    // input does not match it.
    bool readArguments(const KMacro& macro, std::vector<KTokens>& args, std::size_t& i)
    {
        args.assign(std::size_t(macro.parameters), {});
        std::size_t item = 0;
        if (macro.optionalDefault) {
            if (std::optional<KTokens> optional = bracketAt(i)) {
                args[0] = std::move(*optional);
            } else {
                for (const Token& token : *macro.optionalDefault)
                    args[0].push_back(KPending{token, 0, false});
            }
            item = 1;
        }
        for (; item < macro.pattern.size(); ++item) {
            const KPatternItem& piece = macro.pattern[item];
            if (piece.parameter == 0) {
                if (atEnd(i) || !sameToken(ahead(i), piece.literal))
                    return false;
                ++i;
                continue;
            }
            // The literal tokens after a parameter delimit it.
            std::size_t delimiterEnd = item + 1;
            while (delimiterEnd < macro.pattern.size() && macro.pattern[delimiterEnd].parameter == 0)
                ++delimiterEnd;
            if (delimiterEnd == item + 1) {
                std::optional<KTokens> arg = argumentAt(i);
                if (!arg)
                    return false;
                args[std::size_t(piece.parameter - 1)] = std::move(*arg);
                continue;
            }
            std::size_t length = 0;
            if (!findDelimiter(macro.pattern, item + 1, delimiterEnd, i, length))
                return false;
            KTokens arg = copyAhead(i, i + length);
            i += length + (delimiterEnd - item - 1);
            // One brace group that is the whole argument loses its braces.
            if (arg.size() >= 2 && arg.front().token.kind == TokenKind::LBrace &&
                arg.back().token.kind == TokenKind::RBrace && balancedInside(arg)) {
                arg.pop_back();
                arg.erase(arg.begin());
            }
            args[std::size_t(piece.parameter - 1)] = std::move(arg);
            item = delimiterEnd - 1;
        }
        return true;
    }

    static bool balancedInside(const KTokens& arg)
    {
        int depth = 0;
        for (std::size_t i = 0; i < arg.size(); ++i) {
            if (arg[i].token.kind == TokenKind::LBrace)
                ++depth;
            else if (arg[i].token.kind == TokenKind::RBrace && --depth == 0 && i + 1 != arg.size())
                return false;
        }
        return true;
    }

    // Where the delimiter pattern[from, to) first follows `start` at brace level 0: `length`
    // tokens after it.
    bool findDelimiter(const std::vector<KPatternItem>& pattern, std::size_t from, std::size_t to,
                       std::size_t start, std::size_t& length)
    {
        int depth = 0;
        for (std::size_t i = start; !atEnd(i); ++i) {
            if (++scanned > kMaxScanned)
                return false;
            if (depth == 0) {
                bool match = true;
                for (std::size_t k = from; k < to && match; ++k)
                    match = !atEnd(i + k - from) && sameToken(ahead(i + k - from), pattern[k].literal);
                if (match) {
                    length = i - start;
                    return true;
                }
            }
            if (ahead(i).kind == TokenKind::LBrace)
                ++depth;
            else if (ahead(i).kind == TokenKind::RBrace && --depth < 0)
                return false;
        }
        return false;
    }

    void expandUse(const KPending& use, const KMacro& found)
    {
        const Token& token = use.token;
        if (use.depth >= kMaxDepth) {
            reportDepth(token);
            return;
        }
        if (scanned > kMaxScanned) {
            reportGrowth(token);
            return;
        }
        const KMacro& macro = found; // reading the arguments defines nothing
        // \name* is the name followed by a star, which may be the macro's argument.
        if (token.starred) {
            Token star = charToken(QStringLiteral("*"), token);
            star.pos = token.pos + token.len - 1;
            star.len = 1;
            m_pending.push_back(KPending{star, use.depth, false});
        }
        if (macro.alias) {
            m_pending.push_back(KPending{macro.body.front(), use.depth + 1, true});
            return;
        }
        std::vector<KTokens> args;
        std::size_t i = 0;
        if (!readArguments(macro, args, i))
            return; // the use does not match its definition: TeX stops there; the name is dropped
        drop(i);

        const long long room = kMaxTokens - produced;
        KTokens result;
        result.reserve(macro.body.size());
        for (std::size_t k = 0; k < macro.body.size() && (long long)result.size() <= room; ++k) {
            const Token& piece = macro.body[k];
            if (isChar(piece, u'#') && k + 1 < macro.body.size()) {
                const int digit = parameterDigit(macro.body[k + 1]);
                if (digit > 0 && digit <= macro.parameters) {
                    for (const KPending& p : args[std::size_t(digit - 1)])
                        result.push_back(KPending{p.token, use.depth + 1, p.literal});
                    ++k;
                    continue;
                }
                if (isChar(macro.body[k + 1], u'#'))
                    ++k; // ## stands for one #
            }
            KPending made{macro.body[k], use.depth + 1, false};
            made.token.pos = token.pos;
            made.token.len = token.len;
            result.push_back(std::move(made));
        }
        if ((long long)result.size() > room) {
            produced = kMaxTokens + 1;
            reportGrowth(token);
            return;
        }
        produced += (long long)result.size();
        for (auto it = result.rbegin(); it != result.rend(); ++it)
            m_pending.push_back(std::move(*it));
    }

    LatexDiagnostics& m_diagnostics;
    QHash<QString, KMacro>& m_macros;
    std::vector<KPending> m_pending; // the tokens still to read, the next one last
};

std::vector<Token> KMacroExpander::expand(std::vector<Token> tokens)
{
    if (!mayDefine(tokens))
        return tokens;
    QHash<QString, KMacro> macros;
    KRun run(m_diagnostics, macros);
    return run.run(tokens, 0, true);
}
