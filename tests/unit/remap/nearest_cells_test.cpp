#include "remap/nearest_cells.h"

#include "support/odd_cells.h"
#include "unit/remap/remap_grids.h"

#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace gridforge {
namespace {

using Table = test::Table<float>;

constexpr float kNull = -9999.0F;

TEST(TakeNearestLevels, TakesTheWetCellThatIsNear)
{
    const Grid levels = test::gridOf({{5, kNull, 7}});
    const remap::CoarseLevels coarse{{0, 2, 3}, {0, 2, 1}, levels, levels, kNull, 0};
    const auto columns = remap::placesInCells({-2, 1, 10}, coarse.columns);
    const auto rows = remap::placesInCells({0, 1, 2}, coarse.rows);
    std::vector<float> found(10);
    remap::takeNearestLevels(coarse, columns, rows[0], found);
    // Centres -1.5, -0.5, 0.5 to 7.5 stand at (x + 1) / 2 cells: the first at -0.25, the last two past 3.5.
    const float n = kNull;
    EXPECT_EQ(found, (std::vector<float>{n, n, 5, 5, n, n, 7, 7, n, n}));
}

TEST(DepthsOfLevels, NeedALevelNotBelowTheGround)
{
    std::vector<float> depths(4);
    remap::depthsOfLevels(std::vector<float>{1, 3, 4, kNull}, std::vector<float>{3, 3, 3, kNull}, kNull, depths);
    EXPECT_EQ(depths, (std::vector<float>{2, 0, kNull, kNull}));
}

TEST(DepthsOnGround, AlsoNeedGroundAboveTheTerrainsNull)
{
    std::vector<float> depths(3);
    remap::depthsOnGround(std::vector<float>{-1 + 0.1F, -1, 1}, -1, std::vector<float>{3, 3, 3}, kNull, depths);
    EXPECT_EQ(depths, (std::vector<float>{3 - (-1 + 0.1F), kNull, 2}));
}

TEST(SpreadLevels, NullCellsTakeTheMeanOfTheirNeighbours)
{
    const Grid levels = test::gridOf({{kNull, 8, kNull}, {4, kNull, kNull}});
    const Grid ground = test::gridOf({{6, 0, 9}, {0, 0, 0}});
    Grid spread = test::gridOf(Table(2, std::vector<float>(3, kNull)));
    // North-west (8 + 4) / 2 on ground 6; north-east 8 under ground 9; middle south (4 + 8) / 2; south-east has none.
    EXPECT_EQ(remap::spreadLevels(levels, ground, kNull, kNull, spread), 2);
    EXPECT_EQ(test::tableOf(spread), (Table{{6, 8, kNull}, {4, 6, kNull}}));
}

TEST(SpreadLevels, SumsWestEastSouthNorthInSinglePrecision)
{
    const Grid levels = test::gridOf({{kNull, -1.0e8F, kNull}, {1.0e8F, kNull, 1}, {kNull, 5, kNull}});
    const Grid ground = test::gridOf(Table(3, std::vector<float>(3, -100)));
    Grid spread = test::gridOf(Table(3, std::vector<float>(3, kNull)));
    remap::spreadLevels(levels, ground, kNull, kNull, spread);
    const float sum = ((1.0e8F + 1.0F) + 5.0F) + -1.0e8F; // 8, not 6: each sum is rounded
    EXPECT_EQ(spread(2, 2), sum / 4);
}

TEST(SpreadLevels, NeedsGroundAboveTheTerrainsNull)
{
    const Grid levels = test::gridOf({{kNull, 8, kNull}});
    const Grid ground = test::gridOf({{-1, 0, -1 + 0.1F}});
    Grid spread = test::gridOf({{kNull, kNull, kNull}});
    EXPECT_EQ(remap::spreadLevels(levels, ground, -1, kNull, spread), 1);
    EXPECT_EQ(test::tableOf(spread), (Table{{kNull, 8, 8}}));
}

TEST(DepthsOfLevels, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const std::vector<float> endless(test::kVectorsAndRest, test::kInfinity);
    std::vector<float> depths(endless.size());
    remap::depthsOfLevels(endless, endless, kNull, depths); // infinity is not below itself
    EXPECT_TRUE(test::allQuietNaN(depths));
}

} // namespace
} // namespace gridforge
