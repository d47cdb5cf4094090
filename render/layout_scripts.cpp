// Scripts, stacked limits and n-ary operators. Scripts and limits are laid out
// in the script context (0.7 x S on the first level only).

#include "render/layout_engine.h"

#include "render/outlines.h"

#include <algorithm>

namespace {

constexpr double kSupRaise = 0.7;         // × base ascent, superscript alone
constexpr double kSupRaiseWithSub = 0.5;  // × base ascent, with a subscript too
constexpr double kSubDrop = 0.5;          // × base depth
constexpr double kScriptGap = 0.1;        // × S, the least clearance between the two scripts
constexpr double kLimitGap = 0.1;         // × S between a base and its stacked limits or body
constexpr double kNaryHeight = 2.0;       // × S, the operator's height
constexpr double kAxisHeight = 0.25;      // × S above the baseline
constexpr char16_t kIntegral = u'\u222B'; // the operator when none is given

// Base with superscript and/or subscript attached at its right; the base alone without either.
KTypoNodePtr attachScripts(const KLayoutContext& context, KTypoNodePtr base, KTypoNodePtr sup,
                           KTypoNodePtr sub)
{
    if (!sup && !sub)
        return base;
    const double s = context.size;
    const double a = base->ascent;
    const double d = base->bottom;
    double supBaseline = 0;
    double supTop = 0;
    if (sup) {
        supBaseline = -(sub ? kSupRaiseWithSub : kSupRaise) * a;
        supTop = supBaseline - sup->ascent;
    }
    double shift = 0;
    double subBottom = 0;
    if (sub) {
        shift = std::max(0.2 * d, kSubDrop * d);
        subBottom = shift + sub->height;
    }
    if (sup && sub) {
        const double t = supBaseline - shift + sub->ascent;
        if (kScriptGap * s > t) {
            const double delta = (kScriptGap * s - t) / 2;
            supBaseline -= delta;
            supTop -= delta;
            shift += delta;
            subBottom += delta;
        }
    }
    const double top = sup ? std::min(supTop, -a) : -a;
    const double bottom = sub ? std::max(subBottom, d) : d;
    const double baseWidth = base->width;
    base->x = 0;
    base->y = -top - a;
    double scriptWidth = 0;
    if (sup) {
        sup->x = baseWidth;
        sup->y = supTop - top;
        scriptWidth = std::max(scriptWidth, sup->width);
    }
    if (sub) {
        sub->x = baseWidth;
        sub->y = shift - top - sub->ascent;
        scriptWidth = std::max(scriptWidth, sub->width);
    }
    auto line = makeContainer(context);
    setBox(*line, baseWidth + scriptWidth, -top, bottom);
    line->addChild(std::move(base));
    line->addChild(std::move(sup));
    line->addChild(std::move(sub));
    return line;
}

// Puts the n-ary body g to the right of a container whose extents around its
// baseline are top and bottom; when the body rises higher, the rest moves down.
void appendBody(const KLayoutContext& context, KTypoLine& line, double top, double bottom, KTypoNodePtr body)
{
    const double g = kLimitGap * context.size;
    double ascent = -top;
    body->x = line.width + g;
    body->y = -top - body->ascent;
    if (top > -body->ascent) {
        const double down = top + body->ascent;
        for (KTypoNodePtr& child : line.children)
            child->moveBy(0, down);
        ascent = body->ascent;
        body->y = 0;
    }
    setBox(line, line.width + g + body->width, ascent, std::max(bottom, body->bottom));
    line.addChild(std::move(body));
}

// A base with an optional limit over and under it, centred in one column, and an optional body after it.
KTypoNodePtr stackLimits(const KLayoutContext& context, KTypoNodePtr base, KTypoNodePtr over,
                         KTypoNodePtr under, KTypoNodePtr body)
{
    const double g = kLimitGap * context.size;
    const double a = base->ascent;
    double width = base->width;
    if (over)
        width = std::max(width, over->width);
    if (under)
        width = std::max(width, under->width);
    const double top = over ? -a - g - over->height : -a;
    const double bottom = under ? base->bottom + g + under->height : base->bottom;
    // The base's baseline sits g above the container's: the base touches the upper limit.
    const double baseBottom = base->bottom;
    base->x = (width - base->width) / 2;
    base->y = -top - a - g;
    if (over) {
        over->x = (width - over->width) / 2;
        over->y = 0;
    }
    if (under) {
        under->x = (width - under->width) / 2;
        under->y = baseBottom + g - top;
    }
    auto line = makeContainer(context);
    setBox(*line, width, -top, bottom);
    line->addChild(std::move(base));
    line->addChild(std::move(over));
    line->addChild(std::move(under));
    if (body)
        appendBody(context, *line, top, bottom, std::move(body));
    return line;
}

KTypoNodePtr naryGlyph(const KLayoutContext& context, const QString& chr)
{
    const double s = context.size;
    const double height = kNaryHeight * s;
    auto glyph = std::make_unique<KTypoGrowGlyph>();
    glyph->text = chr;
    glyph->fontSize = s;
    glyph->fontFamily = context.font.family();
    glyph->growColor = QStringLiteral("#000000");
    glyph->scale = kNaryHeight;
    double width = height;
    const outlines::KOperatorOutline entry = outlines::outline(chr.at(0).unicode());
    if (outlines::hasOutline(chr.at(0).unicode()) && entry.height > 0)
        width = height * (entry.width / entry.height);
    // Centred on the math axis.
    setBox(*glyph, width, kAxisHeight * s + 0.5 * height, 0.5 * height - kAxisHeight * s);
    return glyph;
}

KTypoNodePtr optionalList(const KLayoutContext& context, const KOmmlNodeList& list, bool hidden)
{
    if (hidden || isEmptyList(list))
        return nullptr;
    return layoutList(context, list);
}

} // namespace

