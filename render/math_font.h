#pragma once
// The math font: an OpenType font with a MATH table, found through fontconfig,
// with further math fonts behind it for characters it lacks. Everything is read
// in font units and handed out in em (divided by units per em), so no result
// depends on hinting or on a screen's resolution. The layout constants always
// come from the first font; glyphs come from the first font that has them.
//
// The fonts are opened once per process and only read afterwards; HarfBuzz
// allows concurrent reads. Glyph records (outline, advance, extents) are cached
// per thread, so no lock is taken.

#include <harfbuzz/hb-ot.h>

#include <QPainterPath>
#include <QString>

#include <vector>

// A glyph of one of the math fonts: `face` indexes the fonts, -1 when no font has the character.
struct KMathGlyph {
    int face = -1;
    unsigned index = 0;
    bool valid() const { return face >= 0; }
};

// What the layout reads of one glyph, in em; y grows downward in the outline.
struct KMathGlyphInfo {
    double advance = 0;
    double height = 0; // ink above the baseline (negative when all ink lies below)
    double depth = 0;  // ink below the baseline
    double italicCorrection = 0;
    double topAccent = 0; // attachment x of an accent above; the advance's middle when the font gives none
    QPainterPath outline; // baseline origin at (0, 0)
};

// One piece of a glyph assembly, in em.
struct KMathAssemblyPart {
    KMathGlyph glyph;
    double startConnector = 0;
    double endConnector = 0;
    double fullAdvance = 0;
    bool extender = false;
};

class KMathFont {
public:
    // The process's math fonts; opened on first use.
    static const KMathFont& instance();
    ~KMathFont();
    KMathFont(const KMathFont&) = delete;
    KMathFont& operator=(const KMathFont&) = delete;

    // False when no font with a MATH table was found.
    bool valid() const { return !m_faces.empty(); }
    // The family name of the first font.
    QString family() const;

    // The glyph of a character: the first font that maps it, else an invalid glyph.
    KMathGlyph glyph(char32_t character) const;
    // The record of a glyph, cached on the calling thread; all zero for an invalid glyph.
    const KMathGlyphInfo& info(KMathGlyph glyph) const;

    // A MATH constant of the first font in em (for the three percentages: the fraction, 0.7 for 70).
    double constant(hb_ot_math_constant_t constant) const;
    // Larger forms of a glyph, smallest first, with their advances along the direction in em;
    // the glyph itself comes first when the font lists it.
    std::vector<std::pair<KMathGlyph, double>> variants(KMathGlyph glyph, bool vertical) const;
    // The assembly of a glyph along the direction, bottom or left piece first; empty when there is none.
    std::vector<KMathAssemblyPart> assembly(KMathGlyph glyph, bool vertical) const;
    // The least overlap of two connecting assembly pieces, in em.
    double minConnectorOverlap(bool vertical) const;

private:
    struct Face {
        hb_blob_t* blob = nullptr;
        hb_face_t* face = nullptr;
        hb_font_t* font = nullptr;
        double unitsPerEm = 1000;
    };
    KMathFont();
    KMathGlyphInfo load(KMathGlyph glyph) const;

    std::vector<Face> m_faces;
    QString m_family;
};
