// Tables: matrices (cells in a grid of justified columns) and equation arrays
// (rows stacked flush left). Both are centred on the math axis.

#include "render/layout_engine.h"

#include <algorithm>
#include <vector>

namespace {

constexpr double kCellPad = 0.15;    // × S on each side of a cell within its column
constexpr double kRowGap = 0.2;      // × S between matrix rows
constexpr double kColumnGap = 0.3;   // × S between matrix columns
constexpr double kRowMargin = 0.1;   // × S above and below each matrix row
constexpr double kEmptyAscent = 0.7; // × S: an empty row still takes a line's room
constexpr double kEmptyBottom = 0.3; // × S
constexpr double kArrayRowGap = 0.3; // × S between equation array rows
constexpr double kAxisHeight = 0.25; // × S: the math axis above the baseline

bool hasElements(const KOmmlNodeList& list)
{
    return std::any_of(list.begin(), list.end(), [](const KOmmlNodePtr& node) { return node != nullptr; });
}

} // namespace

KTypoNodePtr layoutMatrix(const KLayoutContext& context, const OMatrix& matrix)
{
    const double size = context.size;
    std::size_t columns = 0;
    for (const OMatrixRow& row : matrix.rows)
        columns = std::max(columns, row.size());
    if (columns == 0)
        return nullptr;

    const double pad = kCellPad * size;
    const double u = kRowMargin * size;

    struct Row {
        std::vector<std::unique_ptr<KTypoLine>> cells;
        double ascent = 0;
        double bottom = 0;
    };
    std::vector<Row> rows(matrix.rows.size());
    std::vector<double> columnWidths(columns, 0.0);
    // Cells are set in text style, as TeX sets the cells of an array.
    const KLayoutContext cellContext = context.style == KMathStyle::display
                                           ? styledContext(context, KMathStyle::text, context.cramped)
                                           : context;
    for (std::size_t r = 0; r < matrix.rows.size(); ++r) {
        Row& row = rows[r];
        for (std::size_t c = 0; c < matrix.rows[r].size(); ++c) {
            std::unique_ptr<KTypoLine> cell = layoutList(cellContext, matrix.rows[r][c]);
            columnWidths[c] = std::max(columnWidths[c], cell->width);
            row.ascent = std::max(row.ascent, cell->ascent);
            row.bottom = std::max(row.bottom, cell->bottom);
            row.cells.push_back(std::move(cell));
        }
        if (row.ascent == 0 && row.bottom == 0) {
            row.ascent = kEmptyAscent * size;
            row.bottom = kEmptyBottom * size;
        }
    }

    std::vector<double> slotX(columns, 0.0);
    double width = 0;
    for (std::size_t c = 0; c < columns; ++c) {
        if (c > 0)
            width += kColumnGap * size;
        slotX[c] = width;
        width += columnWidths[c] + 2 * pad;
    }

    auto container = makeContainer(context);
    double y = 0;
    double total = 0;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        Row& row = rows[r];
        if (r > 0)
            y += kRowGap * size;
        const double baseline = y + u + row.ascent;
        for (std::size_t c = 0; c < row.cells.size(); ++c) {
            std::unique_ptr<KTypoLine>& cell = row.cells[c];
            const double slotWidth = columnWidths[c] + 2 * pad;
            const OColumnJustification justification =
                c < matrix.columns.size() ? matrix.columns[c].justification : OColumnJustification::center;
            switch (justification) {
            case OColumnJustification::left:
                cell->x = slotX[c] + pad;
                break;
            case OColumnJustification::right:
                cell->x = slotX[c] + slotWidth - pad - cell->width;
                break;
            default:
                cell->x = slotX[c] + (slotWidth - cell->width) / 2;
                break;
            }
            cell->y = baseline - cell->ascent;
            container->addChild(std::move(cell));
        }
        y += u + row.ascent + row.bottom + u;
        total = y;
    }

    const double ascent = total / 2 + kAxisHeight * size;
    setBox(*container, width, ascent, total - ascent);
    return container;
}

KTypoNodePtr layoutEquationArray(const KLayoutContext& context, const OEquationArray& array)
{
    if (array.rows.empty())
        return nullptr;
    const double size = context.size;
    auto container = makeContainer(context);
    double y = 0;
    double width = 0;
    for (std::size_t r = 0; r < array.rows.size(); ++r) {
        const KOmmlNodeList& list = array.rows[r];
        if (r > 0)
            y += kArrayRowGap * size;
        std::unique_ptr<KTypoLine> row = layoutList(context, list);
        if (!hasElements(list))
            setBox(*row, 0, kEmptyAscent * size, kEmptyBottom * size);
        row->x = 0;
        row->y = y;
        y += row->height;
        width = std::max(width, row->width);
        container->addChild(std::move(row));
    }
    const double ascent = y / 2 + kAxisHeight * size;
    setBox(*container, width, ascent, y - ascent);
    return container;
}
