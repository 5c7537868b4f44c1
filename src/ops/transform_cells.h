// y = m x + c on one grid, and two grids multiplied cell by cell.
#pragma once

#include <span>

namespace gridforge::ops {

// All spans are of one length, and every cell of `output` is assigned.

// cell x m + c in single precision, the product rounded before the sum; null cells stay null.
void transformCells(std::span<const float> cells, float m, float c, float null, std::span<float> output);
// The product where neither cell is the null of its own grid, else the first grid's null.
void multiplyCells(std::span<const float> first, float firstNull, std::span<const float> second, float secondNull,
                   std::span<float> output);

} // namespace gridforge::ops
