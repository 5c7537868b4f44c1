// The cells of a text grid by all threads, where each row stands on a line of its own.
#pragma once

#include "grid/cell_store.h"
#include "grid/look.h"

namespace gridforge::grid {

// Fills `cells`, which has room for the grid, from the text of the grid `look`. Nothing is said, and false returned, where
// the system refuses a read or any row is not on one line with a number for each cell: such text is to be read from its
// start to its end.
[[nodiscard]] bool decodeAsc(const GridLook& look, CellStore& cells);

} // namespace gridforge::grid
