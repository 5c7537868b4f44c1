#include "remap/tin_places_avx2.h"

namespace gridforge::remap {

GRIDFORGE_AVX2 void placeFourAbreast(const TinColumns& columns, const TinLines& lines, double y, std::size_t first,
                                     std::size_t count, BlockPlaces& places)
{
    placeInTriangles(columns, lines, y, first, count, places);
}

GRIDFORGE_AVX2 void levelsEightAbreast(const TinValues& values, const BlockPlaces& places, std::size_t first,
                                       std::size_t count, float* levels)
{
    levelsInTriangles(values, places, first, count, levels);
}

GRIDFORGE_AVX2 void depthsEightAbreast(const CellState* states, float null, std::size_t count, float* levels,
                                       float* ground)
{
    depthsOf(states, null, count, levels, ground);
}

} // namespace gridforge::remap
