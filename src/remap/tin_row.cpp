#include "remap/tin_row.h"

#include "core/simd.h"
#include "remap/tin_places.h"
#include "remap/tin_places_avx2.h"

#include <algorithm>

namespace gridforge::remap {

namespace {

void placeBlock(const TinColumns& columns, const TinLines& lines, double y, std::size_t first, std::size_t count,
                BlockPlaces& places)
{
    if (hasAvx2()) {
        placeFourAbreast(columns, lines, y, first, count, places);
    } else {
        placeInTriangles(columns, lines, y, first, count, places);
    }
}

void takeValues(const TinValues& values, const BlockPlaces& places, std::size_t first, std::size_t count, float* levels)
{
    const float* const southWest = values.southWest.data() + first;
    const float* const northWest = values.northWest.data() + first;
    const float* const northEast = values.northEast.data() + first;
    const float* const southEast = values.southEast.data() + first;
    const float* const apex = values.apex.data() + first;
    for (std::size_t i = 0; i < count; ++i) {
        const float sw = southWest[i];
        const float nw = northWest[i];
        const float ne = northEast[i];
        const float se = southEast[i];
        const float triangle = places.triangle[i];
        const float fromAbove = triangle == kWest ? sw : nw;
        const float fromBelow = triangle == kEast ? ne : se;
        const float toAbove = triangle == kWest ? nw : ne;
        const float toBelow = triangle == kEast ? se : sw;
        const float from = triangle < kEast ? fromAbove : fromBelow;
        const float to = triangle < kEast ? toAbove : toBelow;
        const float onEdge = from + (to - from) * places.edgeRatio[i];
        levels[i] = apex[i] + (onEdge - apex[i]) * places.apexRatio[i];
    }
}

} // namespace

void interpolateTinStretch(const TinColumns& columns, const TinLines& lines, const TinValues& values, double y,
                           std::size_t first, std::size_t last, float* levels)
{
    BlockPlaces places;
    while (first < last) {
        const std::size_t count = std::min(kTinBlock, last - first);
        placeBlock(columns, lines, y, first, count, places);
        takeValues(values, places, first, count, levels);
        first += count;
        levels += count;
    }
}

} // namespace gridforge::remap
