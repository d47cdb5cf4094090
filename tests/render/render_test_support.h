#pragma once
// Builders for OMML models and readers for laid-out trees, shared by the render tests.

#include "latex/latex_parser.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_model.h"
#include "render/layout_engine.h"
#include "render/render.h"

#include <QFont>
#include <QFontMetricsF>

#include <gtest/gtest.h>

namespace rendertest {

inline KOmmlNodePtr run(const QString& text)
{
    ORun r;
    r.text = text;
    return makeOmmlNode(std::move(r));
}

inline KOmmlNodeList runs(const QString& text)
{
    return makeOmmlList(run(text));
}

// The equation holding `elements`, laid out at `size`; the root is the equation's horizontal list.
inline KTypoNodePtr layoutOf(KOmmlNodeList elements, double size)
{
    const KOmmlNodePtr equation = makeOmmlNode(OMathEquation{std::move(elements)});
    return layoutEquation(equation.get(), size);
}

// The layout of one element at `size`: `node` is the only child of the equation's list.
struct Laid {
    KTypoNodePtr root;
    const KTypoNode* node = nullptr;
};

inline Laid laidOut(KTypoNodePtr root)
{
    Laid laid{std::move(root)};
    if (laid.root && laid.root->children.size() == 1)
        laid.node = laid.root->children.front().get();
    return laid;
}

inline Laid layoutOne(KOmmlNodePtr element, double size)
{
    return laidOut(layoutOf(makeOmmlList(std::move(element)), size));
}

// The layout of the OMML the LaTeX converter writes for `latex`.
inline Laid layoutLatex(const char* latex, double size)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(QString::fromUtf8(latex), diagnostics);
    KLatexAst2Omml converter;
    converter.prepare(false);
    return laidOut(layoutOf(converter.convert(*tree), size));
}

// The metrics the layout measures with, as Qt resolves the font on this machine.
inline QFontMetricsF metricsAt(double size)
{
    QFont font;
    font.setFamily(QStringLiteral("Times New Roman"));
    font.setPointSizeF(size);
    return QFontMetricsF(font);
}

// The run's glyph inside the container a run lays out to.
inline const KTypoNode* glyphOf(const KTypoNode* runContainer)
{
    const KTypoNode* node = runContainer;
    while (node && node->kind == kTypoLine && !node->children.empty())
        node = node->children.front().get();
    return node && node->kind == kTypoGlyph ? node : nullptr;
}

} // namespace rendertest
