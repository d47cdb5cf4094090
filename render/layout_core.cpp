// The core layout rules: runs, fractions, radicals, functions and boxes. Scripts,
// limits and n-ary operators are in layout_scripts.cpp. Every length is a multiple
// of the current size S; y grows downward and each node's y is its top edge.

#include "render/glyph_cache.h"
#include "render/layout_engine.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kGlyphSpacing = 0.1; // × S added between the characters (code points) of a run
constexpr double kAxisHeight = 0.25;  // × S: the math axis lies this far above the baseline
constexpr double kFunctionGap = 0.5;  // × S between a function name and its argument
constexpr double kRadicalUnit = 0.1;  // × S, the unit of the radical sign's geometry

double barThickness(OFractionType type)
{
    switch (type) {
    case OFractionType::bar:
        return 1.0;
    case OFractionType::linear:
    case OFractionType::skewed:
        return 0.8;
    case OFractionType::noBar:
        return 0.0;
    }
    return 0.0;
}

const QString kBlack = QStringLiteral("#000000");

} // namespace

KTypoNodePtr layoutRun(const KLayoutContext& context, const ORun& run)
{
    const double s = context.size;
    auto glyph = std::make_unique<KTypoGlyph>();
    glyph->text = run.text;
    glyph->fontSize = s;
    glyph->fontFamily = context.font.family();
    const OStyle style = run.mathProps.style.value_or(OStyle::plain);
    glyph->italic = style == OStyle::italic || style == OStyle::boldItalic ? 1 : 0;
    glyph->bold = style == OStyle::bold || style == OStyle::boldItalic ? 1 : 0;
    if (run.wordProps.color)
        glyph->fillColor = run.wordProps.color->name();
    double width = 0;
    if (!run.text.isEmpty())
        width =
            context.metrics.horizontalAdvance(run.text) + (characterCount(run.text) - 1) * kGlyphSpacing * s;
    const double ascent = context.metrics.ascent();
    const double descent = context.metrics.descent();
    setBox(*glyph, width, ascent, descent);
    auto line = makeContainer(context);
    setBox(*line, width, ascent, descent);
    line->addChild(std::move(glyph));
    return line;
}

KTypoNodePtr layoutFraction(const KLayoutContext& context, const OFraction& fraction)
{
    const double s = context.size;
    auto num = layoutList(context, fraction.num);
    auto den = layoutList(context, fraction.den);
    const double width = std::max(num->width, den->width);
    const double t = barThickness(fraction.type);
    const double axis = -kAxisHeight * s;
    // The numerator sits on the bar and the denominator hangs under it, with no further gap.
    const double numTop = axis - t / 2 - num->height;
    const double barBottom = axis + t / 2;
    num->x = (width - num->width) / 2;
    num->y = 0;
    den->x = (width - den->width) / 2;
    den->y = barBottom - numTop;
    auto line = makeContainer(context);
    setBox(*line, width, -numTop, barBottom + den->height);
    if (fraction.type == OFractionType::bar) {
        auto rule = std::make_unique<KTypoStrokePath>();
        rule->x = 0;
        rule->y = axis - numTop - t / 2;
        rule->width = width;
        rule->height = t;
        rule->penWidth = t;
        rule->fontSize = s;
        rule->strokeColor = kBlack;
        line->addChild(std::move(rule));
    }
    line->addChild(std::move(num));
    line->addChild(std::move(den));
    return line;
}

KTypoNodePtr layoutRadical(const KLayoutContext& context, const ORadical& radical)
{
    const double s = context.size;
    const double u = kRadicalUnit * s;
    const double pen = std::max(1.0, std::floor(s / 20));
    auto body = layoutList(context, radical.e);
    KTypoNodePtr degree;
    if (radical.deg && !isEmptyList(*radical.deg) && !radical.degHide)
        degree = layoutList(scriptContext(context), *radical.deg);
    const double ex = degree ? 2 * u + degree->width : 6 * u;
    body->x = ex;
    body->y = 2 * u + pen;
    if (degree) {
        degree->x = -u;
        degree->y = 0;
    }
    // The sign: overbar from the right end back to the hook, down the long stroke, up the short one.
    const double yBar = u + pen;
    const double yBot = yBar + body->height;
    auto sign = std::make_unique<KTypoStrokePath>();
    sign->penWidth = pen;
    sign->fontSize = s;
    sign->strokeColor = kBlack;
    sign->path.moveTo(ex + body->width + 0.5 * u, yBar);
    sign->path.lineTo(ex - 0.5 * u, yBar);
    sign->path.lineTo(ex - 4 * u, yBot);
    sign->path.lineTo(ex - 5.5 * u, yBot - 3 * u);
    sign->path.lineTo(ex - 6 * u, yBot - 2 * u);
    sign->width = ex + body->width + 0.5 * u;
    sign->height = yBot + u;
    auto line = makeContainer(context);
    setBox(*line, ex + body->width + 0.5 * u, body->ascent + 2 * u + pen, body->bottom);
    line->addChild(std::move(sign));
    line->addChild(std::move(degree));
    line->addChild(std::move(body));
    return line;
}

KTypoNodePtr layoutFunction(const KLayoutContext& context, const OFunction& function)
{
    auto name = layoutList(context, function.fName);
    if (isEmptyList(function.e))
        return name;
    auto argument = layoutList(context, function.e);
    const double ascent = std::max(name->ascent, argument->ascent);
    const double bottom = std::max(name->bottom, argument->bottom);
    const double gap = kFunctionGap * context.size;
    name->x = 0;
    name->y = ascent - name->ascent;
    argument->x = name->width + gap;
    argument->y = ascent - argument->ascent;
    auto line = makeContainer(context);
    setBox(*line, name->width + gap + argument->width, ascent, bottom);
    line->addChild(std::move(name));
    line->addChild(std::move(argument));
    return line;
}

KTypoNodePtr layoutBox(const KLayoutContext& context, const OBox& box)
{
    return layoutList(context, box.e);
}
