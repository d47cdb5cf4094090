#pragma once
// The layout engine's shared pieces, used by every layout rule in render/:
// the context passed down the recursion, containers, and the dispatch entry points.
// Every length is a multiple of the current font size S, in points.

#include "omml/omml_model.h"
#include "render/typo_node.h"

#include <QFont>
#include <QFontMetricsF>

#include <memory>

// Passed by value (or const reference) down the recursion.
struct KLayoutContext {
    QFont font;            // family "Times New Roman", point size `size`
    QFontMetricsF metrics; // of font
    double size = 0;       // S
    int scriptLevel = 0;   // 0 on the main line
    int depth = 0;         // nesting depth of layoutElement, for the recursion guard
};

// Main-line context at `size` points.
KLayoutContext makeLayoutContext(double size);
// Scripts and limits: only the first level shrinks to 0.7 x S; the level always counts up.
KLayoutContext scriptContext(const KLayoutContext& context);

// An empty container (kind 1) carrying the context's font size and family.
std::unique_ptr<KTypoLine> makeContainer(const KLayoutContext& context);
// Sets width, ascent and bottom, and derives height (ascent + bottom) and top (-ascent).
void setBox(KTypoNode& node, double width, double ascent, double bottom);

// Lays out a child list as a horizontal list; always a container (empty for an empty list).
std::unique_ptr<KTypoLine> layoutList(const KLayoutContext& context, const KOmmlNodeList& list);
// True when the list holds no element (null entries do not count).
bool isEmptyList(const KOmmlNodeList& list);
// Lays out one element by its kind; null for kinds that draw nothing and past the depth guard.
KTypoNodePtr layoutElement(const KLayoutContext& context, const KOmmlNode& node);

// Nesting deeper than this lays out to nothing instead of exhausting the stack.
inline constexpr int kMaxLayoutDepth = 512;

// The core rules (layout_core.cpp).
KTypoNodePtr layoutRun(const KLayoutContext& context, const ORun& run);
KTypoNodePtr layoutFraction(const KLayoutContext& context, const OFraction& fraction);
KTypoNodePtr layoutSuperscript(const KLayoutContext& context, const OSuperscript& script);
KTypoNodePtr layoutSubscript(const KLayoutContext& context, const OSubscript& script);
KTypoNodePtr layoutSubSuperscript(const KLayoutContext& context, const OSubSuperscript& script);
KTypoNodePtr layoutNary(const KLayoutContext& context, const ONaryOperator& nary);
KTypoNodePtr layoutRadical(const KLayoutContext& context, const ORadical& radical);
KTypoNodePtr layoutFunction(const KLayoutContext& context, const OFunction& function);
KTypoNodePtr layoutLimitLower(const KLayoutContext& context, const OLimitLower& limit);
KTypoNodePtr layoutLimitUpper(const KLayoutContext& context, const OLimitUpper& limit);
KTypoNodePtr layoutBox(const KLayoutContext& context, const OBox& box);

// Fences, decorations and tables (layout_fences.cpp, layout_decorations.cpp, layout_tables.cpp).
KTypoNodePtr layoutDelimiter(const KLayoutContext& context, const ODelimiter& delimiter);
KTypoNodePtr layoutAccent(const KLayoutContext& context, const OAccent& accent);
KTypoNodePtr layoutBar(const KLayoutContext& context, const OBar& bar);
KTypoNodePtr layoutBorderBox(const KLayoutContext& context, const OBorderBox& box);
KTypoNodePtr layoutGroupChar(const KLayoutContext& context, const OGroupChar& groupChar);
KTypoNodePtr layoutMatrix(const KLayoutContext& context, const OMatrix& matrix);
KTypoNodePtr layoutEquationArray(const KLayoutContext& context, const OEquationArray& array);
