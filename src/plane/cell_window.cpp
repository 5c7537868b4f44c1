#include "plane/cell_window.h"

#include "core/rounding.h"

#include <algorithm>

namespace gridforge::inline plane {

CellWindow searchWindow(const GridHeader& header, double x, double y, float diameter)
{
    const auto radius = static_cast<double>(0.5F * diameter);
    const double dx = header.cellsize8;
    CellWindow window;
    window.firstColumn = truncateToInt(((x - radius) - header.xll) / dx);
    window.lastColumn = ceilToInt(((x + radius) - header.xll) / dx);
    window.firstRow = truncateToInt(((y - radius) - header.yll) / dx);
    window.lastRow = ceilToInt(((y + radius) - header.yll) / dx);
    return window;
}

CellWindow joined(const CellWindow& a, const CellWindow& b)
{
    return {std::min(a.firstRow, b.firstRow), std::max(a.lastRow, b.lastRow), std::min(a.firstColumn, b.firstColumn),
            std::max(a.lastColumn, b.lastColumn)};
}

CellWindow withinGrid(const CellWindow& window, const GridHeader& header)
{
    return {std::max(window.firstRow, 1), std::min(window.lastRow, header.nrows), std::max(window.firstColumn, 1),
            std::min(window.lastColumn, header.ncols)};
}

bool isWithinGrid(const CellWindow& window, const GridHeader& header)
{
    return window.firstRow > 0 && window.firstColumn > 0 && window.lastRow <= header.nrows &&
           window.lastColumn <= header.ncols;
}

} // namespace gridforge::inline plane
