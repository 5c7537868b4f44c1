#include "rainfall/triangles.h"

#include "support/child_run.h"
#include "support/process_limits.h"
#include "unit/rainfall/plain_rainfall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

TEST(CellFactors, EndTheRunOutsideTheGrid)
{
    const ScratchFolder folder;
    for (const auto& [row, column] : {std::pair{3, 1}, std::pair{1, 4}}) {
        const ChildRun run = runInChild(folder, [row = row, column = column] {
            const GridHeader grid = rainfallGrid(2, 3, 0, 0, 1.0F);
            rainfall::RfTinTables tables;
            rainfall::allocateTables(grid, tables);
            rainfall::requireInGrid(rainfall::rf_cell_factors(row, column, 1, {{0, 1, 0}, {0, 0, 1}}, grid, tables));
        });
        EXPECT_TRUE(run.ended);
        EXPECT_THAT(run.console,
                    testing::HasSubstr("Should not be here [nn>gin or mm>gim] - please contact SUPPORT_CONTACT.\n"));
    }
}

TEST(ReadTriangles, DistancesThatCannotBeHadEndTheRun)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "a sanitizer has memory of its own";
    }
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        rainfall::RfPoints points;
        points.records.resize(2000000); // 8 MB of distances
        limitMemory(4);
        rainfall::rf_read_triangles("none.rfc", points);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console,
                testing::HasSubstr("Allocating array for storing distances.\nCould not allocate memory.\n"));
}

rainfall::RfPoints pointsAlong(const std::vector<double>& x)
{
    rainfall::RfPoints points;
    for (const double place : x) {
        points.records.push_back({{}, place, 5, 0});
    }
    return points;
}

TEST(SnappedPoint, IsTheNearestAndTheFirstOfSeveral)
{
    const rainfall::RfPoints points = pointsAlong({0, 10, 10.0004, 10, 20});
    std::vector<float> distances(5);
    EXPECT_EQ(rainfall::snappedPoint(10, 5, points, distances), 2);
    EXPECT_EQ(rainfall::snappedPoint(10.0004, 5, points, distances), 3);
    EXPECT_EQ(rainfall::snappedPoint(20, 5, points, distances), 5);
}

TEST(SnappedPoint, IsMissingFromAMillimetreOn)
{
    const rainfall::RfPoints points = pointsAlong({0});
    std::vector<float> distances(1);
    EXPECT_EQ(rainfall::snappedPoint(0.0009, 5, points, distances), 1);
    EXPECT_EQ(rainfall::snappedPoint(static_cast<double>(0.001F), 5, points, distances), 0);
    EXPECT_EQ(rainfall::snappedPoint(std::numeric_limits<double>::quiet_NaN(), 5, points, distances), 0);
    EXPECT_EQ(rainfall::snappedPoint(0, 5, {}, {}), 0);
}

TEST(TinFactors, CountsTheTenThousandthTriangleOnItsLine)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        const GridHeader grid = rainfallGrid(1, 1, 0, 0, 1.0F);
        rainfall::RfTinTables tables;
        rainfall::allocateTables(grid, tables);
        const rainfall::RfTinPoints points{{90, 91, 90}, {90, 90, 91}, {1, 1, 1}};
        rainfall::rf_tin_factors(std::vector<rainfall::RfTriangle>(10000, rainfall::RfTriangle{1, 2, 3}), points, grid,
                                 tables);
    });
    EXPECT_EQ(run.console, "Calculating grid interpolation factors...\nElement:    10000\n"
                           "Finished calculating grid interpolation factors.\n");
}

} // namespace
} // namespace gridforge::test
