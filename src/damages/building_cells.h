// The cells of a grid that give the level of a building.
#pragma once

#include "plane/box.h"
#include "plane/cell_part.h"
#include "plane/cell_window.h"
#include "plane/inside_runs.h"

#include <cstdint>

namespace gridforge::damages {

// The row and column at a point building, as the nearest whole number of cell sizes from the corner of the grid, which is
// the north-east corner of the cell. They may lie outside the grid.
CellWindow pointWindow(double x, double y, const GridHeader& header);

// Rows and columns about a polygon's extent, with a cell of margin on each side; it may reach over the grid.
CellWindow buildingWindow(const Box& extent, const GridHeader& header);

// The cells that count for a polygon. Levels of -999 or less never come into the maximum.
struct InsideCells {
    float maximum = -999.0F;
    float sum = 0;
    std::int64_t count = 0;
};

// The level of a polygon on those cells; null where the maximum is not above -998, and where none count for the average.
float maximumLevel(const InsideCells& cells, float null);
float averageLevel(const InsideCells& cells, float null);

// Sums up the cells of the window, whose first row and column lie in the grid, that are inside the polygon and not null,
// rows from the south and each from the west. Beyond the grid there are none. A row costs its edges and the cells inside.
InsideCells cellsInside(const SampledRegion& outline, const CellWindow& window, const GridHeader& header,
                        const CellPart& cells, InsideWalk& walk);

} // namespace gridforge::damages
