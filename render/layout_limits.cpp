// Large operators and limits: the operator at its display size in display style,
// centred on the math axis, with its limits stacked over and under it or set beside
// it as scripts; limits of \lim-like names stacked under or over their base.

#include "render/layout_engine.h"
#include "render/layout_scripts.h"

#include <algorithm>

namespace {

constexpr char32_t kIntegral = U'\u222B'; // the operator when none is given

struct Operator {
    KTypoNodePtr node;
    double italicCorrection = 0;
};

// The operator glyph, at its display size in display style, centred on the axis.
Operator operatorGlyph(const KLayoutContext& context, const QString& chr)
{
    const QVector<uint> characters = chr.toUcs4();
    const char32_t character = characters.isEmpty() ? kIntegral : characters.front();
    const KMathFont& font = KMathFont::instance();
    KMathGlyph glyph = font.glyph(character);
    if (!glyph.valid())
        return {};
    if (context.style == KMathStyle::display) {
        const double minHeight = font.constant(HB_OT_MATH_CONSTANT_DISPLAY_OPERATOR_MIN_HEIGHT);
        const auto variants = font.variants(glyph, true);
        for (const auto& [variant, advance] : variants) {
            glyph = variant;
            if (advance >= minHeight)
                break;
        }
    }
    auto node = mathGlyphNode(context, glyph, QString::fromUcs4(&character, 1));
    Operator op;
    op.italicCorrection = node->italicCorrection;
    const double axis = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    const double half = (node->ascent + node->bottom) / 2;
    auto line = makeContainer(context);
    setBox(*line, node->width, half + axis, half - axis);
    line->addChild(std::move(node));
    op.node = std::move(line);
    return op;
}

// A base with an optional limit over and under it, each centred, shifted by half the
// base's italic correction (right above, left below).
KTypoNodePtr stackLimits(const KLayoutContext& context, KTypoNodePtr base, KTypoNodePtr over,
                         KTypoNodePtr under, double italicCorrection)
{
    if (!over && !under)
        return base;
    auto c = [&context](hb_ot_math_constant_t constant) { return mathConstant(context, constant); };
    double width = base->width;
    if (over)
        width = std::max(width, over->width + italicCorrection / 2);
    if (under)
        width = std::max(width, under->width + italicCorrection / 2);
    double ascent = base->ascent;
    double overShift = 0; // baseline of the upper limit above the base's top
    if (over) {
        overShift = std::max(c(HB_OT_MATH_CONSTANT_UPPER_LIMIT_BASELINE_RISE_MIN),
                             c(HB_OT_MATH_CONSTANT_UPPER_LIMIT_GAP_MIN) + over->bottom);
        ascent += overShift + over->ascent;
    }
    double bottom = base->bottom;
    double underShift = 0; // baseline of the lower limit below the base's bottom
    if (under) {
        underShift = std::max(c(HB_OT_MATH_CONSTANT_LOWER_LIMIT_BASELINE_DROP_MIN),
                              c(HB_OT_MATH_CONSTANT_LOWER_LIMIT_GAP_MIN) + under->ascent);
        bottom += underShift + under->bottom;
    }
    base->x = (width - base->width) / 2;
    base->y = ascent - base->ascent;
    if (over) {
        over->x = (width - over->width + italicCorrection) / 2;
        over->y = ascent - base->ascent - overShift - over->ascent;
    }
    if (under) {
        under->x = (width - under->width - italicCorrection) / 2;
        under->y = ascent + base->bottom + underShift - under->ascent;
    }
    auto line = makeContainer(context);
    setBox(*line, width, ascent, bottom);
    line->addChild(std::move(base));
    line->addChild(std::move(over));
    line->addChild(std::move(under));
    return line;
}

KTypoNodePtr optionalList(const KLayoutContext& context, const KOmmlNodeList& list, bool hidden)
{
    if (hidden || isEmptyList(list))
        return nullptr;
    return layoutList(context, list);
}

} // namespace

KTypoNodePtr layoutNary(const KLayoutContext& context, const ONaryOperator& nary)
{
    Operator op = operatorGlyph(context, nary.chr);
    KTypoNodePtr upper = optionalList(scriptContext(context), nary.sup, nary.supHide);
    KTypoNodePtr lower = optionalList(subscriptContext(context), nary.sub, nary.subHide);
    KTypoNodePtr limited;
    if (!op.node) {
        limited = makeContainer(context);
    } else if (nary.limLoc == OLimitLocation::undOvr) {
        limited =
            stackLimits(context, std::move(op.node), std::move(upper), std::move(lower), op.italicCorrection);
    } else {
        KScriptBase kind;
        kind.superscriptShift = op.italicCorrection;
        limited = attachScripts(context, std::move(op.node), std::move(upper), std::move(lower), kind);
    }
    KAtomList atoms;
    atoms.push_back(KAtom{std::move(limited), KAtomClass::op, KAtomClass::op});
    for (const KOmmlNodePtr& element : nary.e) {
        if (!element)
            continue;
        for (KAtom& atom : layoutAtoms(context, *element))
            atoms.push_back(std::move(atom));
    }
    return joinAtoms(context, std::move(atoms));
}

KTypoNodePtr layoutLimitLower(const KLayoutContext& context, const OLimitLower& limit)
{
    auto base = layoutList(context, limit.e);
    if (isEmptyList(limit.lim))
        return base;
    return stackLimits(context, std::move(base), nullptr, layoutList(subscriptContext(context), limit.lim),
                       0);
}

KTypoNodePtr layoutLimitUpper(const KLayoutContext& context, const OLimitUpper& limit)
{
    auto base = layoutList(context, limit.e);
    if (isEmptyList(limit.lim))
        return base;
    return stackLimits(context, std::move(base), layoutList(scriptContext(context), limit.lim), nullptr, 0);
}
