// Radicals: the radicand cramped under a rule, the radical sign grown by the font's
// larger forms to cover it, the font's gap between rule and radicand, and a degree
// in script-script style resting on the sign at the font's raise.

#include "render/layout_engine.h"

#include <algorithm>

namespace {

constexpr char32_t kRadicalSign = U'\u221A';
const QString kBlack = QStringLiteral("#000000");

} // namespace

KTypoNodePtr layoutRadical(const KLayoutContext& context, const ORadical& radical)
{
    const KLayoutContext bodyContext = styledContext(context, context.style, true);
    auto body = layoutList(bodyContext, radical.e);
    const double t = mathConstant(context, HB_OT_MATH_CONSTANT_RADICAL_RULE_THICKNESS);
    double gap = mathConstant(context, context.style == KMathStyle::display
                                           ? HB_OT_MATH_CONSTANT_RADICAL_DISPLAY_STYLE_VERTICAL_GAP
                                           : HB_OT_MATH_CONSTANT_RADICAL_VERTICAL_GAP);
    const double extra = mathConstant(context, HB_OT_MATH_CONSTANT_RADICAL_EXTRA_ASCENDER);
    const double needed = body->height + gap + t;
    KTypoNodePtr sign = verticalGlyph(context, kRadicalSign, needed);
    if (!sign)
        return body;
    const double signTotal = sign->ascent + sign->bottom;
    // A taller sign than needed shares its excess between the gap above and the room below.
    if (signTotal > needed)
        gap += (signTotal - needed) / 2;

    KTypoNodePtr degree;
    if (radical.deg && !isEmptyList(*radical.deg) && !radical.degHide)
        degree = layoutList(styledContext(context, KMathStyle::scriptScript, false), *radical.deg);
    double signX = 0;
    double degreeRaise = 0;
    if (degree) {
        const double before = mathConstant(context, HB_OT_MATH_CONSTANT_RADICAL_KERN_BEFORE_DEGREE);
        const double after = mathConstant(context, HB_OT_MATH_CONSTANT_RADICAL_KERN_AFTER_DEGREE);
        degreeRaise =
            KMathFont::instance().constant(HB_OT_MATH_CONSTANT_RADICAL_DEGREE_BOTTOM_RAISE_PERCENT) *
            signTotal;
        degree->x = std::max(0.0, before);
        signX = std::max(0.0, degree->x + degree->width + after);
    }
    // The sign's ink top meets the rule's top; the radicand sits `gap` under the rule.
    const double ruleTop = body->ascent + gap + t; // above the baseline
    const double signBottom = signTotal - ruleTop; // below the baseline
    double ascent = ruleTop + extra;
    if (degree)
        ascent = std::max(ascent, degreeRaise - signBottom + degree->height);
    const double bottom = std::max(body->bottom, signBottom);

    sign->x = signX;
    sign->y = ascent - ruleTop;
    body->x = signX + sign->width;
    body->y = ascent - body->ascent;
    auto rule = std::make_unique<KTypoStrokePath>();
    rule->x = body->x;
    rule->y = ascent - ruleTop;
    rule->width = body->width;
    rule->height = t;
    rule->penWidth = t;
    rule->fontSize = context.size;
    rule->strokeColor = kBlack;
    auto line = makeContainer(context);
    setBox(*line, body->x + body->width, ascent, bottom);
    if (degree)
        degree->y = ascent + signBottom - degreeRaise - degree->height;
    line->addChild(std::move(sign));
    line->addChild(std::move(rule));
    line->addChild(std::move(degree));
    line->addChild(std::move(body));
    return line;
}
