// The cells of a window that lie inside a region, as runs of columns.
#pragma once

#include "plane/box.h"
#include "plane/cell_window.h"
#include "plane/region_rows.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::inline plane {

// A region of one ring that ends with its closing vertex and, after it, the second one again.
struct SampledRegion {
    std::vector<double> x;
    std::vector<double> y;
    Box box;
};

// From the cell whose north-east corner lies at or before the lower bounds to the cell past the upper ones. It may
// reach over the grid, and beside it.
CellWindow regionWindow(const SampledRegion& region, const GridHeader& header);

// Where a cell is seen.
enum class CellPlace {
    northEastCorner,
    centre,
    centreInSingle, // products of the number and the size of a cell in single precision: results rest on their rounding
};

// A region being walked over. May be used for one region after another: its memory stays.
struct InsideWalk {
    PreparedRegion region;
    std::vector<double> x; // of the cells of a row
    std::vector<RowRun> runs;
};
void prepareWalk(const SampledRegion& region, InsideWalk& walk);

// Takes the places of the window's columns; `runs` of walkRow count from its first column.
void placeColumns(const GridHeader& header, const CellWindow& window, CellPlace place, InsideWalk& walk);
void walkRow(const GridHeader& header, std::int32_t row, CellPlace place, InsideWalk& walk);

// Calls take(row, first column, columns) for each run of cells inside: rows from the south, runs from the west. The
// window lies within the grid.
template <typename Take>
void forEachInsideRun(const GridHeader& header, const CellWindow& window, CellPlace place, InsideWalk& walk,
                      const Take& take)
{
    placeColumns(header, window, place, walk);
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        walkRow(header, row, place, walk);
        for (const RowRun& run : walk.runs) {
            take(row, window.firstColumn + static_cast<std::int32_t>(run.from), static_cast<std::int32_t>(run.size()));
        }
    }
}

// The cells of such a run.
template <typename Cells>
auto cellsOfRun(Cells& cells, std::int32_t row, std::int32_t first, std::int32_t count)
{
    return cells.row(row).subspan(static_cast<std::size_t>(first - 1), static_cast<std::size_t>(count));
}

} // namespace gridforge::inline plane
