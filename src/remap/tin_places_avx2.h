// placeInTriangles in lanes of four.
#pragma once

#include "core/simd.h"
#include "remap/tin_places.h"

#include <cstddef>

namespace gridforge::remap {

GRIDFORGE_AVX2 void placeFourAbreast(const TinColumns& columns, const TinLines& lines, double y, std::size_t first,
                                     std::size_t count, BlockPlaces& places);

} // namespace gridforge::remap
