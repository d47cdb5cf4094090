// The layout engine's frame: contexts and styles, containers, the horizontal list
// with TeX's spaces between atoms, and the dispatch on element kind. The rules for
// each kind live in the layout_*.cpp files.

#include "render/layout_engine.h"

#include "render/math_font.h"

#include <algorithm>
#include <type_traits>

namespace {

const QString kTextFamily = QStringLiteral("Times New Roman");
constexpr double kMuPerEm = 18.0;

// The class an element shows its neighbours: a list of one atom keeps that atom's classes.
KAtomClass elementClass(const KOmmlNode& node)
{
    if (std::holds_alternative<ONaryOperator>(node.value) || std::holds_alternative<OFunction>(node.value))
        return KAtomClass::op;
    if (const auto* delimiter = std::get_if<ODelimiter>(&node.value)) {
        // A fence of the \big family opens or closes as the fence alone would.
        if (sizedFenceLevel(*delimiter) > 0 && delimiter->endChr.isEmpty() != delimiter->begChr.isEmpty())
            return delimiter->endChr.isEmpty() ? KAtomClass::open : KAtomClass::close;
        return KAtomClass::inner;
    }
    return KAtomClass::ord;
}

// Scripts and limits take the class of their base when the base is one atom.
const KOmmlNodeList* baseList(const KOmmlNode& node)
{
    if (const auto* e = std::get_if<OSuperscript>(&node.value))
        return &e->e;
    if (const auto* e = std::get_if<OSubscript>(&node.value))
        return &e->e;
    if (const auto* e = std::get_if<OSubSuperscript>(&node.value))
        return &e->e;
    if (const auto* e = std::get_if<OLimitLower>(&node.value))
        return &e->e;
    if (const auto* e = std::get_if<OLimitUpper>(&node.value))
        return &e->e;
    if (const auto* e = std::get_if<OBox>(&node.value))
        return &e->e;
    return nullptr;
}

// The classes of a one-character base: the class of its character, else ordinary.
KAtomClass baseClass(const KOmmlNodeList& list)
{
    const KOmmlNode* only = nullptr;
    for (const KOmmlNodePtr& element : list) {
        if (!element)
            continue;
        if (only)
            return KAtomClass::ord;
        only = element.get();
    }
    if (!only)
        return KAtomClass::ord;
    if (const auto* run = std::get_if<ORun>(&only->value)) {
        const QVector<uint> characters = run->text.toUcs4();
        if (characters.size() == 1)
            return characterClass(characters.front());
        return KAtomClass::ord;
    }
    if (const KOmmlNodeList* inner = baseList(*only))
        return baseClass(*inner);
    return elementClass(*only);
}

} // namespace

KLayoutContext makeLayoutContext(double size)
{
    QFont font;
    font.setFamily(kTextFamily);
    font.setPointSizeF(size);
    KLayoutContext context{font, QFontMetricsF(font), size, 0, 0};
    context.mainSize = size;
    return context;
}

KLayoutContext styledContext(const KLayoutContext& context, KMathStyle style, bool cramped)
{
    KLayoutContext styled = context;
    styled.style = style;
    styled.cramped = cramped;
    const double size = context.mainSize * styleScale(style);
    if (size != context.size) {
        styled.size = size;
        styled.font.setPointSizeF(size);
        styled.metrics = QFontMetricsF(styled.font);
    }
    return styled;
}

KLayoutContext scriptContext(const KLayoutContext& context)
{
    KLayoutContext script = styledContext(context, scriptStyle(context.style), context.cramped);
    script.upright = false;
    ++script.scriptLevel;
    return script;
}

