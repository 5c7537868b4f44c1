// Kernels for the grids that are carried to the fine terrain without interpolation.
#pragma once

#include "plane/cell_array.h"
#include "remap/places.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::remap {

// A stretch of one fine row, of these columns, of values by the nearest coarse cell, null in the outer half cells and
// outside.
void takeNearestCorners(const Grid& coarse, std::span<const QuadPlace> columns, const QuadPlace& row, float null,
                        std::span<float> values);

// Values become null where there is no depth. The test is against 0 and not against null: with a positive null value
// nothing is cut, on purpose: earlier results have it so.
void cutToDepths(std::span<const float> depths, float null, std::span<float> values);

} // namespace gridforge::remap
