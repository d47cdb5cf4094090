// Tables as TeX sets its arrays: matrices (cells in text style in columns a
// quad apart, rows on struts back to back, alignment pairs flush against each
// other) and equation arrays (rows split at their `&` alignment points into
// columns that line up across rows). Both are centred on the math axis.

#include "render/layout_engine.h"

#include <algorithm>
#include <vector>

namespace {

constexpr double kColumnGap = 1.0;     // × S: twice the array column separation
constexpr double kPairGap = 2.0;       // × S between the pairs of an alignment
constexpr double kCasesGap = 1.0;      // × S: the quad between the two parts of cases
constexpr double kStrutAscent = 0.84;  // × S: a row's strut (0.7 of a 1.2 S baseline distance)
constexpr double kStrutBottom = 0.36;  // × S
constexpr double kCasesStretch = 1.2;  // cases stretch their rows' struts by this
constexpr double kJot = 0.3;           // × S between the rows of an alignment
constexpr char16_t kAlignmentMark = u'&';

enum class KJustify { left, centre, right };

// A laid-out cell and where it goes in its column.
struct KCell {
    std::unique_ptr<KTypoLine> box;
    KJustify justify = KJustify::centre;
};

struct KGrid {
    std::vector<std::vector<KCell>> rows;
    std::vector<double> gaps; // before each column after the first
    double strutAscent = 0;
    double strutBottom = 0;
    double rowGap = 0;
    bool centreLoneCells = false; // a row of one cell is centred across the whole width
};

// Columns of the grid's widest cells, rows of its tallest, placed and centred on the axis.
KTypoNodePtr placeGrid(const KLayoutContext& context, KGrid grid)
{
    std::size_t columns = 0;
    for (const auto& row : grid.rows)
        columns = std::max(columns, row.size());
    if (columns == 0)
        return nullptr;
    std::vector<double> widths(columns, 0.0);
    for (const auto& row : grid.rows) {
        if (grid.centreLoneCells && row.size() == 1 && columns > 1)
            continue;
        for (std::size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], row[c].box->width);
    }
    std::vector<double> left(columns, 0.0);
    double width = 0;
    for (std::size_t c = 0; c < columns; ++c) {
        if (c > 0)
            width += c - 1 < grid.gaps.size() ? grid.gaps[c - 1] : 0.0;
        left[c] = width;
        width += widths[c];
    }
    for (const auto& row : grid.rows) {
        if (grid.centreLoneCells && row.size() == 1)
            width = std::max(width, row.front().box->width);
    }
    auto container = makeContainer(context);
    double y = 0;
    for (std::size_t r = 0; r < grid.rows.size(); ++r) {
        auto& row = grid.rows[r];
        if (r > 0)
            y += grid.rowGap;
        double ascent = grid.strutAscent;
        double bottom = grid.strutBottom;
        for (const KCell& cell : row) {
            ascent = std::max(ascent, cell.box->ascent);
            bottom = std::max(bottom, cell.box->bottom);
        }
        const bool lone = grid.centreLoneCells && row.size() == 1;
        for (std::size_t c = 0; c < row.size(); ++c) {
            KCell& cell = row[c];
            const double slot = lone ? width : widths[c];
            const double x = lone ? 0.0 : left[c];
            switch (lone ? KJustify::centre : cell.justify) {
            case KJustify::left:
                cell.box->x = x;
                break;
            case KJustify::right:
                cell.box->x = x + slot - cell.box->width;
                break;
            case KJustify::centre:
                cell.box->x = x + (slot - cell.box->width) / 2;
                break;
            }
            cell.box->y = y + ascent - cell.box->ascent;
            container->addChild(std::move(cell.box));
        }
        y += ascent + bottom;
    }
    const double axisHeight = mathConstant(context, HB_OT_MATH_CONSTANT_AXIS_HEIGHT);
    const double ascent = y / 2 + axisHeight;
    setBox(*container, width, ascent, y - ascent);
    return container;
}

KJustify justifyOf(OColumnJustification justification)
{
    switch (justification) {
    case OColumnJustification::left:
        return KJustify::left;
    case OColumnJustification::right:
        return KJustify::right;
    default:
        return KJustify::centre;
    }
}

