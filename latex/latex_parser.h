#pragma once
// KLatexParser: recursive descent over the lexer's token list into the LaTeX
// syntax tree. It never fails: every problem is repaired where it occurs and
// recorded as a LatexDiagnostic in the caller's list.

#include "latex/command_args.h"
#include "latex/latex_ast.h"

#include <QStringView>

#include <functional>
#include <unordered_map>
#include <vector>

class KLatexParser {
public:
    using StopPredicate = std::function<bool(const Token&)>;

    // Maximum number of atoms in one expression list before "F_nesting_overflow".
    static constexpr int kItemLimit = 1024;
    // Expression lists nested deeper than this are cut off with "F_nesting_overflow",
    // so that neither the parser nor any walk over its tree can exhaust the stack.
    static constexpr int kMaxNestingDepth = 256;
    // Longest chain of scripts stacked on one base (x^a_b^c_d...) before the next
    // scripts start on an empty base of their own. Every nesting level may hold such a
    // chain, so it is kept short to bound the depth of the whole tree.
    static constexpr int kMaxScriptChain = 16;

    // Neither the tokens nor the diagnostics are copied; both must outlive the parser.
    KLatexParser(const std::vector<Token>& tokens, LatexDiagnostics& diagnostics, int itemLimit = kItemLimit);

    // The whole token list as one group; never null.
    KLatexNodePtr parseDocument();

    // Items up to (not including) a token that satisfies stop or EndOfInput. A group,
    // never null; with allowInfix an infix fraction returns the fraction command itself.
    KLatexNodePtr parseExprUntil(const StopPredicate& stop, bool allowInfix);
    // { ... } with infix fractions; never null.
    KLatexNodePtr parseBraceGroupAsExpr();
    // [ ... ] as a group, or null when the current token is not '['.
    KLatexNodePtr parseBracketGroupAsExpr();
    // The current token is \left.
    KLatexNodePtr parseLeftRightGroup();

    // The current token follows \begin.
    KLatexNodePtr parseEnv();
    KLatexNodePtr parseAlignedEnvBody(const QString& name, KLatexArgs args);
    // A commutative diagram: objects and the arrows between them (@>>>, @VVV, ...) laid out
    // on a grid, objects in the even columns and rows, arrows between them.
    KLatexNodePtr parseCommutativeDiagram(const QString& name, KLatexArgs args);
    // Rows of a plain-TeX matrix, up to (not including) its closing brace.
    KLatexNodeList parseMatrixBody();

    // Reads the arguments that follow an already consumed command token, by its signature
    // (commandSignature); missing mandatory arguments are reported with the codes of its shape.
    KLatexArgs parseCommandArgs(const QString& name);
    // A brace group, or else one character or one control sequence with its own arguments, held in
    // a group; null (nothing consumed) where no argument can start.
    KLatexNodePtr parseMandatoryArgument();
    // The scope of an old font switch without braces (\rm const): the rest of its group, in a group.
    KLatexNodePtr parseSwitchScope();
    // A brace group, or else a TeX dimension (signs, a number and a unit, or a length command).
    KLatexNodePtr parseDimensionArgument();
    // The current command token alone, without reading any argument.
    KLatexNodePtr commandAlone();

    int itemLimit() const { return m_itemLimit; }
    const LatexDiagnostics& diagnostics() const { return m_diagnostics; }

private:
    // Representative tokens of what a list skipped with "E_unexpected_token" (token indices, -1 for
    // none). Stop predicates look at the kind of a brace or an ampersand only, so one token of each
    // kind tells whether another list would have stopped there instead.
    struct SkippedKinds {
        int rbrace = -1;
        int ampersand = -1;
        int begin = -1; // an environment without a name, dropped with the token after it
        void merge(const SkippedKinds& other);
    };

    // Where one item (or one run of skipped tokens) of an expression list came from, so that it
    // can stand in for a second parse of the same tokens.
    struct ItemSpan {
        int start = 0; // token index of its first token
        int end = 0;   // token index after its last token
        int depth = 0; // nesting depth of the list it was parsed in
        int chain = 0; // scripts stacked on it
        int tripsAtStart = 0;
        bool tripped = false; // the nesting guard cut something inside it
        bool reusable = false;
        bool extended = false; // scripts after the first pass were attached by the list
        SkippedKinds crossed;  // skipped tokens inside the span
    };
    struct ListRecord {
        std::vector<ItemSpan> items; // one per item of the list, in order
        std::vector<ItemSpan> skips; // runs of skipped tokens
    };
    struct StashedItem {
        KLatexNodePtr node; // null for a run of skipped tokens
        ItemSpan span;
        bool mayStandAt(int depth) const;
    };

    KLatexNodePtr parseItems(const StopPredicate& stop, bool allowInfix, ListRecord* record);
    void stashItems(KLatexNodePtr body, ListRecord& record);
    bool passesSkipped(const StopPredicate& stop, const SkippedKinds& kinds) const;

    const Token& peek() const;
    const Token& advance();
    bool isCommand(const char* name) const;
    void report(int severity, const QString& code, const QString& message);
    void reportAt(const Token& token, int severity, const QString& code, const QString& message);

    KLatexNodePtr parseAtom();
    KLatexNodePtr parseCommandAtom();
    KLatexNodePtr parseScripts(KLatexNodePtr node, int& chainDepth);
    KLatexNodePtr parseScriptArg();
    KLatexNodePtr parsePlainMatrix(const QString& name);
    // Rows and cells of an environment body, up to (not including) its \end.
    KLatexNodeList readRows();
    KLatexNodePtr parseDiagramArrow(QChar kind);
    KLatexNodePtr closeEnvironment(const QString& name, KLatexArgs args, KLatexNodeList body);
    enum class DelimiterSide { Left, Right };
    QString readDelimiter(DelimiterSide side, bool warn);
    QString readEnvironmentName(bool warn);

    const std::vector<Token>& m_tokens;
    int m_position = 0;
    LatexDiagnostics& m_diagnostics;
    int m_itemLimit = kItemLimit;

    int m_depth = 0;
    // \left tokens (by index) whose search for \right failed; met again, they are not searched again.
    // A failure is remembered whatever cut the search short, the nesting guard included, so that
    // no chain of \left can make the parser search the same tokens over and over.
    std::vector<bool> m_failedLeft;
    // Number of \left bodies being parsed right now.
    int m_openLeftSearches = 0;
    // A \left body ran to the end of the input with no \right left in it, so every enclosing
    // \left fails as well: they are unwound without parsing (and without repeating diagnostics)
    // up to the outermost.
    bool m_unwinding = false;
    // Token index of the last \right command, or -1.
    int m_lastRight = -1;
    // Number of times the nesting guard cut a list short.
    int m_guardTrips = 0;
    // Items of \left bodies that found no \right, by the token index they start at.
    std::unordered_map<int, StashedItem> m_stash;
};

// Lexes and parses LaTeX source. The lexer's warnings come first in diagnostics,
// followed by the parser's.
KLatexNodePtr parseLatex(QStringView source, LatexDiagnostics& diagnostics,
                         int itemLimit = KLatexParser::kItemLimit);
