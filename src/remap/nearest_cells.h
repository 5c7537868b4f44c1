// The nearest method: each fine cell takes the level of the coarse cell it lies in, and levels spread to the neighbours
// as the mean of what is there. No flag selects it.
#pragma once

#include "remap/growth.h"
#include "remap/places.h"
#include "remap/tin_cells.h"

#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::remap {

inline constexpr std::int32_t kNearestIterations = 1000;

// One fine row of levels by the nearest coarse cell, null where that is dry or too far.
void takeNearestLevels(const CoarseLevels& coarse, const std::vector<NearestCell>& columns, const NearestCell& row,
                       std::span<float> levels);

// Level less ground where there is a level and it is not below the ground, else null.
void depthsOfLevels(std::span<const float> ground, std::span<const float> levels, float null, std::span<float> depths);
// The same, and null where the ground is not 0.1 above the terrain's null.
void depthsOnGround(std::span<const float> ground, float groundNull, std::span<const float> levels, float null,
                    std::span<float> depths);

// One iteration from `levels` to `spread`: a null cell takes the mean of its neighbours' levels where that is not below
// the ground. Gives the number of cells that took one. On entry `spread` is null wherever `levels` is.
std::int64_t spreadLevels(const Grid& levels, const Grid& ground, float groundNull, float null, Grid& spread);

} // namespace gridforge::remap
