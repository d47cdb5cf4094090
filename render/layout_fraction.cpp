// Fractions: numerator and denominator in the next smaller style, centred on the
// math axis, kept the font's gaps away from the rule (or from each other without one);
// linear and skewed fractions set the two parts side by side around a slash.

#include "render/layout_engine.h"

#include <algorithm>

namespace {

constexpr double kNullDelimiterSpace = 0.12; // em on each side of a fraction, as TeX's empty delimiters

const QString kBlack = QStringLiteral("#000000");

struct Shifts {
    double up = 0;   // numerator baseline above the main baseline
    double down = 0; // denominator baseline below it
};

// Stacked with a rule of thickness t on the axis: each part at least its gap from the rule.
Shifts ruledShifts(const KLayoutContext& c, const KTypoNode& num, const KTypoNode& den, double t)
{
    const bool display = c.style == KMathStyle::display;
    const double axis = mathConstant(c, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    Shifts shifts;
    shifts.up = mathConstant(c, display ? HB_OT_MATH_CONSTANT_FRACTION_NUMERATOR_DISPLAY_STYLE_SHIFT_UP
                                        : HB_OT_MATH_CONSTANT_FRACTION_NUMERATOR_SHIFT_UP);
    shifts.down = mathConstant(c, display ? HB_OT_MATH_CONSTANT_FRACTION_DENOMINATOR_DISPLAY_STYLE_SHIFT_DOWN
                                          : HB_OT_MATH_CONSTANT_FRACTION_DENOMINATOR_SHIFT_DOWN);
    const double numGap = mathConstant(c, display ? HB_OT_MATH_CONSTANT_FRACTION_NUM_DISPLAY_STYLE_GAP_MIN
                                                  : HB_OT_MATH_CONSTANT_FRACTION_NUMERATOR_GAP_MIN);
    const double denGap = mathConstant(c, display ? HB_OT_MATH_CONSTANT_FRACTION_DENOM_DISPLAY_STYLE_GAP_MIN
                                                  : HB_OT_MATH_CONSTANT_FRACTION_DENOMINATOR_GAP_MIN);
    shifts.up = std::max(shifts.up, axis + t / 2 + numGap + num.bottom);
    shifts.down = std::max(shifts.down, den.ascent + denGap - axis + t / 2);
    return shifts;
}

// Stacked without a rule: the two parts at least the stack gap apart, the excess split evenly.
Shifts stackShifts(const KLayoutContext& c, const KTypoNode& num, const KTypoNode& den)
{
    const bool display = c.style == KMathStyle::display;
    Shifts shifts;
    shifts.up = mathConstant(c, display ? HB_OT_MATH_CONSTANT_STACK_TOP_DISPLAY_STYLE_SHIFT_UP
                                        : HB_OT_MATH_CONSTANT_STACK_TOP_SHIFT_UP);
    shifts.down = mathConstant(c, display ? HB_OT_MATH_CONSTANT_STACK_BOTTOM_DISPLAY_STYLE_SHIFT_DOWN
                                          : HB_OT_MATH_CONSTANT_STACK_BOTTOM_SHIFT_DOWN);
    const double gap = mathConstant(c, display ? HB_OT_MATH_CONSTANT_STACK_DISPLAY_STYLE_GAP_MIN
                                               : HB_OT_MATH_CONSTANT_STACK_GAP_MIN);
    const double clearance = (shifts.up - num.bottom) - (den.ascent - shifts.down);
    if (clearance < gap) {
        shifts.up += (gap - clearance) / 2;
        shifts.down += (gap - clearance) / 2;
    }
    return shifts;
}

// num / den on one line, in the fraction's own style.
KTypoNodePtr linearFraction(const KLayoutContext& context, const OFraction& fraction)
{
    KAtomList atoms;
    atoms.push_back(KAtom{layoutList(context, fraction.num)});
    const ORun slash{QStringLiteral("/"), OMathRunProperties{}, OWordRunProperties{}};
    for (KAtom& atom : layoutRun(context, slash))
        atoms.push_back(std::move(atom));
    atoms.push_back(KAtom{layoutList(context, fraction.den)});
    return joinAtoms(context, std::move(atoms));
}

} // namespace

KTypoNodePtr layoutFraction(const KLayoutContext& context, const OFraction& fraction)
{
    if (fraction.type == OFractionType::linear || fraction.type == OFractionType::skewed)
        return linearFraction(context, fraction);
    KLayoutContext numContext = styledContext(context, fractionStyle(context.style), context.cramped);
    numContext.upright = false;
    KLayoutContext denContext = styledContext(numContext, numContext.style, true);
    auto num = layoutList(numContext, fraction.num);
    auto den = layoutList(denContext, fraction.den);
    const bool ruled = fraction.type == OFractionType::bar;
    const double t = ruled ? mathConstant(context, HB_OT_MATH_CONSTANT_FRACTION_RULE_THICKNESS) : 0.0;
    const Shifts shifts = ruled ? ruledShifts(context, *num, *den, t) : stackShifts(context, *num, *den);
    const double axis = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    const double side = kNullDelimiterSpace * context.size;
    const double inner = std::max(num->width, den->width);
    const double ascent = std::max(shifts.up + num->ascent, axis + t / 2);
    const double bottom = std::max(shifts.down + den->bottom, t / 2 - axis);
    num->x = side + (inner - num->width) / 2;
    num->y = ascent - shifts.up - num->ascent;
    den->x = side + (inner - den->width) / 2;
    den->y = ascent + shifts.down - den->ascent;
    auto line = makeContainer(context);
    setBox(*line, inner + 2 * side, ascent, bottom);
    if (ruled) {
        auto rule = std::make_unique<KTypoStrokePath>();
        rule->x = side;
        rule->y = ascent - axis - t / 2;
        rule->width = inner;
        rule->height = t;
        rule->penWidth = t;
        rule->fontSize = context.size;
        rule->strokeColor = kBlack;
        line->addChild(std::move(rule));
    }
    line->addChild(std::move(num));
    line->addChild(std::move(den));
    return line;
}
