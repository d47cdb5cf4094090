#pragma once
// The layout engine's shared pieces, used by every layout rule in render/:
// the context passed down the recursion, containers, and the dispatch entry points.
// Lengths are in points: the math font's em-based values times the current size S.

#include "omml/omml_model.h"
#include "render/math_font.h"
#include "render/math_style.h"
#include "render/typo_node.h"

#include <QFont>
#include <QFontMetricsF>

#include <memory>

// Passed by value (or const reference) down the recursion.
struct KLayoutContext {
    QFont font;            // family "Times New Roman", point size `size` (text of decorations and tables)
    QFontMetricsF metrics; // of font
    double size = 0;       // S: the main size scaled for the style
    int scriptLevel = 0;   // 0 on the main line
    int depth = 0;         // nesting depth of layoutElement, for the recursion guard
    double mainSize = 0;   // the size the formula was asked for
    KMathStyle style = KMathStyle::display;
    bool cramped = false; // superscripts are raised less (denominators, subscripts, radicands)
    bool upright = false; // letters stay upright (function names)
    bool casesLines = false; // an equation array met here is the body of a brace (cases)
};

// Main-line context at `size` points, in display style.
KLayoutContext makeLayoutContext(double size);
// The context in another style, sized for it.
KLayoutContext styledContext(const KLayoutContext& context, KMathStyle style, bool cramped);
// Superscripts and upper limits: the script style; the level counts up.
KLayoutContext scriptContext(const KLayoutContext& context);
// Subscripts and lower limits: as scriptContext, cramped.
KLayoutContext subscriptContext(const KLayoutContext& context);
// One em of the math font at the context's size, in points.
inline double em(const KLayoutContext& context, double value)
{
    return value * context.size;
}

// A laid-out item of a horizontal list and its classes on either side for the spacing.
struct KAtom {
    KTypoNodePtr node;
    KAtomClass left = KAtomClass::ord;
    KAtomClass right = KAtomClass::ord;
};
using KAtomList = std::vector<KAtom>;

// The atoms of one element (a run gives one per character); empty for kinds that draw nothing.
KAtomList layoutAtoms(const KLayoutContext& context, const KOmmlNode& node);
// Appends the atoms of every element of a list.
void appendAtoms(const KLayoutContext& context, const KOmmlNodeList& list, KAtomList& atoms);
// Atoms side by side with TeX's spaces between them, in one container.
std::unique_ptr<KTypoLine> joinAtoms(const KLayoutContext& context, KAtomList atoms);
// Primes (U+2032 to U+2034, U+2057), which the font draws raised.
bool isPrime(char32_t character);
// True when the list is runs of primes only (and not empty): a superscript that is drawn in
// the base's size without a further raise.
bool isPrimesOnly(const KOmmlNodeList& list);
// The glyph a box consists of, when it is one character of the math font (through containers
// with one child each); null otherwise.
const KTypoGlyph* singleGlyph(const KTypoNode& node);

// An empty container (kind 1) carrying the context's font size and family.
std::unique_ptr<KTypoLine> makeContainer(const KLayoutContext& context);
// Sets width, ascent and bottom, and derives height (ascent + bottom) and top (-ascent).
void setBox(KTypoNode& node, double width, double ascent, double bottom);

// Lays out a child list as a horizontal list; always a container (empty for an empty list).
std::unique_ptr<KTypoLine> layoutList(const KLayoutContext& context, const KOmmlNodeList& list);
// True when the list holds no element (null entries do not count).
bool isEmptyList(const KOmmlNodeList& list);
// Lays out one element by its kind; null for kinds that draw nothing and past the depth guard.
KTypoNodePtr layoutElement(const KLayoutContext& context, const KOmmlNode& node);

// Glyphs of the math font (layout_glyphs.cpp).
// A MATH constant of the font in points at the context's size.
double mathConstant(const KLayoutContext& context, hb_ot_math_constant_t constant);
// One glyph of the math font at the context's size, its box the glyph's ink height and depth.
std::unique_ptr<KTypoGlyph> mathGlyphNode(const KLayoutContext& context, KMathGlyph glyph,
                                          const QString& text);
