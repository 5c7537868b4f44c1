// Two grids multiplied cell by cell.
#pragma once

#include <span>

namespace gridforge::ops {

// The product where neither cell is the null of its own grid, else the first grid's null. All spans are of one length, and
// every cell of `output` is assigned.
void multiplyCells(std::span<const float> first, float firstNull, std::span<const float> second, float secondNull,
                   std::span<float> output);

} // namespace gridforge::ops