// The cells of an equation array row: the row cut at the `&` of its runs.
std::vector<KAtomList> alignedCells(const KLayoutContext& context, const KOmmlNodeList& row)
{
    std::vector<KAtomList> cells(1);
    for (const KOmmlNodePtr& element : row) {
        if (!element)
            continue;
        const auto* run = std::get_if<ORun>(&element->value);
        if (!run || !run->text.contains(QChar(kAlignmentMark))) {
            for (KAtom& atom : layoutAtoms(context, *element))
                cells.back().push_back(std::move(atom));
            continue;
        }
        const QStringList pieces = run->text.split(QChar(kAlignmentMark));
        for (int i = 0; i < pieces.size(); ++i) {
            if (i > 0)
                cells.emplace_back();
            if (pieces[i].isEmpty())
                continue;
            const ORun piece{pieces[i], run->mathProps, run->wordProps};
            for (KAtom& atom : layoutRun(context, piece))
                cells.back().push_back(std::move(atom));
        }
    }
    return cells;
}

} // namespace

KTypoNodePtr layoutMatrix(const KLayoutContext& context, const OMatrix& matrix)
{
    std::size_t columns = 0;
    for (const OMatrixRow& row : matrix.rows)
        columns = std::max(columns, row.size());
    if (columns == 0)
        return nullptr;
    auto justificationOf = [&matrix](std::size_t c) {
        return c < matrix.columns.size() ? matrix.columns[c].justification : OColumnJustification::center;
    };
    // Columns justified right then left, pair after pair, are an alignment: each pair meets at
    // its alignment point, and the pairs stand apart.
    bool alignment = columns >= 2;
    for (std::size_t c = 0; c < columns && alignment; ++c)
        alignment = justificationOf(c) == (c % 2 == 0 ? OColumnJustification::right : OColumnJustification::left);
    // Array cells are set in text style; an alignment keeps the display style.
    const KLayoutContext cellContext = context.style == KMathStyle::display && !alignment
                                           ? styledContext(context, KMathStyle::text, context.cramped)
                                           : context;
    KGrid grid;
    for (const OMatrixRow& row : matrix.rows) {
        std::vector<KCell> cells;
        for (std::size_t c = 0; c < row.size(); ++c) {
            KAtomList atoms;
            // The second part of a pair keeps the space before a leading relation, as the empty
            // group TeX puts there does.
            if (alignment && c % 2 == 1)
                atoms.push_back(KAtom{makeContainer(cellContext)});
            appendAtoms(cellContext, row[c], atoms);
            cells.push_back(KCell{joinAtoms(cellContext, std::move(atoms)), justifyOf(justificationOf(c))});
        }
        grid.rows.push_back(std::move(cells));
    }
    const double s = context.size;
    for (std::size_t c = 1; c < columns; ++c)
        grid.gaps.push_back(alignment ? (c % 2 == 1 ? 0.0 : kPairGap * s) : kColumnGap * s);
    grid.strutAscent = kStrutAscent * s;
    grid.strutBottom = kStrutBottom * s;
    grid.rowGap = alignment ? kJot * s : 0.0;
    return placeGrid(context, std::move(grid));
}

KTypoNodePtr layoutEquationArray(const KLayoutContext& context, const OEquationArray& array)
{
    if (array.rows.empty())
        return nullptr;
    const bool cases = context.casesLines;
    KLayoutContext cellContext = cases && context.style == KMathStyle::display
                                     ? styledContext(context, KMathStyle::text, context.cramped)
                                     : context;
    cellContext.casesLines = false;
    const double s = context.size;
    KGrid grid;
    std::size_t columns = 0;
    for (const KOmmlNodeList& line : array.rows) {
        std::vector<KAtomList> pieces = alignedCells(cellContext, line);
        std::vector<KCell> cells;
        for (std::size_t c = 0; c < pieces.size(); ++c) {
            KAtomList& atoms = pieces[c];
            // A part that starts with a relation or an operator keeps the space before it, as the
            // empty group TeX puts there does.
            if (c > 0 && !atoms.empty() && !cases) {
                KAtom empty{makeContainer(cellContext)};
                atoms.insert(atoms.begin(), std::move(empty));
            }
            const KJustify justify = cases || c % 2 == 1 ? KJustify::left : KJustify::right;
            cells.push_back(KCell{joinAtoms(cellContext, std::move(atoms)), justify});
        }
        columns = std::max(columns, cells.size());
        grid.rows.push_back(std::move(cells));
    }
    for (std::size_t c = 1; c < columns; ++c)
        grid.gaps.push_back(cases ? kCasesGap * s : (c % 2 == 1 ? 0.0 : kPairGap * s));
    const double stretch = cases ? kCasesStretch : 1.0;
    grid.strutAscent = kStrutAscent * stretch * s;
    grid.strutBottom = kStrutBottom * stretch * s;
    grid.rowGap = cases ? 0.0 : kJot * s;
    grid.centreLoneCells = !cases;
    if (columns == 1 && !cases) {
        for (auto& row : grid.rows)
            for (KCell& cell : row)
                cell.justify = KJustify::centre;
    }
    return placeGrid(context, std::move(grid));
}
