// y = m x + c on one grid.
#pragma once

#include <span>

namespace gridforge::ops {

// cell x m + c in single precision, the product rounded before the sum; null cells stay null. Both spans are of one length,
// and every cell of `output` is assigned.
void transformCells(std::span<const float> cells, float m, float c, float null, std::span<float> output);

} // namespace gridforge::ops
