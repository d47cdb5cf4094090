// Opening the math fonts through fontconfig, and reading glyphs and the MATH
// table through HarfBuzz at the fonts' own units per em.

#include "render/math_font.h"

#include <fontconfig/fontconfig.h>

#include <QByteArray>

#include <algorithm>
#include <unordered_map>

namespace {

// The math fonts in order of preference: the Times-like one first, then others for what it lacks.
const char* const kFamilies[] = {"TeX Gyre Termes Math", "STIX Two Math", "STIX Math", "DejaVu Math TeX Gyre",
                                 "Latin Modern Math"};

struct FontFile {
    QByteArray path;
    int index = 0;
};

// The file fontconfig offers for a family, only when its family name matches (fontconfig
// always answers with some font).
bool findFamily(const char* family, FontFile& file)
{
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult result = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &result);
    FcPatternDestroy(pattern);
    if (!match)
        return false;
    bool found = false;
    FcChar8* name = nullptr;
    FcChar8* path = nullptr;
    int index = 0;
    if (FcPatternGetString(match, FC_FAMILY, 0, &name) == FcResultMatch &&
        QByteArray(reinterpret_cast<const char*>(name)).compare(family, Qt::CaseInsensitive) == 0 &&
        FcPatternGetString(match, FC_FILE, 0, &path) == FcResultMatch) {
        FcPatternGetInteger(match, FC_INDEX, 0, &index);
        file.path = QByteArray(reinterpret_cast<const char*>(path));
        file.index = index;
        found = true;
    }
    FcPatternDestroy(match);
    return found;
}

// HarfBuzz's drawing callbacks into a QPainterPath, scaled to em with y flipped.
struct DrawTarget {
    QPainterPath* path;
    double scale;
};

void moveTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    auto* t = static_cast<DrawTarget*>(data);
    t->path->moveTo(x * t->scale, -y * t->scale);
}
void lineTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    auto* t = static_cast<DrawTarget*>(data);
    t->path->lineTo(x * t->scale, -y * t->scale);
}
void quadTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float cx, float cy, float x, float y, void*)
{
    auto* t = static_cast<DrawTarget*>(data);
    t->path->quadTo(cx * t->scale, -cy * t->scale, x * t->scale, -y * t->scale);
}
void cubicTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float c1x, float c1y, float c2x, float c2y,
             float x, float y, void*)
{
    auto* t = static_cast<DrawTarget*>(data);
    t->path->cubicTo(c1x * t->scale, -c1y * t->scale, c2x * t->scale, -c2y * t->scale, x * t->scale,
                     -y * t->scale);
}
void closePath(hb_draw_funcs_t*, void* data, hb_draw_state_t*, void*)
{
    static_cast<DrawTarget*>(data)->path->closeSubpath();
}

hb_draw_funcs_t* drawFuncs()
{
    static hb_draw_funcs_t* const funcs = [] {
        hb_draw_funcs_t* f = hb_draw_funcs_create();
        hb_draw_funcs_set_move_to_func(f, moveTo, nullptr, nullptr);
        hb_draw_funcs_set_line_to_func(f, lineTo, nullptr, nullptr);
        hb_draw_funcs_set_quadratic_to_func(f, quadTo, nullptr, nullptr);
        hb_draw_funcs_set_cubic_to_func(f, cubicTo, nullptr, nullptr);
        hb_draw_funcs_set_close_path_func(f, closePath, nullptr, nullptr);
        hb_draw_funcs_make_immutable(f);
        return f;
    }();
    return funcs;
}

quint64 glyphKey(KMathGlyph glyph)
{
    return (quint64(quint32(glyph.face)) << 32) | glyph.index;
}

} // namespace

const KMathFont& KMathFont::instance()
{
    static const KMathFont font;
    return font;
}

KMathFont::KMathFont()
{
    FcInit();
    std::vector<QByteArray> paths;
    for (const char* family : kFamilies) {
        FontFile file;
        if (!findFamily(family, file))
            continue;
        Face face;
        face.blob = hb_blob_create_from_file(file.path.constData());
        face.face = hb_face_create(face.blob, unsigned(file.index));
        const bool usable = hb_face_get_glyph_count(face.face) > 0 && hb_ot_math_has_data(face.face);
        // Two families may resolve to the same file: it is kept once.
        const bool duplicate = std::find(paths.begin(), paths.end(), file.path) != paths.end();
        if (!usable || duplicate) {
            hb_face_destroy(face.face);
            hb_blob_destroy(face.blob);
            continue;
        }
        face.unitsPerEm = std::max(1u, hb_face_get_upem(face.face));
        face.font = hb_font_create(face.face);
        hb_ot_font_set_funcs(face.font);
        hb_font_set_scale(face.font, int(face.unitsPerEm), int(face.unitsPerEm));
        hb_font_make_immutable(face.font);
        paths.push_back(file.path);
        if (m_faces.empty())
            m_family = QString::fromLatin1(family);
        m_faces.push_back(face);
    }
}

