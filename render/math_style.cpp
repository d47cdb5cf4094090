// Styles, atom classes and the inter-atom spacing table of TeX's math layout.

#include "render/math_style.h"

#include "render/math_font.h"

#include <QHash>

namespace {

// Rows: the left atom; columns: the right atom; in the order of KAtomClass.
// 0 none, 1 thin, 2 medium, 3 thick; negative: that space only in display and text styles;
// 9 never happens (a binary operator there turns ordinary first).
constexpr int kSpaceTable[8][8] = {
    //  ord  op bin rel open close punct inner
    {0, 1, -2, -3, 0, 0, 0, -1},     // ord
    {1, 1, 9, -3, 0, 0, 0, -1},      // op
    {-2, -2, 9, 9, -2, 9, 9, -2},    // bin
    {-3, -3, 9, 0, -3, 0, 0, -3},    // rel
    {0, 0, 9, 0, 0, 0, 0, 0},        // open
    {0, 1, -2, -3, 0, 0, 0, -1},     // close
    {-1, -1, 9, -1, -1, -1, -1, -1}, // punct
    {-1, 1, -2, -3, -1, 0, -1, -1},  // inner
};

constexpr int kMuPerSpace[4] = {0, 3, 4, 5};

struct ClassRow {
    char32_t character;
    KAtomClass atomClass;
};

// Characters that are not ordinary, by class.
constexpr ClassRow kCharacterClasses[] = {
    {U'+', KAtomClass::bin},        {U'-', KAtomClass::bin},        {U'\u2212', KAtomClass::bin},
    {U'*', KAtomClass::bin},        {U'\u2217', KAtomClass::bin},   {U'\u00B1', KAtomClass::bin},
    {U'\u2213', KAtomClass::bin},   {U'\u00D7', KAtomClass::bin},   {U'\u00F7', KAtomClass::bin},
    {U'\u22C5', KAtomClass::bin},   {U'\u00B7', KAtomClass::bin},   {U'\u2218', KAtomClass::bin},
    {U'\u2219', KAtomClass::bin},   {U'\u2295', KAtomClass::bin},   {U'\u2296', KAtomClass::bin},
    {U'\u2297', KAtomClass::bin},   {U'\u2298', KAtomClass::bin},   {U'\u2299', KAtomClass::bin},
    {U'\u222A', KAtomClass::bin},   {U'\u2229', KAtomClass::bin},   {U'\u2227', KAtomClass::bin},
    {U'\u2228', KAtomClass::bin},   {U'\u2216', KAtomClass::bin},   {U'\u22C6', KAtomClass::bin},
    {U'\u2020', KAtomClass::bin},   {U'\u2021', KAtomClass::bin},   {U'\u2294', KAtomClass::bin},
    {U'\u2293', KAtomClass::bin},   {U'\u25B3', KAtomClass::bin},   {U'\u22C4', KAtomClass::bin},
    {U'\u2240', KAtomClass::bin},   {U'\u228E', KAtomClass::bin},   {U'\u2A3F', KAtomClass::bin},
    {U'=', KAtomClass::rel},        {U'<', KAtomClass::rel},        {U'>', KAtomClass::rel},
    {U':', KAtomClass::rel},        {U'\u2260', KAtomClass::rel},   {U'\u2264', KAtomClass::rel},
    {U'\u2265', KAtomClass::rel},   {U'\u2266', KAtomClass::rel},   {U'\u2267', KAtomClass::rel},
    {U'\u226A', KAtomClass::rel},   {U'\u226B', KAtomClass::rel},   {U'\u2248', KAtomClass::rel},
    {U'\u2261', KAtomClass::rel},   {U'\u2245', KAtomClass::rel},   {U'\u2243', KAtomClass::rel},
    {U'\u223C', KAtomClass::rel},   {U'\u221D', KAtomClass::rel},   {U'\u2208', KAtomClass::rel},
    {U'\u2209', KAtomClass::rel},   {U'\u220B', KAtomClass::rel},   {U'\u2282', KAtomClass::rel},
    {U'\u2283', KAtomClass::rel},   {U'\u2286', KAtomClass::rel},   {U'\u2287', KAtomClass::rel},
    {U'\u2284', KAtomClass::rel},   {U'\u228A', KAtomClass::rel},   {U'\u228B', KAtomClass::rel},
    {U'\u2192', KAtomClass::rel},   {U'\u2190', KAtomClass::rel},   {U'\u2194', KAtomClass::rel},
    {U'\u21D2', KAtomClass::rel},   {U'\u21D0', KAtomClass::rel},   {U'\u21D4', KAtomClass::rel},
    {U'\u27F6', KAtomClass::rel},   {U'\u27F5', KAtomClass::rel},   {U'\u27F7', KAtomClass::rel},
    {U'\u27F9', KAtomClass::rel},   {U'\u27F8', KAtomClass::rel},   {U'\u27FA', KAtomClass::rel},
    {U'\u21A6', KAtomClass::rel},   {U'\u27FC', KAtomClass::rel},   {U'\u2191', KAtomClass::rel},
    {U'\u2193', KAtomClass::rel},   {U'\u21C0', KAtomClass::rel},   {U'\u21CC', KAtomClass::rel},
    {U'\u22A2', KAtomClass::rel},   {U'\u22A3', KAtomClass::rel},   {U'\u22A8', KAtomClass::rel},
    {U'\u2225', KAtomClass::rel},   {U'\u2223', KAtomClass::rel},   {U'\u27C2', KAtomClass::rel},
    {U'\u22A5', KAtomClass::rel},   {U'\u2250', KAtomClass::rel},   {U'\u225C', KAtomClass::rel},
    {U'\u2254', KAtomClass::rel},   {U'\u227A', KAtomClass::rel},   {U'\u227B', KAtomClass::rel},
    {U'\u2AAF', KAtomClass::rel},   {U'\u2AB0', KAtomClass::rel},   {U'\u2A7D', KAtomClass::rel},
    {U'\u2A7E', KAtomClass::rel},   {U'\u2272', KAtomClass::rel},   {U'\u2273', KAtomClass::rel},
    {U'\u21AA', KAtomClass::rel},   {U'\u21A9', KAtomClass::rel},   {U'\u2197', KAtomClass::rel},
    {U'\u2198', KAtomClass::rel},   {U'\u2199', KAtomClass::rel},   {U'\u2196', KAtomClass::rel},
    {U'\u21C4', KAtomClass::rel},   {U'\u2208', KAtomClass::rel},   {U'\u220C', KAtomClass::rel},
    {U'(', KAtomClass::open},       {U'[', KAtomClass::open},       {U'{', KAtomClass::open},
    {U'\u27E8', KAtomClass::open},  {U'\u2308', KAtomClass::open},  {U'\u230A', KAtomClass::open},
    {U'\u27E6', KAtomClass::open},  {U')', KAtomClass::close},      {U']', KAtomClass::close},
    {U'}', KAtomClass::close},      {U'\u27E9', KAtomClass::close}, {U'\u2309', KAtomClass::close},
    {U'\u230B', KAtomClass::close}, {U'\u27E7', KAtomClass::close}, {U'!', KAtomClass::close},
    {U'?', KAtomClass::close},      {U',', KAtomClass::punct},      {U';', KAtomClass::punct},
    {U'\u2211', KAtomClass::op},    {U'\u220F', KAtomClass::op},    {U'\u2210', KAtomClass::op},
    {U'\u222B', KAtomClass::op},    {U'\u222C', KAtomClass::op},    {U'\u222D', KAtomClass::op},
    {U'\u222E', KAtomClass::op},    {U'\u22C3', KAtomClass::op},    {U'\u22C2', KAtomClass::op},
    {U'\u22C1', KAtomClass::op},    {U'\u22C0', KAtomClass::op},    {U'\u2A01', KAtomClass::op},
    {U'\u2A02', KAtomClass::op},    {U'\u2A00', KAtomClass::op},    {U'\u2A06', KAtomClass::op},
    {U'\u2A04', KAtomClass::op},
};

const QHash<char32_t, KAtomClass>& classTable()
{
    static const QHash<char32_t, KAtomClass> table = [] {
        QHash<char32_t, KAtomClass> t;
        for (const ClassRow& row : kCharacterClasses)
            t.insert(row.character, row.atomClass);
        return t;
    }();
    return table;
}

} // namespace

