// Runs, functions and boxes: the characters of a run become glyphs of the math
// font, one atom each, in the shape their run's style and alphabet ask for.

#include "render/glyph_cache.h"
#include "render/layout_engine.h"
#include "render/math_alphabet.h"
#include "render/math_font.h"

#include <algorithm>

namespace {

// Characters a keyboard types that formulas draw as other characters.
char32_t mathCharacter(char32_t c)
{
    switch (c) {
    case U'-':
        return U'\u2212';
    case U'*':
        return U'\u2217';
    case U'\'':
        return U'\u2032';
    default:
        return c;
    }
}

// The shape of a letter: a run without a style sets letters in italic, except capital Greek
// and what the context keeps upright (function names).
KLetterShape letterShape(const KLayoutContext& context, const ORun& run, char32_t c)
{
    if (!run.mathProps.style) {
        // The other alphabets (double-struck, script, fraktur, sans-serif, monospace) stand upright.
        const bool capitalGreek = c >= 0x0391 && c <= 0x03A9;
        const bool roman = run.mathProps.script == OScript::roman;
        return context.upright || capitalGreek || !roman ? KLetterShape::upright : KLetterShape::italic;
    }
    switch (*run.mathProps.style) {
    case OStyle::plain:
        return KLetterShape::upright;
    case OStyle::bold:
        return KLetterShape::bold;
    case OStyle::italic:
        return KLetterShape::italic;
    case OStyle::boldItalic:
        return KLetterShape::boldItalic;
    }
    return KLetterShape::upright;
}

// The shape of normal text: upright unless the word properties ask for bold or italic.
KLetterShape textShape(const OWordRunProperties& word)
{
    if (word.bold)
        return word.italic ? KLetterShape::boldItalic : KLetterShape::bold;
    return word.italic ? KLetterShape::italic : KLetterShape::upright;
}

// A glyph node for one character at `size`; a character no math font has is drawn from the
// text font, measured by its metrics.
std::unique_ptr<KTypoGlyph> characterGlyph(const KLayoutContext& context, char32_t character, double size)
{
    const KMathFont& font = KMathFont::instance();
    auto glyph = std::make_unique<KTypoGlyph>();
    glyph->text = QString::fromUcs4(&character, 1);
    glyph->fontSize = size;
    const KMathGlyph found = font.glyph(character);
    if (!found.valid()) {
        glyph->fontFamily = context.font.family();
        const KGlyphFont& text = glyphFont(context.font.family(), size, false, false);
        setBox(*glyph, text.advance(glyph->text), text.metrics().ascent(), text.metrics().descent());
        return glyph;
    }
    const KMathGlyphInfo& info = font.info(found);
    glyph->fontFamily = font.family();
    glyph->mathFace = found.face;
    glyph->glyphIndex = found.index;
    glyph->italicCorrection = info.italicCorrection * size;
    setBox(*glyph, info.advance * size, std::max(0.0, info.height * size), std::max(0.0, info.depth * size));
    return glyph;
}

} // namespace

KAtomList layoutRun(const KLayoutContext& context, const ORun& run)
{
    KAtomList atoms;
    const QString colour = run.wordProps.color ? run.wordProps.color->name() : QString();
    const OScript script = run.mathProps.script;
    const bool normalText = run.mathProps.normalText;
    for (const uint code : run.text.toUcs4()) {
        // Normal text keeps its characters as typed and puts no math spaces between them.
        const char32_t c = normalText ? code : mathCharacter(code);
        KAtom atom;
        atom.left = atom.right = normalText ? KAtomClass::ord : characterClass(c);
        if (normalText) {
            const KLetterShape shape = textShape(run.wordProps);
            char32_t drawn = isMathLetter(c) ? mathAlphanumeric(c, OScript::roman, shape) : c;
            if (!KMathFont::instance().glyph(drawn).valid())
                drawn = c;
            auto glyph = characterGlyph(context, drawn, context.size);
            glyph->italic = shape == KLetterShape::italic || shape == KLetterShape::boldItalic ? 1 : 0;
            glyph->bold = shape == KLetterShape::bold || shape == KLetterShape::boldItalic ? 1 : 0;
            atom.node = std::move(glyph);
        } else if (isPrime(c)) {
            // The font's prime already stands at a superscript's height and size.
            atom.node = characterGlyph(context, c, context.size);
            atom.left = atom.right = KAtomClass::ord;
        } else {
            KLetterShape shape = KLetterShape::upright;
            if (isMathLetter(c))
                shape = letterShape(context, run, c);
            else if (run.mathProps.style == OStyle::bold || run.mathProps.style == OStyle::boldItalic)
                shape = KLetterShape::bold;
            char32_t drawn = mathAlphanumeric(c, script, shape);
            if (!KMathFont::instance().glyph(drawn).valid())
                drawn = c;
            auto glyph = characterGlyph(context, drawn, context.size);
            const bool slanted = shape == KLetterShape::italic || shape == KLetterShape::boldItalic;
            glyph->italic = slanted && (script == OScript::roman || script == OScript::sansSerif) ? 1 : 0;
            glyph->bold = shape == KLetterShape::bold || shape == KLetterShape::boldItalic ? 1 : 0;
            // An italic letter keeps its italic correction, as TeX's character boxes do.
            if (glyph->italic)
                glyph->width += glyph->italicCorrection;
            atom.node = std::move(glyph);
        }
        if (!colour.isEmpty()) {
            for (KTypoNode* n = atom.node.get(); n;
                 n = n->children.empty() ? nullptr : n->children.front().get())
                n->fillColor = colour;
        }
        atoms.push_back(std::move(atom));
    }
    return atoms;
}

KTypoNodePtr layoutFunction(const KLayoutContext& context, const OFunction& function)
{
    KLayoutContext nameContext = context;
    nameContext.upright = true;
    KAtomList atoms;
    atoms.push_back(KAtom{layoutList(nameContext, function.fName), KAtomClass::op, KAtomClass::op});
    appendAtoms(context, function.e, atoms);
    return joinAtoms(context, std::move(atoms));
}

KTypoNodePtr layoutBox(const KLayoutContext& context, const OBox& box)
{
    return layoutList(context, box.e);
}
