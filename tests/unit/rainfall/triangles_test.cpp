#include "rainfall/triangles.h"

#include "support/child_run.h"
#include "support/process_limits.h"
#include "unit/rainfall/plain_rainfall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
