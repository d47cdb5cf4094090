// Delimiters: fences of the math font around a body, grown as TeX grows \left and
// \right: tall enough to cover the body's extent from the math axis, less a little
// (the delimiter factor and shortfall), from the font's larger forms first and its
// assembly of pieces beyond them. A missing fence leaves a small gap.

#include "render/layout_engine.h"

#include <algorithm>

namespace {

constexpr double kDelimiterFactor = 0.901;   // a fence covers at least this share of the body
constexpr double kDelimiterShortfall = 0.5;  // × the main size: and falls short by at most this
constexpr double kNullDelimiterSpace = 0.12; // × the main size: the room of a missing fence
constexpr double kPlaceholderPen = 0.02;     // × S, at least 0.5 pt
constexpr int kPlaceholderSpaces = 3;        // an empty body is three spaces wide
// The outline of an empty body: dark enough to read as a slot, not as ink.
const QString kPlaceholderColour = QStringLiteral("#1b1818");

// The first character of a fence's text; 0 when the side has none.
char32_t fenceCharacter(const QString& chr)
{
    const QVector<uint> characters = chr.toUcs4();
    return characters.isEmpty() ? 0 : characters.front();
}

// A missing fence: an empty box of the null delimiter's width.
KTypoNodePtr nullFence(const KLayoutContext& context, double space)
{
    auto gap = makeContainer(context);
    setBox(*gap, space * context.mainSize, 0, 0);
    return gap;
}

} // namespace

int sizedFenceLevel(const ODelimiter& delimiter)
{
    const KOmmlNode* only = nullptr;
    for (const KOmmlNodePtr& element : delimiter.e) {
        if (!element)
            continue;
        if (only)
            return 0;
        only = element.get();
    }
    const auto* phantom = only && delimiter.separated.empty() ? std::get_if<OPhantom>(&only->value) : nullptr;
    return phantom ? strutLevel(*phantom) : 0;
}

double delimiterSize(const KLayoutContext& context, double ascent, double bottom)
{
    const double axis = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    const double extent = std::max(ascent - axis, bottom + axis);
    return std::max(2 * extent * kDelimiterFactor, 2 * extent - kDelimiterShortfall * context.mainSize);
}

KTypoNodePtr fenceGlyph(const KLayoutContext& context, char32_t character, double size)
{
    if (character == 0)
        return nullFence(context, kNullDelimiterSpace);
    KTypoNodePtr grown = verticalGlyph(context, character, size);
    if (!grown)
        return nullFence(context, kNullDelimiterSpace);
    // Centred on the math axis, whatever the form's own baseline.
    const double axis = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    const double total = grown->ascent + grown->bottom;
    auto fence = makeContainer(context);
    setBox(*fence, grown->width, total / 2 + axis, total / 2 - axis);
    fence->addChild(std::move(grown));
    return fence;
}

KTypoNodePtr layoutDelimiter(const KLayoutContext& context, const ODelimiter& delimiter)
{
    // The elements in order, the separators between them sized like the fences. Lines inside a
    // single brace are the parts of cases.
    const bool brace = (delimiter.begChr == QLatin1String("{")) != (delimiter.endChr == QLatin1String("}")) &&
                       (delimiter.begChr.isEmpty() || delimiter.endChr.isEmpty());
    KLayoutContext inner = context;
    inner.casesLines = brace && delimiter.separated.empty();
    std::vector<KAtomList> elements(1);
    appendAtoms(inner, delimiter.e, elements.front());
    inner.casesLines = false;
    for (const KOmmlNodeList& element : delimiter.separated) {
        elements.emplace_back();
        appendAtoms(inner, element, elements.back());
    }
    double width = 0;
    double ascent = 0;
    double bottom = 0;
    for (const KAtomList& element : elements) {
        for (const KAtom& atom : element) {
            width += atom.node->width;
            ascent = std::max(ascent, atom.node->ascent);
            bottom = std::max(bottom, atom.node->bottom);
        }
    }
    // A body of no width that has height (the strut of \bigl) still sizes the fences.
    if (!(width > 0) && !(ascent + bottom > 0)) {
        // An empty body shows a slot three spaces wide, a line high.
        elements.clear();
        elements.emplace_back();
        const double spaceWidth = context.metrics.horizontalAdvance(QLatin1Char(' '));
        auto slot = std::make_unique<KTypoStrokePath>();
        ascent = context.metrics.ascent();
        bottom = context.metrics.descent();
        setBox(*slot, kPlaceholderSpaces * spaceWidth, ascent, bottom);
        slot->strokeColor = kPlaceholderColour;
        slot->penWidth = std::max(0.5, kPlaceholderPen * context.size);
        slot->path.addRect(QRectF(0, 0, slot->width, slot->height));
        elements.front().push_back(KAtom{std::move(slot)});
    }

    const double size = delimiterSize(context, ascent, bottom);
    const char32_t separator = fenceCharacter(delimiter.sepChr);
    KAtomList atoms;
    atoms.push_back(
        KAtom{fenceGlyph(context, fenceCharacter(delimiter.begChr), size), KAtomClass::open, KAtomClass::open});
    for (std::size_t i = 0; i < elements.size(); ++i) {
        if (i > 0 && separator != 0) {
            // A bar between elements closes what precedes it and opens what follows; a comma
            // or semicolon is punctuation.
            const KAtomClass kind = characterClass(separator);
            const bool punctuation = kind == KAtomClass::punct;
            atoms.push_back(KAtom{fenceGlyph(context, separator, punctuation ? 0.0 : size),
                                  punctuation ? kind : KAtomClass::close,
                                  punctuation ? kind : KAtomClass::open});
        }
        for (KAtom& atom : elements[i])
            atoms.push_back(std::move(atom));
    }
    atoms.push_back(KAtom{fenceGlyph(context, fenceCharacter(delimiter.endChr), size), KAtomClass::close,
                          KAtomClass::close});
    // A fence of the \big family has no null delimiter on its missing side.
    if (sizedFenceLevel(delimiter) > 0) {
        for (KAtom* side : {&atoms.front(), &atoms.back()}) {
            if (side->node->kind == kTypoLine && side->node->children.empty())
                side->node->width = 0;
        }
    }
    return joinAtoms(context, std::move(atoms));
}
