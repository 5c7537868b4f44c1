// What is known of each fine cell while the wet area is found.
#pragma once

#include "core/rounding.h"
#include "plane/cell_array.h"

#include <cstdint>

namespace gridforge::remap {

enum class CellState : std::int8_t {
    dry = -1, // tested and found dry, never tried again
    untouched = 0,
    wet = 1,
};
using CellStates = CellArray<CellState>;

// The state of all cells at the start is the null value as an integer. So with a null of 1 every cell starts wet, and
// with one of -1 none can become wet by growth: on purpose, since results depend on it.
inline CellState startState(float null)
{
    switch (truncateToInt(static_cast<double>(null))) {
    case 1: return CellState::wet;
    case -1: return CellState::dry;
    default: return CellState::untouched;
    }
}

} // namespace gridforge::remap
