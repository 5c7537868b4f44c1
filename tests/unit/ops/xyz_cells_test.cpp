#include "ops/xyz_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr float kTolerance = 0.5F;

ops::PointExtents extentsOf(const std::vector<double>& x, const std::vector<double>& y)
{
    return ops::findExtents(x, y, kTolerance, kTolerance);
}

TEST(FindExtents, WithoutPointsTheStartValuesStand)
{
    const ops::PointExtents extents = extentsOf({}, {});
    EXPECT_EQ(extents.box.xmin, 9.0e+29);
    EXPECT_EQ(extents.box.xmax, -9.0e+29);
    EXPECT_EQ(extents.box.ymin, 9.0e+29);
    EXPECT_EQ(extents.box.ymax, -9.0e+29);
    EXPECT_EQ(extents.dx, 9999.0F);
    EXPECT_EQ(extents.dy, 9999.0F);
}

TEST(FindExtents, TheSpacingIsTheSmallestSeparationFromTheFirstPoint)
{
    // 13 and 11 are 2 apart, but the first point is 10.
    const ops::PointExtents extents = extentsOf({10, 13, 11, 4}, {5, 5, 1, -3});
    EXPECT_EQ(extents.box.xmin, 4);
    EXPECT_EQ(extents.box.xmax, 13);
    EXPECT_EQ(extents.box.ymin, -3);
    EXPECT_EQ(extents.box.ymax, 5);
    EXPECT_EQ(extents.dx, 1.0F);
    EXPECT_EQ(extents.dy, 4.0F);
}

TEST(FindExtents, SeparationsUpToTheToleranceAreNotSeen)
{
    EXPECT_EQ(extentsOf({0, 0.5, 1, 1.5}, {0, 0.5, -0.5, 0}).dx, 1.0F);
    EXPECT_EQ(extentsOf({0, 0.5, 1, 1.5}, {0, 0.5, -0.5, 0}).dy, 9999.0F);
    EXPECT_EQ(extentsOf({0, 0.5000000001}, {0, 0}).dx, 0.5F) << "compared in double, kept in single precision";
}

TEST(FindExtents, NotANumberTakesNoPart)
{
    const ops::PointExtents extents = extentsOf({1, kNan, 3}, {2, 5, kNan});
    EXPECT_EQ(extents.box.xmin, 1);
    EXPECT_EQ(extents.box.xmax, 3);
    EXPECT_EQ(extents.dx, 2.0F);
    EXPECT_EQ(extents.dy, 3.0F);
}

std::vector<float> sorted(const std::vector<double>& x, const std::vector<double>& y, const std::vector<float>& z,
                          const ops::PointExtents& extents, std::int32_t nrows, std::int32_t ncols)
{
    Grid cells;
    EXPECT_TRUE(cells.allocate(nrows, ncols));
    std::ranges::fill(cells.cells(), -1.0F);
    ops::sortIntoCells(x, y, z, extents, cells);
    return {cells.cells().begin(), cells.cells().end()};
}

TEST(SortIntoCells, PutsPointsByTheirDistanceFromTheLowerLeft)
{
    const ops::PointExtents extents = {{10, 1, 16, 5}, 2, 4};
    EXPECT_THAT(sorted({10, 12, 13.9, 16}, {1, 4.9, 5, 1}, {1, 2, 3, 4}, extents, 2, 4),
                ElementsAre(-1, 3, -1, -1, 1, 2, -1, 4));
}

TEST(SortIntoCells, ALaterPointOfACellReplacesTheEarlier)
{
    EXPECT_THAT(sorted({0, 0.25, 0.5}, {0, 0, 0}, {1, 2, 3}, {{0, 0, 0.5, 0}, 1, 1}, 1, 1), ElementsAre(3));
}

TEST(SortIntoCells, ARatioJustBelowAWholeNumberFallsACellShort)
{
    // 0.6F is above 0.6, so 1.8 / 0.6F stays below 3.
    const ops::PointExtents extents = {{0, 0, 1.8, 0}, 0.6F, 1};
    EXPECT_THAT(sorted({0, 0.6, 1.2, 1.8}, {0, 0, 0, 0}, {1, 2, 3, 4}, extents, 1, 4), ElementsAre(2, 3, 4, -1));
}

TEST(SortIntoCells, NotANumberCountsAsNoDistance)
{
    EXPECT_THAT(sorted({0, kNan}, {0, kNan}, {1, 2}, {{0, 0, 1, 1}, 1, 1}, 2, 2), ElementsAre(-1, -1, 2, -1));
}

} // namespace
} // namespace gridforge
