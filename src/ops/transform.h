// -trans_m and -trans_c: y = m x + c on one grid. -multiply: two grids multiplied cell by cell.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <span>

namespace gridforge {

void runTransform(const RunSettings& settings, const InputFileList& inputs);
void runMultiply(const RunSettings& settings, const InputFileList& inputs);

// Kernels: all spans are of one length, and every cell of `output` is assigned.

// cell x m + c in single precision, the product rounded before the sum; null cells stay null.
void transformCells(std::span<const float> cells, float m, float c, float null, std::span<float> output);
// The product where neither cell is the null of its own grid, else the first grid's null.
void multiplyCells(std::span<const float> first, float firstNull, std::span<const float> second, float secondNull,
                   std::span<float> output);

} // namespace gridforge
