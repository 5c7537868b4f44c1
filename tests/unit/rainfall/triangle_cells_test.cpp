#include "rainfall/triangle_cells.h"

#include "rainfall/triangles.h"
#include "unit/rainfall/plain_rainfall.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace gridforge::test {
namespace {

TEST(PaintTriangle, GivesTheCellsAndRatiosOfTheScanLine)
{
    std::mt19937 random(17);
    const auto upTo = [&](unsigned n) { return static_cast<double>(random() % n); };
    std::int64_t painted = 0;
    for (int round = 0; round < 1500; ++round) {
        const bool large = round % 2 == 0;
        const float cell = round % 3 == 0 ? 0.7F : 10.0F;
        const GridHeader grid = rainfallGrid(19, 25, large ? 293000.25 : 0.0, large ? 6178000.5 : 0.0, cell);
        rainfall::RfTinTables fast;
        rainfall::RfTinTables plain;
        rainfall::allocateTables(grid, fast);
        rainfall::allocateTables(grid, plain);
        PlainTin twin(grid, plain);
        for (std::int32_t e = 1; e <= 4; ++e) {
            // On halves of cells, in and around the grid; some are flat, some a single point.
            rainfall::RfTinPoints points;
            const bool free = round % 5 == 0;
            for (int v = 0; v < 3; ++v) {
                const double shift = free ? upTo(1000) / 1000 : 0.0;
                points.x.push_back(grid.xll + ((upTo(70) - 10) * 0.5 + shift) * grid.cellsize8);
                points.y.push_back(grid.yll + ((upTo(58) - 10) * 0.5 - shift) * grid.cellsize8);
            }
            const rainfall::RfTriangle triangle{1, 2, 3};
            rainfall::paintTriangle(e, rainfall::rfCorners(triangle, points, grid), grid, fast);
            twin.paint(e, triangle, points);
        }
        ASSERT_TRUE(sameCellBits(fast.triangle, plain.triangle)) << round;
        ASSERT_TRUE(sameCellBits(fast.ratioA, plain.ratioA)) << round;
        ASSERT_TRUE(sameCellBits(fast.ratioB, plain.ratioB)) << round;
        painted += std::ranges::count_if(fast.triangle.cells(), [](std::int32_t number) { return number > 0; });
    }
    EXPECT_GT(painted, 50000);
}

TEST(PaintTriangle, FarAndOddTrianglesStayInTheGrid)
{
    const GridHeader grid = rainfallGrid(5, 6, 0, 0, 1.0F);
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const rainfall::RfTriangle triangle{1, 2, 3};
    for (const double far : {1e300, -1e300, 1e10, -1e10, 3e9, inf, nan}) {
        for (const rainfall::RfTinPoints& points :
             {rainfall::RfTinPoints{{far, 3, 1}, {1, far, 4}, {}}, rainfall::RfTinPoints{{far, -far, 1}, {1, 2, 4}, {}},
              rainfall::RfTinPoints{{1, 2, 3}, {far, -far, 4}, {}}}) {
            rainfall::RfTinTables tables;
            rainfall::allocateTables(grid, tables);
            rainfall::paintTriangle(1, rainfall::rfCorners(triangle, points, grid), grid, tables);
            EXPECT_LE(std::ranges::count(tables.triangle.cells(), 1), 30);
        }
    }
}

TEST(CellFactors, AreTheRatiosAlongTheEdgeAndFromTheApex)
{
    const GridHeader grid = rainfallGrid(4, 4, 0, 0, 1.0F);
    rainfall::RfTinTables tables;
    rainfall::allocateTables(grid, tables);
    // The edge from (0, 0) to (4, 0), the apex at (0, 4): the line from there through (1, 2) cuts the edge at (2, 0).
    rainfall::rf_cell_factors(2, 1, 7, {{0, 4, 0}, {0, 0, 4}}, grid, tables);
    EXPECT_EQ(tables.triangle(2, 1), 7);
    EXPECT_FLOAT_EQ(tables.ratioA(2, 1), 0.5F);
    EXPECT_FLOAT_EQ(tables.ratioB(2, 1), 0.5F); // sqrt(1 + 4) of sqrt(4 + 16)
    // Right below the apex.
    rainfall::rf_cell_factors(1, 1, 7, {{0, 4, 1}, {0, 0, 4}}, grid, tables);
    EXPECT_FLOAT_EQ(tables.ratioA(1, 1), 0.25F);
    EXPECT_FLOAT_EQ(tables.ratioB(1, 1), 0.75F);
    // An upright edge.
    rainfall::rf_cell_factors(2, 2, 7, {{0, 0, 4}, {0, 4, 2}}, grid, tables);
    EXPECT_FLOAT_EQ(tables.ratioA(2, 2), 0.5F);
    EXPECT_FLOAT_EQ(tables.ratioB(2, 2), 0.5F);
    // An upright edge with the apex and the cell on it: the cut is vertex 1.
    rainfall::rf_cell_factors(3, 2, 7, {{2, 2, 2}, {0, 4, 6}}, grid, tables);
    EXPECT_FLOAT_EQ(tables.ratioA(3, 2), 0.0F);
    EXPECT_FLOAT_EQ(tables.ratioB(3, 2), 0.5F); // 3 of 6
    // An edge without length, and the cut at the apex.
    rainfall::rf_cell_factors(1, 3, 7, {{2, 2, 2}, {1, 1, 1}}, grid, tables);
    EXPECT_EQ(tables.ratioA(1, 3), 0.5F);
    EXPECT_EQ(tables.ratioB(1, 3), 0.5F);
}

} // namespace
} // namespace gridforge::test
