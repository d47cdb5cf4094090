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

// Pieces stacked bottom to top, extenders repeated until the stack covers `height` points;
// the overlaps grow evenly (within the connectors) to hit the height where they can.
KTypoNodePtr buildAssembly(const KLayoutContext& context, const std::vector<KMathAssemblyPart>& parts,
                           const QString& text, double height)
{
    const double s = context.size;
    const double overlap = KMathFont::instance().minConnectorOverlap(true) * s;
    double fixed = 0;
    double extenders = 0;
    int fixedCount = 0;
    int extenderCount = 0;
    for (const KMathAssemblyPart& part : parts) {
        if (part.extender) {
            extenders += part.fullAdvance * s;
            ++extenderCount;
        } else {
            fixed += part.fullAdvance * s;
            ++fixedCount;
        }
    }
    int repeats = 0;
    auto total = [&](int n) {
        const int count = fixedCount + n * extenderCount;
        return fixed + n * extenders - std::max(0, count - 1) * overlap;
    };
    constexpr int kMaxRepeats = 1000;
    while (extenderCount > 0 && total(repeats) < height && repeats < kMaxRepeats)
        ++repeats;
    std::vector<const KMathAssemblyPart*> sequence;
    for (const KMathAssemblyPart& part : parts) {
        for (int i = 0; i < (part.extender ? repeats : 1); ++i)
            sequence.push_back(&part);
    }
    // Spread the excess over the joints, no joint overlapping more than its connectors.
    double joint = overlap;
    if (sequence.size() > 1 && total(repeats) > height)
        joint += (total(repeats) - height) / double(sequence.size() - 1);
    auto line = makeContainer(context);
    double bottom = 0; // upward from the stack's foot, in points
    std::vector<std::pair<KTypoNodePtr, double>> placed;
    for (size_t i = 0; i < sequence.size(); ++i) {
        const KMathAssemblyPart& part = *sequence[i];
        if (i > 0) {
            const double limit = std::min(sequence[i - 1]->endConnector, part.startConnector) * s;
            bottom -= std::max(overlap, std::min(joint, limit));
        }
        auto glyph = mathGlyphNode(context, part.glyph, text);
        const double depth = glyph->bottom;
        placed.emplace_back(std::move(glyph), bottom - depth);
        bottom += part.fullAdvance * s;
    }
    const double stack = bottom;
    double width = 0;
    for (auto& [glyph, baseline] : placed) {
        // baseline: the piece's baseline above the foot; its top-left lies ascent above that.
        glyph->x = 0;
        glyph->y = stack - baseline - glyph->ascent;
        width = std::max(width, glyph->width);
        line->addChild(std::move(glyph));
    }
    setBox(*line, width, stack, 0);
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
        return buildAssembly(context, parts, text, height);
    return mathGlyphNode(context, variants.empty() ? base : variants.back().first, text);
}
