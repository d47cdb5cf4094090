#pragma once
// The LaTeX syntax tree: tokens from the lexer, the eight node kinds the parser
// builds, and the diagnostics that record every repair.

#include <QString>

#include <memory>
#include <variant>
#include <vector>

enum class TokenKind : int32_t {
    EndOfInput = 0,
    Command = 1,
    Char = 2,
    Digit = 3,
    LBrace = 4,
    RBrace = 5,
    LBracket = 6,
    RBracket = 7,
    Superscript = 8,
    Subscript = 9,
    Ampersand = 10,
};

struct Token {
    TokenKind kind = TokenKind::EndOfInput;
    QString text;
    bool starred = false;
    int pos = 0; // UTF-16 code units
    int len = 0;
};

struct LatexDiagnostic {
    int severity = 0; // 1 warning ("W_"), 2 error ("E_"), 3 fatal ("F_")
    int pos = 0;
    int length = 0;
    QString code;
    QString message;
};
using LatexDiagnostics = std::vector<LatexDiagnostic>;

struct KLatexNode;
using KLatexNodePtr = std::unique_ptr<KLatexNode>;
using KLatexNodeList = std::vector<KLatexNodePtr>;

struct KLatexArg {
    bool optional = false; // true for [..], false for {..}
    KLatexNodePtr node;    // may be null (the second argument of \buildrel .. \over)
};
using KLatexArgs = std::vector<KLatexArg>;

struct KLatexGroup {
    KLatexNodeList children;
};

struct KLatexText {
    QString text; // never empty
};

struct KLatexCommand {
    QString name; // without the backslash; "*" appended when starred
    KLatexArgs args;
};

struct KLatexEnv {
    QString name;
    KLatexArgs args;
    // Known environments: KLatexRow nodes. Others: exactly one KLatexGroup.
    KLatexNodeList body;
};

struct KLatexRow {
    KLatexNodeList cells;
};

struct KLatexScript {
    KLatexNodePtr base; // never null
    KLatexNodePtr sup;
    KLatexNodePtr sub;
};

struct KLatexLeftRight {
    QString left; // "(", "\\langle", "." for none
    QString right;
    KLatexNodePtr body; // never null
    bool useLeftRight = true;
};

struct KLatexUnknownCommand {
    QString name;
    KLatexArgs args;
};

// The index order is fixed: every consumer dispatches on it.
using KLatexVariant = std::variant<KLatexGroup, KLatexText, KLatexCommand, KLatexEnv, KLatexRow, KLatexScript,
                                   KLatexLeftRight, KLatexUnknownCommand>;

struct KLatexNode {
    KLatexVariant value;
};

template <class Kind> Kind* latexAs(KLatexNode* node)
{
    return node ? std::get_if<Kind>(&node->value) : nullptr;
}
template <class Kind> const Kind* latexAs(const KLatexNode* node)
{
    return node ? std::get_if<Kind>(&node->value) : nullptr;
}

// Constructors. Each returns null when a required part is missing; callers skip nulls.
KLatexNodePtr makeText(QString text);
KLatexNodePtr makeText(const char* utf8);
KLatexNodePtr makeGroup(KLatexNodeList children = {});
KLatexNodePtr makeCommand(QString name, KLatexArgs args = {});
KLatexNodePtr makeEnvironment(QString name, KLatexArgs args, KLatexNodeList body);
KLatexNodePtr makeScript(KLatexNodePtr base, KLatexNodePtr sup, KLatexNodePtr sub);
KLatexNodePtr makeLeftRight(QString left, QString right, KLatexNodePtr body, bool useLeftRight);
KLatexNodePtr makeUnknownCommand(QString name, KLatexArgs args = {});
KLatexNodePtr makeRow(KLatexNodeList cells);
