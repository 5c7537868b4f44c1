// The loops over the cells of a stretch, in lanes of four and eight.
#pragma once

#include "core/simd.h"
#include "remap/tin_places.h"

#include <cstddef>

namespace gridforge::remap {

GRIDFORGE_AVX2 void placeFourAbreast(const TinColumns& columns, const TinLines& lines, double y, std::size_t first,
                                     std::size_t count, BlockPlaces& places);
GRIDFORGE_AVX2 void levelsEightAbreast(const TinValues& values, const BlockPlaces& places, std::size_t first,
                                       std::size_t count, float* levels);
GRIDFORGE_AVX2 void depthsEightAbreast(const CellState* states, float null, std::size_t count, float* levels,
                                       float* ground);

} // namespace gridforge::remap
