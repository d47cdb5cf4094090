// Glyph nodes of the math font, and glyphs grown by the font's larger forms and assemblies.

#include "render/layout_engine.h"

#include <algorithm>

double mathConstant(const KLayoutContext& context, hb_ot_math_constant_t constant)
{
    return KMathFont::instance().constant(constant) * context.size;
}

std::unique_ptr<KTypoGlyph> mathGlyphNode(const KLayoutContext& context, KMathGlyph glyph,
                                          const QString& text)
{
    const KMathGlyphInfo& info = KMathFont::instance().info(glyph);
    const double s = context.size;
    auto node = std::make_unique<KTypoGlyph>();
    node->text = text;
    node->fontSize = s;
    node->fontFamily = KMathFont::instance().family();
    node->mathFace = glyph.face;
    node->glyphIndex = glyph.index;
    node->italicCorrection = info.italicCorrection * s;
    setBox(*node, info.advance * s, std::max(0.0, info.height * s), std::max(0.0, info.depth * s));
    return node;
}

namespace {

// A piece of an assembly and where it starts along the assembly's direction, in points.
struct KPlacedPart {
    const KMathAssemblyPart* part;
    double start;
};

// Pieces laid end to end, extenders repeated until they cover `length` points; the overlaps
// grow evenly (within the connectors) to hit the length where they can. Returns the pieces with
// their starts and the length reached.
std::pair<std::vector<KPlacedPart>, double> placeParts(const std::vector<KMathAssemblyPart>& parts,
                                                        double size, double overlap, double length)
{
    double fixed = 0;
    double extenders = 0;
    int fixedCount = 0;
    int extenderCount = 0;
    for (const KMathAssemblyPart& part : parts) {
        if (part.extender) {
            extenders += part.fullAdvance * size;
            ++extenderCount;
        } else {
            fixed += part.fullAdvance * size;
            ++fixedCount;
        }
    }
    int repeats = 0;
    auto total = [&](int n) {
        const int count = fixedCount + n * extenderCount;
        return fixed + n * extenders - std::max(0, count - 1) * overlap;
    };
    constexpr int kMaxRepeats = 1000;
    while (extenderCount > 0 && total(repeats) < length && repeats < kMaxRepeats)
        ++repeats;
    std::vector<const KMathAssemblyPart*> sequence;
    for (const KMathAssemblyPart& part : parts) {
        for (int i = 0; i < (part.extender ? repeats : 1); ++i)
            sequence.push_back(&part);
    }
    // Spread the excess over the joints, no joint overlapping more than its connectors.
    double joint = overlap;
    if (sequence.size() > 1 && total(repeats) > length)
        joint += (total(repeats) - length) / double(sequence.size() - 1);
    std::vector<KPlacedPart> placed;
    double end = 0;
    for (size_t i = 0; i < sequence.size(); ++i) {
        const KMathAssemblyPart& part = *sequence[i];
        if (i > 0) {
            const double limit = std::min(sequence[i - 1]->endConnector, part.startConnector) * size;
            end -= std::max(overlap, std::min(joint, limit));
        }
        placed.push_back(KPlacedPart{&part, end});
        end += part.fullAdvance * size;
    }
    return {std::move(placed), end};
}

// Pieces stacked bottom to top to cover `height` points. The box's baseline is the stack's foot.
KTypoNodePtr buildVerticalAssembly(const KLayoutContext& context, const std::vector<KMathAssemblyPart>& parts,
                                   const QString& text, double height)
{
    const double s = context.size;
    const double overlap = KMathFont::instance().minConnectorOverlap(true) * s;
    auto [placed, stack] = placeParts(parts, s, overlap, height);
    auto line = makeContainer(context);
    double width = 0;
    for (const KPlacedPart& piece : placed) {
        auto glyph = mathGlyphNode(context, piece.part->glyph, text);
        // The piece's ink foot rests at its start above the stack's foot.
        const double baseline = piece.start - glyph->bottom;
        glyph->x = 0;
        glyph->y = stack - baseline - glyph->ascent;
        width = std::max(width, glyph->width);
        line->addChild(std::move(glyph));
    }
    setBox(*line, width, stack, 0);
    return line;
}

// Pieces set left to right to cover `width` points, on one baseline.
KTypoNodePtr buildHorizontalAssembly(const KLayoutContext& context,
                                     const std::vector<KMathAssemblyPart>& parts, const QString& text,
                                     double width)
{
    const double s = context.size;
    const double overlap = KMathFont::instance().minConnectorOverlap(false) * s;
    auto [placed, length] = placeParts(parts, s, overlap, width);
    auto line = makeContainer(context);
    double ascent = 0;
    double bottom = 0;
    std::vector<std::unique_ptr<KTypoGlyph>> glyphs;
    for (const KPlacedPart& piece : placed) {
        auto glyph = mathGlyphNode(context, piece.part->glyph, text);
        glyph->x = piece.start;
        ascent = std::max(ascent, glyph->ascent);
        bottom = std::max(bottom, glyph->bottom);
        glyphs.push_back(std::move(glyph));
    }
    for (auto& glyph : glyphs) {
        glyph->y = ascent - glyph->ascent;
        line->addChild(std::move(glyph));
    }
    setBox(*line, length, ascent, bottom);
    return line;
}

} // namespace

KTypoNodePtr verticalGlyph(const KLayoutContext& context, char32_t character, double height)
{
    const KMathFont& font = KMathFont::instance();
    const KMathGlyph base = font.glyph(character);
    const QString text = QString::fromUcs4(&character, 1);
    if (!base.valid())
        return nullptr;
    const auto variants = font.variants(base, true);
    for (const auto& [glyph, advance] : variants) {
        if (advance * context.size >= height)
            return mathGlyphNode(context, glyph, text);
    }
    const auto parts = font.assembly(base, true);
    if (!parts.empty())
        return buildVerticalAssembly(context, parts, text, height);
    return mathGlyphNode(context, variants.empty() ? base : variants.back().first, text);
}

KTypoNodePtr horizontalGlyph(const KLayoutContext& context, char32_t character, double width,
                             bool notWider)
{
    const KMathFont& font = KMathFont::instance();
    const KMathGlyph base = font.glyph(character);
    const QString text = QString::fromUcs4(&character, 1);
    if (!base.valid())
        return nullptr;
    const auto variants = font.variants(base, false);
    const auto parts = font.assembly(base, false);
    if (notWider) {
        // The widest form that still fits; an assembly when even the widest is too narrow.
        KMathGlyph chosen = base;
        double reached = font.info(base).advance * context.size;
        for (const auto& [glyph, advance] : variants) {
            if (advance * context.size > width)
                break;
            chosen = glyph;
            reached = advance * context.size;
        }
        const bool allFit = variants.empty() || variants.back().second * context.size <= width;
        if (!parts.empty() && allFit && reached < width)
            return buildHorizontalAssembly(context, parts, text, width);
        return mathGlyphNode(context, chosen, text);
    }
    for (const auto& [glyph, advance] : variants) {
        if (advance * context.size >= width)
            return mathGlyphNode(context, glyph, text);
    }
    if (!parts.empty())
        return buildHorizontalAssembly(context, parts, text, width);
    return mathGlyphNode(context, variants.empty() ? base : variants.back().first, text);
}
