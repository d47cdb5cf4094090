// The layout engine's frame: contexts, containers, the horizontal list and the
// dispatch on element kind. The rules for each kind live in the layout_*.cpp files.

#include "render/layout_engine.h"

#include <algorithm>
#include <type_traits>

namespace {

const QString kRenderFamily = QStringLiteral("Times New Roman");
constexpr double kListGap = 0.1;     // × S between neighbours of a horizontal list
constexpr double kScriptScale = 0.7; // first script level only

} // namespace

KLayoutContext makeLayoutContext(double size)
{
    QFont font;
    font.setFamily(kRenderFamily);
    font.setPointSizeF(size);
    return KLayoutContext{font, QFontMetricsF(font), size, 0, 0};
}

KLayoutContext scriptContext(const KLayoutContext& context)
{
    KLayoutContext script = context;
    if (context.scriptLevel == 0) {
        script.size = kScriptScale * context.size;
        script.font.setPointSizeF(script.size);
        script.metrics = QFontMetricsF(script.font);
    }
    ++script.scriptLevel;
    return script;
}

std::unique_ptr<KTypoLine> makeContainer(const KLayoutContext& context)
{
    auto line = std::make_unique<KTypoLine>();
    line->fontSize = context.size;
    line->fontFamily = context.font.family();
    return line;
}

void setBox(KTypoNode& node, double width, double ascent, double bottom)
{
    node.width = width;
    node.ascent = ascent;
    node.bottom = bottom;
    node.top = -ascent;
    node.height = ascent + bottom;
}

bool isEmptyList(const KOmmlNodeList& list)
{
    return std::none_of(list.begin(), list.end(), [](const KOmmlNodePtr& node) { return node != nullptr; });
}

std::unique_ptr<KTypoLine> layoutList(const KLayoutContext& context, const KOmmlNodeList& list)
{
    auto line = makeContainer(context);
    const double gap = kListGap * context.size;
    double x = 0;
    double ascent = 0;
    double bottom = 0;
    bool first = true;
    for (const KOmmlNodePtr& element : list) {
        if (!element)
            continue;
        KTypoNodePtr child = layoutElement(context, *element);
        if (!child)
            continue;
        if (!first)
            x += gap;
        first = false;
        child->x = x;
        child->y = 0;
        x += child->width;
        ascent = std::max(ascent, child->ascent);
        bottom = std::max(bottom, child->bottom);
        line->addChild(std::move(child));
    }
    setBox(*line, x, ascent, bottom);
    for (KTypoNodePtr& child : line->children)
        child->moveBy(0, ascent - child->ascent);
    return line;
}

KTypoNodePtr layoutElement(const KLayoutContext& context, const KOmmlNode& node)
{
    if (context.depth >= kMaxLayoutDepth)
        return nullptr;
    KLayoutContext inner = context;
    ++inner.depth;
    return std::visit(
        [&inner](const auto& element) -> KTypoNodePtr {
            using T = std::decay_t<decltype(element)>;
            if constexpr (std::is_same_v<T, ORun>)
                return layoutRun(inner, element);
            else if constexpr (std::is_same_v<T, OFraction>)
                return layoutFraction(inner, element);
            else if constexpr (std::is_same_v<T, OSuperscript>)
                return layoutSuperscript(inner, element);
            else if constexpr (std::is_same_v<T, OSubscript>)
                return layoutSubscript(inner, element);
            else if constexpr (std::is_same_v<T, OSubSuperscript>)
                return layoutSubSuperscript(inner, element);
            else if constexpr (std::is_same_v<T, ORadical>)
                return layoutRadical(inner, element);
            else if constexpr (std::is_same_v<T, ONaryOperator>)
                return layoutNary(inner, element);
            else if constexpr (std::is_same_v<T, OLimitLower>)
                return layoutLimitLower(inner, element);
            else if constexpr (std::is_same_v<T, OLimitUpper>)
                return layoutLimitUpper(inner, element);
            else if constexpr (std::is_same_v<T, OFunction>)
                return layoutFunction(inner, element);
            else if constexpr (std::is_same_v<T, ODelimiter>)
                return layoutDelimiter(inner, element);
            else if constexpr (std::is_same_v<T, OAccent>)
                return layoutAccent(inner, element);
            else if constexpr (std::is_same_v<T, OBar>)
                return layoutBar(inner, element);
            else if constexpr (std::is_same_v<T, OBorderBox>)
                return layoutBorderBox(inner, element);
            else if constexpr (std::is_same_v<T, OGroupChar>)
                return layoutGroupChar(inner, element);
            else if constexpr (std::is_same_v<T, OMatrix>)
                return layoutMatrix(inner, element);
            else if constexpr (std::is_same_v<T, OBox>)
                return layoutBox(inner, element);
            else if constexpr (std::is_same_v<T, OEquationArray>)
                return layoutEquationArray(inner, element);
            else
                // Paragraphs, nested equations, phantoms and pre-scripts occupy no space.
                return nullptr;
        },
        node.value);
}
