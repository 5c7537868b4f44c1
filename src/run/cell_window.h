// Windows of cells around what is sampled, and the place of a cell as the sampling operations see it.
#pragma once

#include "plane/cell_window.h"
#include "plane/grid_header.h"

#include <cstdint>

namespace gridforge::run {

using gridforge::CellWindow;

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

} // namespace gridforge::run
