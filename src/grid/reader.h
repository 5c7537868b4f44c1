// Cells of .asc and .flt grids into memory.
#pragma once

#include "grid/header.h"

namespace gridforge::grid {

// Fills all of `cells` from the grid, and closes it. The array's own size counts, which is that of the first grid where an
// operation uses one array for several. An .asc row may run over several lines; the rest of its last line is dropped. A
// short or unreadable file ends the run.
void readCells(OpenGrid grid, Grid& cells);

// Says, opens and closes the same, and leaves the cells, which are not wanted any more.
void passCells(OpenGrid grid);

// Ends the run where cells cannot be read.
[[noreturn]] void failCells();

} // namespace gridforge::grid
