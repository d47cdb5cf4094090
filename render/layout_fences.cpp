// Delimiters: a body between two stretched fences drawn from the built-in
// delimiter shapes, tall enough to enclose the body with a margin above and below.

#include "render/layout_engine.h"
#include "render/outlines.h"

#include <algorithm>

namespace {

constexpr double kMargin = 0.1;          // × S above and below the body
constexpr double kFenceGap = 0.25;       // × S between a fence and the body
constexpr double kFencePen = 0.04;       // × S, at least 1 pt
constexpr double kPlaceholderPen = 0.02; // × S, at least 0.5 pt
constexpr int kPlaceholderSpaces = 3;    // an empty body is three spaces wide
const QString kStrokeBlack = QStringLiteral("#000000");
// The outline of an empty body: dark enough to read as a slot, not as ink.
const QString kPlaceholderColour = QStringLiteral("#1b1818");

// The fence for `chr` at `height`, or null when the character has no built shape
// (a fence that cannot be drawn takes no room at all).
KTypoNodePtr makeFence(const KLayoutContext& context, const QString& chr, double height)
{
    if (chr.isEmpty())
        return nullptr;
    const char16_t c = chr.at(0).unicode();
    if (!outlines::hasDelimiterBuilder(c))
        return nullptr;
    const outlines::KBuiltDelimiter built = outlines::buildDelimiter(height, c);
    auto fence = std::make_unique<KTypoStrokePath>();
    fence->path = built.path;
    fence->width = built.width;
    fence->height = built.height;
    fence->penWidth = std::max(1.0, kFencePen * context.size);
    fence->strokeColor = kStrokeBlack;
    return fence;
}

// The elements of a delimiter side by side, each after the first set off by the
// separator, which is drawn at the height of the fences; a separator without a
// built shape is set as a character.
std::unique_ptr<KTypoLine> layoutElements(const KLayoutContext& context, const ODelimiter& delimiter,
                                          double u, double gap)
{
    std::vector<std::unique_ptr<KTypoLine>> parts;
    parts.push_back(layoutList(context, delimiter.e));
    for (const KOmmlNodeList& element : delimiter.separated)
        parts.push_back(layoutList(context, element));
    if (parts.size() == 1)
        return std::move(parts.front());
    double ascent = 0;
    double bottom = 0;
    for (const auto& part : parts) {
        ascent = std::max(ascent, part->ascent);
        bottom = std::max(bottom, part->bottom);
    }
    auto row = makeContainer(context);
    double x = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0 && !delimiter.sepChr.isEmpty()) {
            KTypoNodePtr separator = makeFence(context, delimiter.sepChr, ascent + bottom + 2 * u);
            double separatorAscent = ascent + u;
            if (!separator) {
                OMathRunProperties upright;
                upright.style = OStyle::plain;
                const KOmmlNodeList sign = makeOmmlList(makeOmmlNode(ORun{delimiter.sepChr, upright, {}}));
                std::unique_ptr<KTypoLine> text = layoutList(context, sign);
                separatorAscent = text->ascent;
                separator = std::move(text);
            }
            separator->x = x + gap;
            separator->y = ascent - separatorAscent;
            x = separator->x + separator->width + gap;
            row->addChild(std::move(separator));
        }
        parts[i]->x = x;
        parts[i]->y = ascent - parts[i]->ascent;
        x += parts[i]->width;
        row->addChild(std::move(parts[i]));
    }
    setBox(*row, x, ascent, bottom);
    return row;
}

} // namespace

KTypoNodePtr layoutDelimiter(const KLayoutContext& context, const ODelimiter& delimiter)
{
    const double size = context.size;
    const double u = kMargin * size;
    const double gap = kFenceGap * size;

    std::unique_ptr<KTypoLine> body = layoutElements(context, delimiter, u, gap);
    // A body of no width that still has height (the strut of \bigl) is not empty.
    const bool empty = !(body->width > 0) && !(body->height > 0);
    if (empty) {
        body = makeContainer(context);
        const double spaceWidth = context.metrics.horizontalAdvance(QLatin1Char(' '));
        setBox(*body, kPlaceholderSpaces * spaceWidth, context.metrics.ascent(), context.metrics.descent());
    }

    const double height = body->height + 2 * u;
    KTypoNodePtr opening = makeFence(context, delimiter.begChr, height);
    KTypoNodePtr closing = makeFence(context, delimiter.endChr, height);

    const double bodyX = opening ? opening->width + gap : 0.0;
    body->x = bodyX;
    body->y = u;
    double width = bodyX + body->width;
    if (closing) {
        closing->x = width + gap;
        closing->y = 0;
        width = closing->x + closing->width;
    }

    auto container = makeContainer(context);
    const double ascent = u + body->ascent;
    setBox(*container, width, ascent, height - ascent);

    KTypoNodePtr placeholder;
    if (empty) {
        auto outline = std::make_unique<KTypoStrokePath>();
        outline->width = width;
        outline->height = height;
        outline->strokeColor = kPlaceholderColour;
        outline->penWidth = std::max(0.5, kPlaceholderPen * size);
        outline->path.addRect(QRectF(bodyX, u, body->width, body->height));
        placeholder = std::move(outline);
    }

    container->addChild(std::move(opening));
    container->addChild(std::move(placeholder));
    container->addChild(std::move(body));
    container->addChild(std::move(closing));
    return container;
}
