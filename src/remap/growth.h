// The wet area grows over the fine terrain, from cell to neighbour, as long as the level stands above the ground.
#pragma once

#include "remap/cell_state.h"

#include <cstdint>
#include <vector>

namespace gridforge::remap {

struct CellPosition {
    std::int32_t row = 0;
    std::int32_t column = 0;
};

// Cells that the sweep to come has to look at: untouched ones with a wet neighbour.
struct GrowthFront {
    bool begun = false;
    std::vector<CellPosition> cells;
};

// Ground must stand above the terrain's null by more than this to be ground.
inline constexpr float kGroundAboveNull = 0.1F;

// One sweep over the terrain, in place from south to north and in each row from west to east: an untouched cell with a
// wet neighbour becomes wet or dry, and a cell made wet counts at once, so growth runs far to the north and the east.
// Gives the number of cells made wet. The first sweep looks at every cell, the further ones only at the front, which
// leads to the same states: whether a cell can be wet does not depend on when it is asked.
std::int64_t growWetArea(GrowthFront& front, CellStates& states, const Grid& levels, const Grid& ground,
                         float groundNull);

} // namespace gridforge::remap
