#include "remap/tin_row.h"

#include "core/simd.h"
#include "remap/tin_places.h"
#include "remap/tin_places_avx2.h"

#include <algorithm>
#include <cassert>

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
    int unsettled = 0;
    for (std::size_t i = 0; i < count; ++i) {
        unsettled |= static_cast<int>(places.triangle[i] == kUnsettled);
    }
    for (std::size_t i = 0; unsettled != 0 && i < count; ++i) {
        if (places.triangle[i] == kUnsettled) {
            placeExactly(columns, lines, y, first, i, places);
        }
    }
}

void takeLevels(const TinValues& values, const BlockPlaces& places, std::size_t first, std::size_t count, float* levels)
{
    if (hasAvx2()) {
        levelsEightAbreast(values, places, first, count, levels);
    } else {
        levelsInTriangles(values, places, first, count, levels);
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
        takeLevels(values, places, first, count, levels);
        first += count;
        levels += count;
    }
}

void depthsWhereWet(std::span<const CellState> states, float null, std::span<float> levels, std::span<float> ground)
{
    assert(ground.size() == states.size() && levels.size() == states.size());
    if (hasAvx2()) {
        depthsEightAbreast(states.data(), null, states.size(), levels.data(), ground.data());
    } else {
        depthsOf(states.data(), null, states.size(), levels.data(), ground.data());
    }
}

} // namespace gridforge::remap
