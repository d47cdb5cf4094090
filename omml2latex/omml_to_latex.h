#pragma once
// OMML model -> LaTeX syntax tree. One visitor operation per OMML element kind;
// everything that depends on a character, a name, a font or a colour is looked
// up in the tables of omml2latex/tables.h. The converter never fails: what it
// cannot express converts to nothing (a null node) and is dropped by the list
// that holds it.

#include "latex/latex_ast.h"
#include "omml/omml_model.h"

// The nodes of one run's text: words of letters and digits, characters that have a
// LaTeX command as that command, every other character alone, spaces as spacing
// commands. Prime characters are apostrophes, or \prime inside a script. Null when nothing is left.
KLatexNodePtr runTextToLatex(const QString& text, bool inScript = false);

class KOmmlToLatexConverter {
public:
    // Past this nesting depth a subtree converts to nothing, so hostile input
    // cannot exhaust the stack. Real formulas stay far below it, and so does
    // anything the XML reader accepts (two elements per nesting level).
    static constexpr int kMaxDepth = 600;

    // One model node; null for a null node and for elements that convert to nothing.
    KLatexNodePtr convert(const KOmmlNode* node);
    // A child list: the non-null results, one alone, otherwise a group (an
    // empty list or one whose elements all convert to nothing gives an empty group).
    KLatexNodePtr convertList(const KOmmlNodeList& list);

    // Style wrapping of a run: font command, then \textcolor. The math
    // properties are optional because a structure's control properties may lack them.
    static KLatexNodePtr applyStyle(KLatexNodePtr node, const OMathRunProperties* mathProps,
                                    const OWordRunProperties& wordProps);
    // Style wrapping of a structure: only when its control properties ask for it.
    static KLatexNodePtr applyControlStyle(KLatexNodePtr node, const OControlProperties& ctrlPr);
    // A styled run: a math alphabet command wraps only the characters it changes
    // (\mathrm{d}x, not \mathrm{d+x}); other styles wrap the whole run. Inside an
    // `enclosing` alphabet command, that alphabet is not repeated.
    static KLatexNodePtr runToLatex(const ORun& run, bool inScript, const QString& enclosing = QString());

private:
    class OmmlToLatexVisitor;
    int m_depth = 0;
    int m_scriptDepth = 0; // how many scripts the node being converted is inside
    QString m_alphabet;    // the alphabet command around the node being converted, if any
};