// The character grown upward to cover at least `height` points: the first of the font's larger
// forms that is tall enough, else its assembly of pieces, else the largest form. The box keeps
// the ink's height and depth around the baseline.
KTypoNodePtr verticalGlyph(const KLayoutContext& context, char32_t character, double height);
// The character grown sideways to cover `width` points: the first larger form that is wide
// enough, else its assembly. With `notWider` (wide accents): the widest form not wider than
// `width`, and the assembly only when every form is narrower.
KTypoNodePtr horizontalGlyph(const KLayoutContext& context, char32_t character, double width,
                             bool notWider = false);

// Nesting deeper than this lays out to nothing instead of exhausting the stack.
inline constexpr int kMaxLayoutDepth = 512;

// The core rules (layout_core.cpp); a run gives one atom per character.
KAtomList layoutRun(const KLayoutContext& context, const ORun& run);
// Fractions (layout_fraction.cpp), radicals (layout_radical.cpp), scripts (layout_scripts.cpp),
// large operators and limits (layout_limits.cpp).
KTypoNodePtr layoutFraction(const KLayoutContext& context, const OFraction& fraction);
KTypoNodePtr layoutSuperscript(const KLayoutContext& context, const OSuperscript& script);
KTypoNodePtr layoutSubscript(const KLayoutContext& context, const OSubscript& script);
KTypoNodePtr layoutSubSuperscript(const KLayoutContext& context, const OSubSuperscript& script);
KTypoNodePtr layoutNary(const KLayoutContext& context, const ONaryOperator& nary);
KTypoNodePtr layoutRadical(const KLayoutContext& context, const ORadical& radical);
KTypoNodePtr layoutFunction(const KLayoutContext& context, const OFunction& function);
KTypoNodePtr layoutLimitLower(const KLayoutContext& context, const OLimitLower& limit);
KTypoNodePtr layoutLimitUpper(const KLayoutContext& context, const OLimitUpper& limit);
KTypoNodePtr layoutBox(const KLayoutContext& context, const OBox& box);
// A phantom (layout_decorations.cpp): its content's box, less what the zero flags take
// away; a hidden one draws nothing in it.
KTypoNodePtr layoutPhantom(const KLayoutContext& context, const OPhantom& phantom);
// The struts that size the \big family: a hidden phantom of no width holding a bar (\big, 1) or
// spaces stacked in one to three fractions without bar (\Big to \Bigg, 2 to 4); 0 otherwise.
int strutLevel(const OPhantom& phantom);
// The size of a delimiter whose body is one such strut (a fence of the \big family), else 0.
int sizedFenceLevel(const ODelimiter& delimiter);

// Fences, decorations and tables (layout_fences.cpp, layout_decorations.cpp, layout_tables.cpp).
// The least height plus depth of fences around content of that ascent and bottom, in points.
double delimiterSize(const KLayoutContext& context, double ascent, double bottom);
// A fence of at least `size` points centred on the math axis; a gap when `character` is 0
// or no font has it.
KTypoNodePtr fenceGlyph(const KLayoutContext& context, char32_t character, double size);
KTypoNodePtr layoutDelimiter(const KLayoutContext& context, const ODelimiter& delimiter);
KTypoNodePtr layoutAccent(const KLayoutContext& context, const OAccent& accent);
KTypoNodePtr layoutBar(const KLayoutContext& context, const OBar& bar);
KTypoNodePtr layoutBorderBox(const KLayoutContext& context, const OBorderBox& box);
KTypoNodePtr layoutGroupChar(const KLayoutContext& context, const OGroupChar& groupChar);
KTypoNodePtr layoutMatrix(const KLayoutContext& context, const OMatrix& matrix);
KTypoNodePtr layoutEquationArray(const KLayoutContext& context, const OEquationArray& array);
