#include "remap/extra_grid_cells.h"

#include "unit/remap/remap_grids.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge {
namespace {

constexpr float kNull = -9999.0F;

TEST(TakeNearestCorners, TakesTheNearestCoarseCellWithinTheQuads)
{
    // Coarse centres 1, 3, 5; fine centres 0.5 to 5.5. At 2, half way, the lower one would be taken.
    const Grid coarse = test::gridOf({{4, 5, 6}, {1, 2, 3}});
    const auto columns = remap::placesInQuads({0, 1, 6}, {0, 2, 3});
    const auto rows = remap::placesInQuads({0, 1, 4}, {0, 2, 2});
    const auto rowOf = [&](std::size_t row) {
        std::vector<float> found(6);
        remap::takeNearestCorners(coarse, columns, rows[row - 1], kNull, found);
        return found;
    };
    const float n = kNull;
    EXPECT_EQ(rowOf(1), (std::vector<float>{n, n, n, n, n, n}));
    EXPECT_EQ(rowOf(2), (std::vector<float>{n, 1, 2, 2, 3, n}));
    EXPECT_EQ(rowOf(3), (std::vector<float>{n, 4, 5, 5, 6, n}));
    EXPECT_EQ(remap::placesInQuads({1.5, 1, 1}, {0, 2, 3})[0].nearest, 1);
}

TEST(CutToDepths, KeepsWhatHasADepthNotBelowZero)
{
    std::vector<float> values = {1, 2, 3, 4};
    remap::cutToDepths(std::vector<float>{0, -0.5F, kNull, std::nanf("")}, kNull, values);
    EXPECT_EQ(values, (std::vector<float>{1, kNull, kNull, kNull}));
    std::vector<float> kept = {1};
    remap::cutToDepths(std::vector<float>{9999}, 9999, kept); // a positive null is not below zero: nothing is cut
    EXPECT_EQ(kept, (std::vector<float>{1}));
}

} // namespace
} // namespace gridforge