KTypoNodePtr layoutSuperscript(const KLayoutContext& context, const OSuperscript& script)
{
    return attachScripts(context, layoutList(context, script.e),
                         layoutList(scriptContext(context), script.sup), nullptr);
}

KTypoNodePtr layoutSubscript(const KLayoutContext& context, const OSubscript& script)
{
    return attachScripts(context, layoutList(context, script.e), nullptr,
                         layoutList(scriptContext(context), script.sub));
}

KTypoNodePtr layoutSubSuperscript(const KLayoutContext& context, const OSubSuperscript& script)
{
    const KLayoutContext scripts = scriptContext(context);
    return attachScripts(context, layoutList(context, script.e), layoutList(scripts, script.sup),
                         layoutList(scripts, script.sub));
}

KTypoNodePtr layoutNary(const KLayoutContext& context, const ONaryOperator& nary)
{
    const QString chr = nary.chr.isEmpty() ? QString(QChar(kIntegral)) : nary.chr;
    const KLayoutContext scripts = scriptContext(context);
    KTypoNodePtr upper = optionalList(scripts, nary.sup, nary.supHide);
    KTypoNodePtr lower = optionalList(scripts, nary.sub, nary.subHide);
    KTypoNodePtr body = layoutList(context, nary.e);
    if (nary.limLoc == OLimitLocation::undOvr)
        return stackLimits(context, naryGlyph(context, chr), std::move(upper), std::move(lower),
                           std::move(body));
    KTypoNodePtr scripted =
        attachScripts(context, naryGlyph(context, chr), std::move(upper), std::move(lower));
    auto line = makeContainer(context);
    const double top = -scripted->ascent;
    const double bottom = scripted->bottom;
    setBox(*line, scripted->width, scripted->ascent, bottom);
    line->addChild(std::move(scripted));
    appendBody(context, *line, top, bottom, std::move(body));
    return line;
}

KTypoNodePtr layoutLimitLower(const KLayoutContext& context, const OLimitLower& limit)
{
    auto base = layoutList(context, limit.e);
    if (isEmptyList(limit.lim))
        return base;
    return stackLimits(context, std::move(base), nullptr, layoutList(scriptContext(context), limit.lim),
                       nullptr);
}

KTypoNodePtr layoutLimitUpper(const KLayoutContext& context, const OLimitUpper& limit)
{
    auto base = layoutList(context, limit.e);
    if (isEmptyList(limit.lim))
        return base;
    return stackLimits(context, std::move(base), layoutList(scriptContext(context), limit.lim), nullptr,
                       nullptr);
}
