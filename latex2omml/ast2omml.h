#pragma once
// LaTeX syntax tree -> OMML node list. The converter walks the tree by node kind;
// everything that depends on a command's or environment's name lives in the
// tables (latex2omml/tables.h) and the handler families they point at.

#include "latex/latex_ast.h"
#include "omml/omml_model.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <vector>

class KLatexAst2Omml;
struct KLatexSymbol;

// The properties a run takes from the current style.
struct KRunProperties {
    OMathRunProperties mathProps;
    OWordRunProperties wordProps;
};

using CommandHandler = std::function<KOmmlNodeList(KLatexAst2Omml&, KLatexCommand const&)>;
using ScriptHandler = std::function<KOmmlNodeList(KLatexAst2Omml&, KLatexScript const&)>;
using EnvironmentHandler = std::function<KOmmlNodeList(KLatexAst2Omml&, KLatexEnv const&)>;

class KLatexAst2Omml {
public:
    // Nesting deeper than this converts to nothing instead of exhausting the stack.
    static constexpr int kMaxDepth = 1024;

    // Empties the style stack, pushes the default style, remembers the mode.
    void prepare(bool renderMode);
    KOmmlNodeList convert(const KLatexNode& node);
    // As above; a missing node converts to an empty list.
    KOmmlNodeList convert(const KLatexNode* node);
    // Converts nodes as the children of one group: limits merging, run merging and
    // operands for operators and functions. Null entries are skipped.
    KOmmlNodeList convertSequence(const std::vector<const KLatexNode*>& nodes);
    // Converts argument `index` (counting from 0); empty when it is missing or has no node.
    KOmmlNodeList convertArgument(const KLatexArgs& args, std::size_t index);

    const OControlProperties& currentStyle() const { return m_styles.back(); }
    KRunProperties currentRunProperties() const;
    // A run holding text, styled from the top of the style stack.
    KOmmlNodePtr makeStyledRun(QString text) const;
    void pushStyle(const OControlProperties& style) { m_styles.push_back(style); }
    // The default style at the bottom is never popped, so an unmatched pop cannot empty the stack.
    void popStyle()
    {
        if (m_styles.size() > 1)
            m_styles.pop_back();
    }
    bool renderMode() const { return m_renderMode; }

private:
    KOmmlNodeList convertGroup(const KLatexGroup& group);
    KOmmlNodeList convertScript(const KLatexScript& script);
    KOmmlNodeList convertLeftRight(const KLatexLeftRight& fence);
    KOmmlNodeList convertUnknown(const KLatexUnknownCommand& command);
    KOmmlNodeList convertUnknownByEntry(const KLatexUnknownCommand& command, const KLatexSymbol& entry);
    // An argument shown as ordinary content; a bracket argument keeps its brackets.
    KOmmlNodeList convertArgumentAsContent(const KLatexArg& arg);

    struct KDispatch;

    std::deque<OControlProperties> m_styles{OControlProperties{}};
    bool m_renderMode = false;
    int m_depth = 0;
};

// The node of argument `index` (counting from 0), or null when the argument is
// missing or has no node.
const KLatexNode* argumentNode(const KLatexArgs& args, std::size_t index);
// The style with upright (plain) math runs, for names, labels and chemistry.
OControlProperties uprightStyle(const OControlProperties& current);
// The node of the last mandatory (braced) argument, or null when there is none.
const KLatexNode* lastMandatoryArgument(const KLatexArgs& args);
// The characters an argument spells out: the texts of the node and of the groups
// inside it, in order; commands and other structure contribute nothing.
QString plainText(const KLatexNode* node);
// True when there are exactly `count` arguments and every one has a node.
bool hasExactArguments(const KLatexArgs& args, std::size_t count);

// A run in roman script without style and with the default word properties,
// whatever the current style is.
KOmmlNodePtr makePlainRun(QString text);
// Moves every node of `source` to the end of `target`.
void appendNodes(KOmmlNodeList& target, KOmmlNodeList&& source);
// Builds the sub/superscript element the script algorithm uses: OSubSuperscript
// when both lists are given, OSubscript or OSuperscript for one, null for none.
// Its control properties are the defaults.
KOmmlNodePtr makeScriptElement(KOmmlNodeList base, std::optional<KOmmlNodeList> sub,
                               std::optional<KOmmlNodeList> sup);
