#pragma once
// Prints a LaTeX syntax tree as LaTeX source: decides where braces are needed,
// where a space keeps a control word from running into the next letter, how
// special characters are escaped, and how matrix-like environments are laid out
// on lines. Characters are not translated: a Greek letter held in a text node is
// printed as that Unicode character.

#include "latex/latex_ast.h"

#include <cstdint>

struct KLatexWriterOptions {
    // A mandatory argument that is a simple node (a command without arguments or
    // a one-code-unit text, possibly inside single-child groups) loses its braces.
    bool bareSimpleArguments = false;
    // The same for superscripts and subscripts.
    bool bareSimpleScripts = true;
    // Rows of the known table-like environments go one per line, indented.
    bool breakEnvironmentRows = true;
    // Indentation unit, repeated once per environment nesting level.
    QString indent = QStringLiteral("\t");
};

// What the most recently appended piece ended with; decides whether the next
// piece needs a separating space.
enum class OutputClass : int32_t { none = 0, controlWord = 1, letter = 2, digit = 3, other = 4 };

// Trees nested deeper than this print nothing below the limit, so that a
// pathological tree cannot exhaust the stack.
constexpr int kMaxLatexWriteDepth = 2000;

// Whether a node prints as one atom that a LaTeX reader takes whole as the
// operand of a large operator or function, or as the base of a script: one
// character, a command (with its arguments), a script on such a base, a brace
// group, an environment, or a \left ... \right pair.
bool isLatexAtom(const KLatexNode* node);

class KLatexWriter {
public:
    // Prints the whole tree with fresh run state; a null root gives the empty string.
    static QString write(const KLatexNode* root, const KLatexWriterOptions& options = KLatexWriterOptions());

    // "2 pt" becomes "2pt"; anything that is not an integer followed by a TeX
    // unit is only trimmed. Used for the spacing argument of a line break.
    static QString normaliseDimension(const QString& text);

private:
    explicit KLatexWriter(const KLatexWriterOptions& options);

    QString node(const KLatexNode* node);
    QString print(const KLatexGroup& group);
    QString print(const KLatexText& text);
    QString print(const KLatexCommand& command);
    QString print(const KLatexEnv& env);
    QString print(const KLatexRow& row);
    QString print(const KLatexScript& script);
    QString print(const KLatexLeftRight& leftRight);
    QString print(const KLatexUnknownCommand& command);

    QString arguments(const KLatexArgs& args);
    QString scriptPart(QChar marker, const KLatexNode* node);
    QString plainCommand(const QString& name, const KLatexArgs& args);
    QString verbatim(const QString& name, const KLatexArgs& args);

    KLatexWriterOptions m_options;
    // One value for the whole run: nested printing updates it too.
    OutputClass m_lastClass = OutputClass::none;
    // Environment nesting, for indentation.
    int m_depth = 0;
    // Node nesting, for the recursion guard.
    int m_nesting = 0;
};
