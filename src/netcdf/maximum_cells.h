// The highest value of each cell.
#pragma once

#include <span>

namespace gridforge::netcdf {

// Keeps the higher of both where a cell lies above null + 0.01. `maximum` starts at the null.
void raiseMaximum(std::span<const float> cells, float null, std::span<float> maximum);

} // namespace gridforge::netcdf
