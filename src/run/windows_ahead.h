// Windows of cells around objects, read from a binary grid by their place: what a run samples there is computed before its
// story comes to the grid, by all threads, and little of the grid is read that no window needs.
#pragma once

#include "grid/look.h"
#include "plane/cell_part.h"
#include "plane/cell_window.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace gridforge::run {

// A window within the grid, not empty, and the number of its object.
struct ObjectWindow {
    std::size_t object = 0;
    CellWindow window;
};

// What is done with the windows of one part of the grid. Calls for several parts run at a time, in no order.
using PartWork = std::function<void(const CellPart& cells, std::span<const ObjectWindow> windows, std::size_t worker)>;

// True after `work` has had each window once, with cells that hold at least the window. False, and the grid is to be read whole,
// where the windows are more than twice as much to read, the grid is a text, or the system refuses. Threads take a few MB each,
// and around objects as large as that all together no more than the grid.
bool windowsAhead(const grid::GridLook& look, std::vector<ObjectWindow> windows, const PartWork& work);

} // namespace gridforge::run
