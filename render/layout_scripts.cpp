// Superscripts and subscripts: shifted by the font's script constants, kept clear
// of each other and of the base, the superscript after the base's italic correction.

#include "render/layout_engine.h"

#include "render/layout_scripts.h"

#include <algorithm>

KTypoNodePtr attachScripts(const KLayoutContext& context, KTypoNodePtr base, KTypoNodePtr sup,
                           KTypoNodePtr sub, const KScriptBase& kind)
{
    if (!sup && !sub)
        return base;
    auto c = [&context](hb_ot_math_constant_t constant) { return mathConstant(context, constant); };
    // A lone character keeps its scripts at the font's shifts; a bigger base lets them follow its edges.
    double up = 0;
    double down = 0;
    if (!kind.character) {
        up = base->ascent - c(HB_OT_MATH_CONSTANT_SUPERSCRIPT_BASELINE_DROP_MAX);
        down = base->bottom + c(HB_OT_MATH_CONSTANT_SUBSCRIPT_BASELINE_DROP_MIN);
    }
    if (sup && kind.primes) {
        up = 0;
    } else if (sup) {
        up = std::max({up,
                       c(context.cramped ? HB_OT_MATH_CONSTANT_SUPERSCRIPT_SHIFT_UP_CRAMPED
                                         : HB_OT_MATH_CONSTANT_SUPERSCRIPT_SHIFT_UP),
                       sup->bottom + c(HB_OT_MATH_CONSTANT_SUPERSCRIPT_BOTTOM_MIN)});
    }
    if (sub) {
        down = std::max(down, c(HB_OT_MATH_CONSTANT_SUBSCRIPT_SHIFT_DOWN));
        if (!sup)
            down = std::max(down, sub->ascent - c(HB_OT_MATH_CONSTANT_SUBSCRIPT_TOP_MAX));
    }
    if (sup && sub && !kind.primes) {
        const double gap = (up - sup->bottom) - (sub->ascent - down);
        const double minGap = c(HB_OT_MATH_CONSTANT_SUB_SUPERSCRIPT_GAP_MIN);
        if (gap < minGap) {
            down += minGap - gap;
            const double lift =
                c(HB_OT_MATH_CONSTANT_SUPERSCRIPT_BOTTOM_MAX_WITH_SUBSCRIPT) - (up - sup->bottom);
            if (lift > 0) {
                up += lift;
                down -= lift;
            }
        }
    }
    const double ascent = std::max(base->ascent, sup ? up + sup->ascent : 0.0);
    const double bottom = std::max(base->bottom, sub ? down + sub->bottom : 0.0);
    const double baseWidth = base->width;
    base->x = 0;
    base->y = ascent - base->ascent;
    double end = baseWidth;
    if (sup) {
        sup->x = baseWidth + kind.superscriptShift;
        sup->y = ascent - up - sup->ascent;
        end = std::max(end, sup->x + sup->width);
    }
    if (sub) {
        sub->x = baseWidth - kind.subscriptShift;
        sub->y = ascent + down - sub->ascent;
        end = std::max(end, sub->x + sub->width);
    }
    auto line = makeContainer(context);
    setBox(*line, end + c(HB_OT_MATH_CONSTANT_SPACE_AFTER_SCRIPT), ascent, bottom);
    line->addChild(std::move(base));
    line->addChild(std::move(sup));
    line->addChild(std::move(sub));
    return line;
}

namespace {

// A base of one character moves its subscript under its italic overhang.
KScriptBase baseKind(const KTypoNode& base)
{
    KScriptBase kind;
    if (const KTypoGlyph* glyph = singleGlyph(base)) {
        kind.character = true;
        if (glyph->italic)
            kind.subscriptShift = glyph->italicCorrection;
    }
    return kind;
}

KTypoNodePtr scripted(const KLayoutContext& context, const KOmmlNodeList& e, const KOmmlNodeList* sup,
                      const KOmmlNodeList* sub)
{
    auto base = layoutList(context, e);
    KScriptBase kind = baseKind(*base);
    kind.primes = sup && isPrimesOnly(*sup);
    KTypoNodePtr upper = sup ? layoutList(kind.primes ? context : scriptContext(context), *sup) : nullptr;
    KTypoNodePtr lower = sub ? layoutList(subscriptContext(context), *sub) : nullptr;
    return attachScripts(context, std::move(base), std::move(upper), std::move(lower), kind);
}

} // namespace

KTypoNodePtr layoutSuperscript(const KLayoutContext& context, const OSuperscript& script)
{
    return scripted(context, script.e, &script.sup, nullptr);
}

KTypoNodePtr layoutSubscript(const KLayoutContext& context, const OSubscript& script)
{
    return scripted(context, script.e, nullptr, &script.sub);
}

KTypoNodePtr layoutSubSuperscript(const KLayoutContext& context, const OSubSuperscript& script)
{
    return scripted(context, script.e, &script.sup, &script.sub);
}