KMathFont::~KMathFont()
{
    for (Face& face : m_faces) {
        hb_font_destroy(face.font);
        hb_face_destroy(face.face);
        hb_blob_destroy(face.blob);
    }
}

QString KMathFont::family() const
{
    return m_family;
}

KMathGlyph KMathFont::glyph(char32_t character) const
{
    for (size_t i = 0; i < m_faces.size(); ++i) {
        hb_codepoint_t index = 0;
        if (hb_font_get_nominal_glyph(m_faces[i].font, character, &index) && index != 0)
            return KMathGlyph{int(i), index};
    }
    return {};
}

KMathGlyphInfo KMathFont::load(KMathGlyph glyph) const
{
    KMathGlyphInfo info;
    if (!glyph.valid() || size_t(glyph.face) >= m_faces.size())
        return info;
    const Face& face = m_faces[size_t(glyph.face)];
    const double k = 1.0 / face.unitsPerEm;
    info.advance = hb_font_get_glyph_h_advance(face.font, glyph.index) * k;
    hb_glyph_extents_t extents{};
    if (hb_font_get_glyph_extents(face.font, glyph.index, &extents)) {
        info.height = extents.y_bearing * k;
        info.depth = -(extents.y_bearing + extents.height) * k;
    }
    info.italicCorrection = hb_ot_math_get_glyph_italics_correction(face.font, glyph.index) * k;
    const hb_position_t accent = hb_ot_math_get_glyph_top_accent_attachment(face.font, glyph.index);
    info.topAccent = accent * k;
    DrawTarget target{&info.outline, k};
    hb_font_get_glyph_shape(face.font, glyph.index, drawFuncs(), &target);
    info.outline.setFillRule(Qt::WindingFill);
    return info;
}

const KMathGlyphInfo& KMathFont::info(KMathGlyph glyph) const
{
    thread_local std::unordered_map<quint64, KMathGlyphInfo> cache;
    const quint64 key = glyphKey(glyph);
    auto found = cache.find(key);
    if (found == cache.end())
        found = cache.emplace(key, load(glyph)).first;
    return found->second;
}

double KMathFont::constant(hb_ot_math_constant_t constant) const
{
    if (m_faces.empty())
        return 0;
    const Face& face = m_faces.front();
    const hb_position_t value = hb_ot_math_get_constant(face.font, constant);
    switch (constant) {
    case HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN:
    case HB_OT_MATH_CONSTANT_SCRIPT_SCRIPT_PERCENT_SCALE_DOWN:
    case HB_OT_MATH_CONSTANT_RADICAL_DEGREE_BOTTOM_RAISE_PERCENT:
        return value / 100.0;
    default:
        return value / face.unitsPerEm;
    }
}

std::vector<std::pair<KMathGlyph, double>> KMathFont::variants(KMathGlyph glyph, bool vertical) const
{
    std::vector<std::pair<KMathGlyph, double>> out;
    if (!glyph.valid())
        return out;
    const Face& face = m_faces[size_t(glyph.face)];
    const hb_direction_t direction = vertical ? HB_DIRECTION_BTT : HB_DIRECTION_LTR;
    hb_ot_math_glyph_variant_t buffer[32];
    unsigned offset = 0;
    while (true) {
        unsigned count = 32;
        const unsigned total =
            hb_ot_math_get_glyph_variants(face.font, glyph.index, direction, offset, &count, buffer);
        for (unsigned i = 0; i < count; ++i)
            out.emplace_back(KMathGlyph{glyph.face, buffer[i].glyph}, buffer[i].advance / face.unitsPerEm);
        offset += count;
        if (count == 0 || offset >= total)
            break;
    }
    return out;
}

std::vector<KMathAssemblyPart> KMathFont::assembly(KMathGlyph glyph, bool vertical) const
{
    std::vector<KMathAssemblyPart> out;
    if (!glyph.valid())
        return out;
    const Face& face = m_faces[size_t(glyph.face)];
    const double k = 1.0 / face.unitsPerEm;
    const hb_direction_t direction = vertical ? HB_DIRECTION_BTT : HB_DIRECTION_LTR;
    hb_ot_math_glyph_part_t parts[32];
    unsigned count = 32;
    hb_ot_math_get_glyph_assembly(face.font, glyph.index, direction, 0, &count, parts, nullptr);
    for (unsigned i = 0; i < count; ++i)
        out.push_back(KMathAssemblyPart{KMathGlyph{glyph.face, parts[i].glyph},
                                        parts[i].start_connector_length * k,
                                        parts[i].end_connector_length * k, parts[i].full_advance * k,
                                        (parts[i].flags & HB_OT_MATH_GLYPH_PART_FLAG_EXTENDER) != 0});
    return out;
}

double KMathFont::minConnectorOverlap(bool vertical) const
{
    if (m_faces.empty())
        return 0;
    const Face& face = m_faces.front();
    return hb_ot_math_get_min_connector_overlap(face.font, vertical ? HB_DIRECTION_BTT : HB_DIRECTION_LTR) /
           face.unitsPerEm;
}
