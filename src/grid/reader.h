// Reads the cells of .asc and .flt grids into memory.
#pragma once

#include "grid/header.h"
#include "grid/look.h"
#include "plane/cell_array.h"

namespace gridforge::grid {

// Fills all of `cells` from the grid, and closes it. As many cells are read as the array has, which is the size of the first
// grid if an operation uses one array for several. An .asc row may go over several lines; the rest of its last line is
// skipped. A short or unreadable file ends the run.
void readCells(OpenGrid grid, Grid& cells);

// Says, opens and closes the same, but reads no cells: the caller has them already.
void passCells(OpenGrid grid);

// Silently fills all of `cells` from a binary grid that was passed, when its cells are needed after all.
void readPassedCells(const GridLook& look, Grid& cells);

// Ends the run where cells cannot be read.
[[noreturn]] void failCells();
// Ends the run where cells cannot be fetched. Those of an input, which are only read, cannot be read; those that wait count as
// memory that ran out.
[[noreturn]] void failFetch(bool onlyRead);

} // namespace gridforge::grid