double styleScale(KMathStyle style)
{
    switch (style) {
    case KMathStyle::display:
    case KMathStyle::text:
        return 1.0;
    case KMathStyle::script:
        return KMathFont::instance().constant(HB_OT_MATH_CONSTANT_SCRIPT_PERCENT_SCALE_DOWN);
    case KMathStyle::scriptScript:
        return KMathFont::instance().constant(HB_OT_MATH_CONSTANT_SCRIPT_SCRIPT_PERCENT_SCALE_DOWN);
    }
    return 1.0;
}

KMathStyle scriptStyle(KMathStyle style)
{
    return style == KMathStyle::display || style == KMathStyle::text ? KMathStyle::script
                                                                     : KMathStyle::scriptScript;
}

KMathStyle fractionStyle(KMathStyle style)
{
    switch (style) {
    case KMathStyle::display:
        return KMathStyle::text;
    case KMathStyle::text:
        return KMathStyle::script;
    default:
        return KMathStyle::scriptScript;
    }
}

int interAtomSpace(KAtomClass left, KAtomClass right, KMathStyle style)
{
    const int entry = kSpaceTable[int(left)][int(right)];
    if (entry == 9)
        return 0;
    if (entry < 0)
        return isScriptStyle(style) ? 0 : kMuPerSpace[-entry];
    return kMuPerSpace[entry];
}

KAtomClass characterClass(char32_t character)
{
    return classTable().value(character, KAtomClass::ord);
}

bool binaryActsAsOrdinary(const KAtomClass* previous, const KAtomClass* next)
{
    if (!previous || !next)
        return true;
    switch (*previous) {
    case KAtomClass::bin:
    case KAtomClass::op:
    case KAtomClass::rel:
    case KAtomClass::open:
    case KAtomClass::punct:
        return true;
    default:
        break;
    }
    return *next == KAtomClass::rel || *next == KAtomClass::close || *next == KAtomClass::punct;
}
