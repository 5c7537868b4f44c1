#include "remap/tin_places_avx2.h"

namespace gridforge::remap {

GRIDFORGE_AVX2 void placeFourAbreast(const TinColumns& columns, const TinLines& lines, double y, std::size_t first,
                                     std::size_t count, BlockPlaces& places)
{
    placeInTriangles(columns, lines, y, first, count, places);
}

} // namespace gridforge::remap
