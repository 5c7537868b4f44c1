// Reads the cells of a text grid with all threads, if each row is one line.
#pragma once

#include "grid/cell_store.h"
#include "grid/look.h"

namespace gridforge::grid {

// Fills `cells`, which has room for the grid, from the text of the grid `look`. Silently returns false if the system
// refuses a read, or a row is not one line with a number for each cell: such text must be read from start to end.
[[nodiscard]] bool decodeAsc(const GridLook& look, CellStore& cells);

} // namespace gridforge::grid
