// Windows of cells on a lattice, and the place of a cell as the operations on objects see it.
#pragma once

#include "plane/grid_header.h"

#include <cstddef>
#include <cstdint>

namespace gridforge::inline plane {

// Rows and columns from 1, both ends included. It may extend past its lattice, and is empty if a first is above its last.
struct CellWindow {
    std::int32_t firstRow = 1;
    std::int32_t lastRow = 0;
    std::int32_t firstColumn = 1;
    std::int32_t lastColumn = 0;

    bool empty() const { return firstRow > lastRow || firstColumn > lastColumn; }
    std::size_t columns() const { return static_cast<std::size_t>(std::int64_t{lastColumn} - firstColumn + 1); }
    std::size_t cells() const
    {
        return empty() ? 0 : static_cast<std::size_t>(std::int64_t{lastRow} - firstRow + 1) * columns();
    }
};

// The window of a search circle. Rows are divided by the one cell size too: cells are square.
CellWindow searchWindow(const GridHeader& header, double x, double y, float diameter);

// The least window that holds both.
CellWindow joined(const CellWindow& a, const CellWindow& b);

// The part of the window that lies in the grid.
CellWindow withinGrid(const CellWindow& window, const GridHeader& header);

// No row or column of the window lies outside the grid.
bool isWithinGrid(const CellWindow& window, const GridHeader& header);

// The north-east corner of a cell, where the searches of -cp and the region tests see it. The index goes through single
// precision.
inline double cornerX(const GridHeader& header, std::int32_t column)
{
    return header.xll + static_cast<double>(static_cast<float>(column)) * header.cellsize8;
}
inline double cornerY(const GridHeader& header, std::int32_t row)
{
    return header.yll + static_cast<double>(static_cast<float>(row)) * header.cellsize8;
}

// The centre of a cell by an index that goes through single precision, unlike GridHeader::x and y.
inline double centreX(const GridHeader& header, std::int32_t column)
{
    return cornerX(header, column) - 0.5 * header.cellsize8;
}
inline double centreY(const GridHeader& header, std::int32_t row)
{
    return cornerY(header, row) - 0.5 * header.cellsize8;
}

} // namespace gridforge::inline plane
