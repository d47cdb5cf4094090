// Decorations around a base: accents of the math font on the base's attachment
// point, rules over or under it, frames and strikes, and braces, brackets and
// arrows stretched across it.

#include "render/layout_engine.h"

#include <QPainterPath>

#include <algorithm>

namespace {

const QString kBlack = QStringLiteral("#000000");
constexpr char32_t kDefaultAccent = U'\u0302';
constexpr char32_t kDefaultGroupChar = U'\u23DF';

// A black stroke node with the given pen, size and path.
std::unique_ptr<KTypoStrokePath> makeStroke(double penWidth, double width, double height, QPainterPath path)
{
    auto stroke = std::make_unique<KTypoStrokePath>();
    stroke->penWidth = penWidth;
    stroke->width = width;
    stroke->height = height;
    stroke->strokeColor = kBlack;
    stroke->path = std::move(path);
    return stroke;
}

// A rule `thickness` high and `width` wide, its top at `y`: a stroke with an empty path.
std::unique_ptr<KTypoStrokePath> makeRule(double width, double thickness, double y)
{
    auto rule = makeStroke(thickness, width, thickness, QPainterPath());
    rule->y = y;
    return rule;
}

char32_t firstCharacter(const QString& text, char32_t fallback)
{
    const QVector<uint> characters = text.toUcs4();
    return characters.isEmpty() ? fallback : characters.front();
}

// ---- accents ----

// Dots, rings, acute, grave, caron and breve keep their own width: stretched they
// would turn into bars.
bool isFixedWidthAccent(char32_t c)
{
    switch (c) {
    case 0x02D9:
    case 0x00A8:
    case 0x20DB:
    case 0x20DC:
    case 0x030A:
    case 0x00B4:
    case 0x0060:
    case 0x02C7:
    case 0x02D8:
    case 0x030C:
    case 0x0306:
    case 0x0307:
    case 0x0308:
    case 0x0300:
    case 0x0301:
        return true;
    default:
        return false;
    }
}

// The horizontal middle of a box's ink, relative to its left edge: the glyph outlines' bounds
// through containers, else the middle of its width.
double inkCentre(const KTypoNode& node)
{
    if (const KTypoGlyph* glyph = singleGlyph(node)) {
        const QRectF ink = KMathFont::instance().info(KMathGlyph{glyph->mathFace, glyph->glyphIndex})
                               .outline.boundingRect();
        if (ink.width() > 0)
            return ink.center().x() * glyph->fontSize;
    }
    return node.width / 2;
}

// Where an accent over the box is centred, from the box's left edge: a single glyph's top-accent
// attachment (right of the middle for italic letters), else the middle.
double accentAttachment(const KTypoNode& node)
{
    if (const KTypoGlyph* glyph = singleGlyph(node)) {
        double x = 0;
        for (const KTypoNode* n = glyph; n && n != &node; n = n->parent)
            x += n->x;
        return x + KMathFont::instance().info(KMathGlyph{glyph->mathFace, glyph->glyphIndex}).topAccent *
                       glyph->fontSize;
    }
    return node.width / 2;
}

// The ink of a box's glyphs around its baseline: how far it reaches up and down (negative when
// it stays on the other side), from the outlines rather than the boxes.
std::pair<double, double> inkExtent(const KTypoNode& node)
{
    double up = -1e9;
    double down = -1e9;
    auto walk = [&](const KTypoNode& n, double baseline, auto&& self) -> void {
        if (n.kind == kTypoGlyph && static_cast<const KTypoGlyph&>(n).mathFace >= 0) {
            const auto& glyph = static_cast<const KTypoGlyph&>(n);
            const KMathGlyphInfo& info = KMathFont::instance().info(KMathGlyph{glyph.mathFace, glyph.glyphIndex});
            up = std::max(up, info.height * glyph.fontSize - baseline);
            down = std::max(down, info.depth * glyph.fontSize + baseline);
        }
        for (const KTypoNodePtr& child : n.children)
            self(*child, baseline + child->y + child->ascent - n.ascent, self);
    };
    walk(node, 0.0, walk);
    if (up < -1e8)
        return {node.ascent, node.bottom};
    return {up, down};
}

// ---- frames ----

constexpr double kFramePad = 0.3;   // × the main size between a frame and its content
constexpr double kFrameRule = 0.04; // × the main size: the frame's rule

void addSegment(QPainterPath& path, QPointF from, QPointF to)
{
    path.moveTo(from);
    path.lineTo(to);
}

// ---- braces and arrows ----

constexpr double kBraceKern = 0.3;       // × the main size around a brace over or under its base
constexpr double kArrowPad = 0.5;        // × the main size: an arrow reaches past its label on both sides
constexpr double kArrowLabelGap = 0.15;  // × the main size between an arrow and its label

// Horizontal braces, brackets, parentheses and tortoise shells stand over or under their base;
// any other character (an arrow) is the line's own symbol with the base as its label.
bool isBracket(char32_t c)
{
    return (c >= 0x23B4 && c <= 0x23B5) || (c >= 0x23DC && c <= 0x23E1) || c == 0xFE37 || c == 0xFE38;
}

} // namespace

