#pragma once
// LaTeX syntax tree -> OMML node list. The converter walks the tree by node kind;
// everything that depends on a command's or environment's name lives in the
// tables (latex2omml/tables.h) and the handler families they point at.

#include "latex/latex_ast.h"
#include "omml/omml_model.h"

#include <deque>
#include <functional>

class KLatexAst2Omml;

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
    // Empties the style stack, pushes the default style, remembers the mode.
    void prepare(bool renderMode);
    KOmmlNodeList convert(const KLatexNode& node);

    const OControlProperties& currentStyle() const { return m_styles.back(); }
    KRunProperties currentRunProperties() const;
    // A run holding text, styled from the top of the style stack.
    KOmmlNodePtr makeStyledRun(QString text) const;
    void pushStyle(const OControlProperties& style) { m_styles.push_back(style); }
    void popStyle() { m_styles.pop_back(); }
    bool renderMode() const { return m_renderMode; }

private:
    std::deque<OControlProperties> m_styles;
    bool m_renderMode = false;
    int m_depth = 0;
};
