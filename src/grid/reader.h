// Cells of .asc and .flt grids into memory.
#pragma once

#include "grid/grid.h"

#include <string_view>

namespace gridforge {

// Fills all of `cells` from the file whose header has just been read, and closes it. The array's own size counts, which
// is that of the first grid where an operation uses one array for several. An .asc row may run over several lines; the
// rest of its last line is dropped. A short or unreadable file ends the run.
void readGridCells(std::string_view name, GridHeader& header, Grid& cells);

} // namespace gridforge
