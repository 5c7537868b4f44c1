#include "rainfall/polygon_cells.h"

#include "rainfall/polygons.h"

#include "unit/rainfall/plain_rainfall.h"

#include <gtest/gtest.h>
#include <random>

namespace gridforge::test {
namespace {

struct Ring {
    std::vector<double> x;
    std::vector<double> y;

    void close()
    {
        for (std::size_t i = 0; i < 2; ++i) {
            x.push_back(x[i]);
            y.push_back(y[i]);
        }
    }
};

TEST(PaintRegion, GivesTheCellsOfThePlainLoop)
{
    std::mt19937 random(5);
    const auto upTo = [&](unsigned n) { return static_cast<double>(random() % n); };
    std::int64_t painted = 0;
    std::int64_t shared = 0;
    for (int round = 0; round < 300; ++round) {
        const bool large = round % 2 == 0;
        const float cell = round % 3 == 0 ? 0.1F : (round % 3 == 1 ? 1.0F : 7.3F);
        const GridHeader grid = rainfallGrid(23, 31, large ? 293000.25 : 0.0, large ? 6178000.5 : 0.0, cell);
        rainfall::RfPolygonTables fast;
        rainfall::RfPolygonTables plain;
        rainfall::allocateTables(grid, fast);
        rainfall::allocateTables(grid, plain);
        for (std::int32_t region = 1; region <= 3; ++region) {
            Ring ring;
            for (int k = 0; k < 3 + round % 9; ++k) { // halves of cells meet centres, edges and each other
                ring.x.push_back(grid.xll + (upTo(80) - 8) * 0.5 * grid.cellsize8);
                ring.y.push_back(grid.yll + (upTo(62) - 8) * 0.5 * grid.cellsize8);
            }
            ring.close();
            const float factor = 0.5F * static_cast<float>(region);
            const std::int32_t hyetograph = region - 1; // the first marks with 0
            const std::int64_t both =
                rainfall::paintRegion(rainfall::rfRegion(ring.x, ring.y), grid, hyetograph, factor, fast);
            ASSERT_EQ(both, paintPlainly(ring.x, ring.y, grid, hyetograph, factor, plain));
            shared += both;
        }
        ASSERT_TRUE(sameCellBits(fast.index, plain.index)) << round;
        ASSERT_TRUE(sameCellBits(fast.factor, plain.factor)) << round;
        painted += std::ranges::count_if(fast.index.cells(), [](std::int32_t index) { return index >= 0; });
    }
    EXPECT_GT(painted, 10000);
    EXPECT_GT(shared, 1000);
}

TEST(PaintRegion, FarAndEmptyRegionsTouchNothing)
{
    const GridHeader grid = rainfallGrid(3, 4, 0, 0, 1.0F);
    rainfall::RfPolygonTables tables;
    rainfall::allocateTables(grid, tables);
    for (const double far : {1e300, -1e300, 1e9, -1e9}) {
        Ring ring{{far, far, far / 2}, {0, 2, 1}};
        ring.close();
        EXPECT_EQ(rainfall::paintRegion(rainfall::rfRegion(ring.x, ring.y), grid, 1, 1.0F, tables), 0);
    }
    const Ring none;
    EXPECT_EQ(rainfall::paintRegion(rainfall::rfRegion(none.x, none.y), grid, 1, 1.0F, tables), 0);
    for (std::size_t count = 1; count <= 4; ++count) { // fewer vertices than a ring has
        const std::vector<double> few(count, 1.5);
        EXPECT_EQ(rainfall::paintRegion(rainfall::rfRegion(few, few), grid, 1, 1.0F, tables), 0);
    }
    EXPECT_TRUE(std::ranges::all_of(tables.index.cells(), [](std::int32_t index) { return index == -999; }));
}

TEST(PaintRegion, WithoutASizeOrAnOriginNothingBreaks)
{
    Ring ring{{0, 4, 4}, {0, 0, 4}};
    ring.close();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const GridHeader& grid :
         {rainfallGrid(3, 4, nan, nan, 1.0F), rainfallGrid(3, 4, std::numeric_limits<double>::infinity(), 0, 1.0F)}) {
        rainfall::RfPolygonTables tables;
        rainfall::allocateTables(grid, tables);
        rainfall::paintRegion(rainfall::rfRegion(ring.x, ring.y), grid, 1, 1.0F, tables);
    }
}

} // namespace
} // namespace gridforge::test
