// The order in which a grid's cells stand in a NetCDF file, and their way into it. Cells wait laid out so.
#pragma once

#include "grid/cell_source.h"
#include "grid/cell_store.h"
#include "plane/grid_header.h"

#include <cstddef>
#include <optional>
#include <span>

namespace gridforge::netcdf {

// How the cells of a grid lie in the file. As a block they stand column after column in the places that the file has
// for rows, so those of a grid that is not square do not lie at their x and y. On purpose: readers of such old files
// expect it, and -nc_part puts every row in its place.
enum class Layout { block, rows };

// Fills `laid`, which has room for them, with all cells of the grid in the order of the NetCDF file: row after row or
// column after column, each from the south. By all threads. False where the system refuses, or there is no memory for a
// piece.
[[nodiscard]] bool layCells(const grid::GetCells& source, Layout layout, const GridHeader& lattice,
                            grid::CellStore& laid);

// As many laid cells as `room` has, from `first` on; in `room` where they must be fetched. None where the system
// refuses.
std::optional<std::span<const float>> cellsOf(const grid::CellStore& laid, std::size_t first, std::span<float> room);

} // namespace gridforge::netcdf
