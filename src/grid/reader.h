// Cells of .asc and .flt grids into memory.
#pragma once

#include "grid/grid.h"

#include <string_view>

namespace gridforge {

// Fills the first `nrows` by `ncols` cells of `cells` from the file whose header has just been read, and closes it. An
// .asc row may run over several lines; the rest of its last line is dropped. A short or unreadable file ends the run.
void readGridCells(std::string_view name, GridHeader& header, Grid& cells, std::int32_t ncols, std::int32_t nrows);
// The same with the grid's own counts.
void readGridCells(std::string_view name, GridHeader& header, Grid& cells);

} // namespace gridforge