KTypoNodePtr layoutAccent(const KLayoutContext& context, const OAccent& accent)
{
    const KLayoutContext baseContext = styledContext(context, context.style, true);
    std::unique_ptr<KTypoLine> base = layoutList(baseContext, accent.e);
    const char32_t character = firstCharacter(accent.chr, kDefaultAccent);
    // A lone letter takes the accent's own form; wider bases the widest form that fits them.
    const bool single = singleGlyph(*base) != nullptr;
    KTypoNodePtr mark = single || isFixedWidthAccent(character)
                            ? horizontalGlyph(context, character, 0, true)
                            : horizontalGlyph(context, character, base->width, true);
    if (!mark)
        return base;
    // The font's accents sit above letters of the accent base height; taller bases raise them.
    const double accentBase = mathConstant(context, HB_OT_MATH_CONSTANT_ACCENT_BASE_HEIGHT);
    const double raise = std::max(0.0, base->ascent - accentBase);
    const double x = accentAttachment(*base) - inkCentre(*mark);
    const double ascent = std::max(base->ascent, mark->ascent + raise);
    const double left = std::min(0.0, x);
    base->x = -left;
    base->y = ascent - base->ascent;
    mark->x = x - left;
    mark->y = ascent - raise - mark->ascent;
    auto container = makeContainer(context);
    setBox(*container, std::max(base->x + base->width, mark->x + mark->width), ascent, base->bottom);
    container->addChild(std::move(mark));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutBar(const KLayoutContext& context, const OBar& bar)
{
    auto c = [&context](hb_ot_math_constant_t constant) { return mathConstant(context, constant); };
    const bool over = bar.pos != OPosition::bottom;
    std::unique_ptr<KTypoLine> base =
        layoutList(over ? styledContext(context, context.style, true) : context, bar.e);
    auto container = makeContainer(context);
    const double width = base->width;
    if (over) {
        const double t = c(HB_OT_MATH_CONSTANT_OVERBAR_RULE_THICKNESS);
        const double gap = c(HB_OT_MATH_CONSTANT_OVERBAR_VERTICAL_GAP);
        const double extra = c(HB_OT_MATH_CONSTANT_OVERBAR_EXTRA_ASCENDER);
        const double ascent = base->ascent + gap + t + extra;
        container->addChild(makeRule(width, t, extra));
        base->y = ascent - base->ascent;
        setBox(*container, width, ascent, base->bottom);
    } else {
        const double t = c(HB_OT_MATH_CONSTANT_UNDERBAR_RULE_THICKNESS);
        const double gap = c(HB_OT_MATH_CONSTANT_UNDERBAR_VERTICAL_GAP);
        const double extra = c(HB_OT_MATH_CONSTANT_UNDERBAR_EXTRA_DESCENDER);
        container->addChild(makeRule(width, t, base->ascent + base->bottom + gap));
        setBox(*container, width, base->ascent, base->bottom + gap + t + extra);
    }
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutBorderBox(const KLayoutContext& context, const OBorderBox& box)
{
    std::unique_ptr<KTypoLine> base = layoutList(context, box.e);
    const bool anySide = !(box.hideTop && box.hideRight && box.hideBot && box.hideLeft);
    const bool anyStrike = box.strikeH || box.strikeV || box.strikeBLTR || box.strikeTLBR;
    // A frame keeps its distance from the content; strikes alone cross the content's own box.
    const double p = kFrameRule * context.mainSize;
    const double pad = anySide ? kFramePad * context.mainSize + p : 0.0;
    const double h = p / 2;
    const double width = base->width + 2 * pad;
    const double height = base->height + 2 * pad;
    base->x = pad;
    base->y = pad;

    // The frame runs clockwise from the top left; strikes follow the sides.
    const QPointF topLeft(h, h);
    const QPointF topRight(width - h, h);
    const QPointF bottomRight(width - h, height - h);
    const QPointF bottomLeft(h, height - h);
    QPainterPath path;
    if (!box.hideTop)
        addSegment(path, topLeft, topRight);
    if (!box.hideRight)
        addSegment(path, topRight, bottomRight);
    if (!box.hideBot)
        addSegment(path, bottomRight, bottomLeft);
    if (!box.hideLeft)
        addSegment(path, bottomLeft, topLeft);
    if (box.strikeH)
        addSegment(path, QPointF(0, height / 2), QPointF(width, height / 2));
    if (box.strikeV)
        addSegment(path, QPointF(width / 2, 0), QPointF(width / 2, height));
    if (box.strikeBLTR)
        addSegment(path, QPointF(0, height), QPointF(width, 0));
    if (box.strikeTLBR)
        addSegment(path, QPointF(0, 0), QPointF(width, height));

    auto container = makeContainer(context);
    const double ascent = base->ascent + pad;
    setBox(*container, width, ascent, height - ascent);
    if (anySide || anyStrike)
        container->addChild(makeStroke(p, width, height, std::move(path)));
    container->addChild(std::move(base));
    return container;
}

KTypoNodePtr layoutGroupChar(const KLayoutContext& context, const OGroupChar& groupChar)
{
    const char32_t character = firstCharacter(groupChar.chr, kDefaultGroupChar);
    const bool over = groupChar.pos == OPosition::top;
    const double main = context.mainSize;
    auto container = makeContainer(context);
    if (isBracket(character)) {
        // A brace as wide as its base, its ink a kern away from the base and a kern from what
        // comes next.
        std::unique_ptr<KTypoLine> base = layoutList(context, groupChar.e);
        KTypoNodePtr brace = horizontalGlyph(context, character, base->width);
        if (!brace)
            return base;
        const auto [inkTop, inkBottom] = inkExtent(*brace);
        const double kern = kBraceKern * main;
        const double width = std::max(base->width, brace->width);
        base->x = (width - base->width) / 2;
        brace->x = (width - brace->width) / 2;
        if (over) {
            const double baseline = base->ascent + kern + inkBottom; // the brace's, above the line's
            const double ascent = baseline + inkTop + kern;
            brace->y = ascent - baseline - brace->ascent;
            base->y = ascent - base->ascent;
            setBox(*container, width, ascent, base->bottom);
        } else {
            const double baseline = base->bottom + kern + inkTop; // the brace's, below the line's
            brace->y = base->ascent + baseline - brace->ascent;
            setBox(*container, width, base->ascent, baseline + inkBottom + kern);
        }
        container->addChild(std::move(brace));
        container->addChild(std::move(base));
        return container;
    }
    // An arrow on the line, reaching past its label, which stands in script style above it (the
    // arrow under its base) or below it.
    std::unique_ptr<KTypoLine> label =
        layoutList(over ? subscriptContext(context) : scriptContext(context), groupChar.e);
    const double pad = kArrowPad * main;
    KTypoNodePtr arrow = horizontalGlyph(context, character, label->width + 2 * pad);
    if (!arrow)
        return label;
    const double width = std::max(label->width + 2 * pad, arrow->width);
    arrow->x = (width - arrow->width) / 2;
    label->x = (width - label->width) / 2;
    const double gap = kArrowLabelGap * main;
    double ascent = arrow->ascent;
    double bottom = arrow->bottom;
    if (!over) {
        ascent = arrow->ascent + gap + label->height;
        label->y = 0;
    } else {
        label->y = ascent + arrow->bottom + gap;
        bottom = arrow->bottom + gap + label->height;
    }
    arrow->y = ascent - arrow->ascent;
    setBox(*container, width, ascent, bottom);
    container->addChild(std::move(arrow));
    container->addChild(std::move(label));
    return container;
}

namespace {

// The single element of a list, or null.
const KOmmlNode* onlyElement(const KOmmlNodeList& list)
{
    const KOmmlNode* only = nullptr;
    for (const KOmmlNodePtr& element : list) {
        if (!element)
            continue;
        if (only)
            return nullptr;
        only = element.get();
    }
    return only;
}

} // namespace

int strutLevel(const OPhantom& phantom)
{
    if (phantom.show || !phantom.zeroWid)
        return 0;
    const KOmmlNode* node = onlyElement(phantom.e);
    if (const auto* run = node ? std::get_if<ORun>(&node->value) : nullptr)
        return run->text == QLatin1String("|") ? 1 : 0;
    int level = 1;
    while (const auto* fraction = node ? std::get_if<OFraction>(&node->value) : nullptr) {
        if (fraction->type != OFractionType::noBar)
            return 0;
        ++level;
        node = onlyElement(fraction->num);
    }
    const auto* run = node ? std::get_if<ORun>(&node->value) : nullptr;
    return level > 1 && level <= 4 && run && run->text.trimmed().isEmpty() ? level : 0;
}

namespace {

// The total heights of \big, \Big, \bigg and \Bigg, in em of the current size.
constexpr double kBigSizes[] = {1.2, 1.8, 2.4, 3.0};

} // namespace

KTypoNodePtr layoutPhantom(const KLayoutContext& context, const OPhantom& phantom)
{
    if (const int level = strutLevel(phantom)) {
        // Centred on the axis, as TeX centres the box that a \big fence must cover.
        const double half = kBigSizes[level - 1] * context.size / 2;
        const double axis = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
        auto strut = makeContainer(context);
        setBox(*strut, 0, half + axis, half - axis);
        return strut;
    }
    std::unique_ptr<KTypoLine> content = layoutList(context, phantom.e);
    const double width = phantom.zeroWid ? 0.0 : content->width;
    const double ascent = phantom.zeroAsc ? 0.0 : content->ascent;
    const double bottom = phantom.zeroDesc ? 0.0 : content->bottom;
    auto box = makeContainer(context);
    if (phantom.show) {
        content->x = 0;
        content->y = ascent - content->ascent;
        box->addChild(std::move(content));
    }
    setBox(*box, width, ascent, bottom);
    return box;
}