KLayoutContext subscriptContext(const KLayoutContext& context)
{
    KLayoutContext script = scriptContext(context);
    script.cramped = true;
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

bool isPrime(char32_t c)
{
    return c == U'\'' || c == U'\u2032' || c == U'\u2033' || c == U'\u2034' || c == U'\u2057';
}

bool isPrimesOnly(const KOmmlNodeList& list)
{
    bool any = false;
    for (const KOmmlNodePtr& element : list) {
        if (!element)
            continue;
        const auto* run = std::get_if<ORun>(&element->value);
        if (!run)
            return false;
        for (const uint c : run->text.toUcs4()) {
            if (!isPrime(c))
                return false;
            any = true;
        }
    }
    return any;
}

const KTypoGlyph* singleGlyph(const KTypoNode& node)
{
    const KTypoNode* current = &node;
    while (current->kind == kTypoLine && current->children.size() == 1)
        current = current->children.front().get();
    const auto* glyph = current->kind == kTypoGlyph ? static_cast<const KTypoGlyph*>(current) : nullptr;
    return glyph && glyph->mathFace >= 0 ? glyph : nullptr;
}

std::unique_ptr<KTypoLine> joinAtoms(const KLayoutContext& context, KAtomList atoms)
{
    // Binary operators without two operands become ordinary, left to right.
    for (size_t i = 0; i < atoms.size(); ++i) {
        if (atoms[i].left != KAtomClass::bin)
            continue;
        const KAtomClass* previous = i > 0 ? &atoms[i - 1].right : nullptr;
        const KAtomClass* next = i + 1 < atoms.size() ? &atoms[i + 1].left : nullptr;
        if (binaryActsAsOrdinary(previous, next))
            atoms[i].left = atoms[i].right = KAtomClass::ord;
    }
    auto line = makeContainer(context);
    const double mu = context.size / kMuPerEm;
    double x = 0;
    double ascent = 0;
    double bottom = 0;
    for (size_t i = 0; i < atoms.size(); ++i) {
        KTypoNodePtr& child = atoms[i].node;
        if (i > 0)
            x += mu * interAtomSpace(atoms[i - 1].right, atoms[i].left, context.style);
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

void appendAtoms(const KLayoutContext& context, const KOmmlNodeList& list, KAtomList& atoms)
{
    for (const KOmmlNodePtr& element : list) {
        if (!element)
            continue;
        for (KAtom& atom : layoutAtoms(context, *element))
            atoms.push_back(std::move(atom));
    }
}

std::unique_ptr<KTypoLine> layoutList(const KLayoutContext& context, const KOmmlNodeList& list)
{
    KAtomList atoms;
    appendAtoms(context, list, atoms);
    return joinAtoms(context, std::move(atoms));
}

KAtomList layoutAtoms(const KLayoutContext& context, const KOmmlNode& node)
{
    if (const auto* run = std::get_if<ORun>(&node.value)) {
        if (context.depth >= kMaxLayoutDepth)
            return {};
        KLayoutContext inner = context;
        ++inner.depth;
        return layoutRun(inner, *run);
    }
    KTypoNodePtr laid = layoutElement(context, node);
    KAtomList atoms;
    if (!laid)
        return atoms;
    KAtom atom{std::move(laid)};
    if (const KOmmlNodeList* base = baseList(node))
        atom.left = atom.right = baseClass(*base);
    else
        atom.left = atom.right = elementClass(node);
    // An operator followed by its argument shows the argument's side to the right.
    if (std::holds_alternative<OFunction>(node.value) || std::holds_alternative<ONaryOperator>(node.value))
        atom.right = KAtomClass::ord;
    atoms.push_back(std::move(atom));
    return atoms;
}

KTypoNodePtr layoutElement(const KLayoutContext& context, const KOmmlNode& node)
{
    if (context.depth >= kMaxLayoutDepth)
        return nullptr;
    KLayoutContext inner = context;
    ++inner.depth;
    // Only an equation array standing right inside a brace is the body of cases.
    inner.casesLines = context.casesLines && std::holds_alternative<OEquationArray>(node.value);
    return std::visit(
        [&inner](const auto& element) -> KTypoNodePtr {
            using T = std::decay_t<decltype(element)>;
            if constexpr (std::is_same_v<T, ORun>)
                return joinAtoms(inner, layoutRun(inner, element));
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
            else if constexpr (std::is_same_v<T, OPhantom>)
                return layoutPhantom(inner, element);
            else
                // Paragraphs, nested equations and pre-scripts occupy no space.
                return nullptr;
        },
        node.value);
}
