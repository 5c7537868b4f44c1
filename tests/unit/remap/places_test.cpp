#include "remap/places.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge {
namespace {

TEST(PlacesInCells, RoundHalvesAwayFromZeroAndLeaveOutWhatIsOutside)
{
    // Three coarse cells of 2. The fine centres -2, 0, 2, 4, 6, 8 stand at -0.5, 0.5, 1.5, 2.5, 3.5, 4.5 cells.
    std::vector<std::int32_t> cells;
    const std::vector<remap::NearestCell> places = remap::placesInCells({-3, 2, 6}, {0, 2, 3});
    for (const remap::NearestCell& place : places) {
        cells.push_back(place.cell);
    }
    EXPECT_EQ(cells, (std::vector<std::int32_t>{0, 1, 2, 3, 0, 0}));
    EXPECT_EQ(places[1].offset, -1);
}

TEST(IsNearCell, CountsADistanceOfOneCellSize)
{
    EXPECT_TRUE(remap::isNearCell({1, 3}, {1, 4}, 5));
    EXPECT_FALSE(remap::isNearCell({1, 3.001}, {1, 4}, 5));
}

} // namespace
} // namespace gridforge
