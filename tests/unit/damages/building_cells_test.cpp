#include "damages/building_cells.h"

#include "plane/geometry.h"
#include "support/odd_cells.h"
#include "support/sampled_region.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

namespace gridforge::test {
namespace {

constexpr float kNull = -9999.0F;

struct SampledGrid {
    GridHeader header;
    Grid cells;
};

SampledGrid gridOf(std::int32_t nrows, std::int32_t ncols, double xll, double yll, float cellsize)
{
    SampledGrid grid;
    grid.header.nrows = nrows;
    grid.header.ncols = ncols;
    grid.header.xll = xll;
    grid.header.yll = yll;
    grid.header.cellsize = cellsize;
    grid.header.cellsize8 = static_cast<double>(cellsize);
    EXPECT_TRUE(grid.cells.allocate(nrows, ncols));
    return grid;
}

TEST(BuildingWindow, HasACellOfMarginOnEachSide)
{
    const SampledGrid grid = gridOf(10, 10, 100, 200, 2);
    const CellWindow w = damages::buildingWindow(regionOf({103, 107.9, 105}, {204, 205, 209}).box, grid.header);
    EXPECT_EQ(w.firstColumn, 0); // trunc(3 / 2) - 1
    EXPECT_EQ(w.lastColumn, 4);  // trunc(7.9 / 2) + 1
    EXPECT_EQ(w.firstRow, 1);    // trunc(4 / 2) - 1
    EXPECT_EQ(w.lastRow, 5);     // trunc(9 / 2) + 1
}

TEST(BuildingWindow, TruncatesTowardsZeroAndStaysInTheIntegers)
{
    const SampledGrid grid = gridOf(10, 10, 0, 0, 1);
    const CellWindow near = damages::buildingWindow(regionOf({-0.9, 0.5, 0.5}, {-1.9, 0.5, 0.5}).box, grid.header);
    EXPECT_EQ(near.firstColumn, -1);
    EXPECT_EQ(near.firstRow, -2);
    const CellWindow far = damages::buildingWindow(regionOf({-1e300, 1e300, 0}, {-1e300, 1e300, 0}).box, grid.header);
    EXPECT_EQ(far.firstColumn, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(far.lastColumn, std::numeric_limits<std::int32_t>::max());
}

// The plain twin of the kernel: every vertex for every cell.
damages::InsideCells cellsInsidePlainly(const SampledRegion& outline, const CellWindow& window, const SampledGrid& grid)
{
    const GridHeader& header = grid.header;
    const auto vertices = static_cast<std::int32_t>(outline.x.size());
    const std::array<std::int32_t, 1> ir = {vertices - 1};
    damages::InsideCells cells;
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
            const double y = header.yll + static_cast<double>(static_cast<float>(row)) * header.cellsize8;
            const double x = header.xll + static_cast<double>(static_cast<float>(column)) * header.cellsize8;
            if (row > header.nrows || column > header.ncols ||
                !INSIDE_POLYGON_8(x, y, outline.x, outline.y, vertices, outline.box.xmin, ir, 1)) {
                continue;
            }
            const float value = grid.cells(row, column);
            if (value != header.null) {
                cells.maximum = std::max(cells.maximum, value);
                cells.sum = cells.sum + value;
                cells.count = cells.count + 1;
            }
        }
    }
    return cells;
}

void fillLevels(SampledGrid& grid, std::mt19937& random)
{
    std::uniform_real_distribution<float> level(-1100, 900);
    std::uniform_int_distribution<int> chance(0, 9);
    for (float& cell : grid.cells.cells()) {
        cell = chance(random) < 3 ? grid.header.null : level(random);
    }
}

// A ring of any shape, crossing itself at times, with vertices on the points of cells and level edges among others.
SampledRegion anyPolygon(const GridHeader& header, std::mt19937& random)
{
    std::uniform_int_distribution<int> vertices(3, 14);
    std::uniform_real_distribution<double> place(1.5, 1.0 + std::max(header.ncols, header.nrows));
    std::uniform_int_distribution<int> onLattice(0, 2);
    std::vector<double> x;
    std::vector<double> y;
    const int count = vertices(random);
    for (int i = 0; i < count; ++i) {
        const auto coordinate = [&](double origin) {
            const double cells = place(random);
            return origin + (onLattice(random) == 0 ? std::round(cells) : cells) * header.cellsize8;
        };
        x.push_back(coordinate(header.xll));
        y.push_back(coordinate(header.yll));
    }
    return regionOf(x, y);
}

TEST(CellsInside, GivesTheBitsOfThePlainTest)
{
    std::mt19937 random(11);
    int counted = 0;
    InsideWalk walk;
    for (const auto& [xll, yll, cellsize] : std::vector<std::tuple<double, double, float>>{
             {0, 0, 1}, {381234.125, 6354321.375, 0.9999F}, {-7e6, 1e7, 5}}) {
        SampledGrid grid = gridOf(31, 42, xll, yll, cellsize);
        fillLevels(grid, random);
        for (int round = 0; round < 400; ++round) {
            const SampledRegion outline = anyPolygon(grid.header, random);
            const CellWindow window = damages::buildingWindow(outline.box, grid.header);
            if (window.firstRow < 1 || window.firstColumn < 1 || window.firstRow > 31 || window.firstColumn > 42) {
                continue;
            }
            const damages::InsideCells fast = damages::cellsInside(outline, window, grid.header, grid.cells, walk);
            const damages::InsideCells plain = cellsInsidePlainly(outline, window, grid);
            EXPECT_EQ(std::bit_cast<std::uint32_t>(fast.maximum), std::bit_cast<std::uint32_t>(plain.maximum));
            EXPECT_EQ(std::bit_cast<std::uint32_t>(fast.sum), std::bit_cast<std::uint32_t>(plain.sum));
            EXPECT_EQ(fast.count, plain.count);
            counted += fast.count > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(counted, 300);
}

TEST(CellsInside, OfOddLevelsGivesTheBitsOfThePlainTest)
{
    std::mt19937 random(12);
    int counted = 0;
    int higher = 0;
    InsideWalk walk;
    for (const float null : kOddNulls) {
        SampledGrid grid = gridOf(31, 42, 10.25, -7.5, 1);
        grid.header.null = null;
        std::ranges::copy(oddCells(grid.cells.cells().size(), null, static_cast<std::uint32_t>(random())),
                          grid.cells.cells().begin());
        for (int round = 0; round < 300; ++round) {
            const SampledRegion outline = anyPolygon(grid.header, random);
            const CellWindow window = damages::buildingWindow(outline.box, grid.header);
            if (window.firstRow < 1 || window.firstColumn < 1 || window.firstRow > 31 || window.firstColumn > 42) {
                continue;
            }
            const damages::InsideCells fast = damages::cellsInside(outline, window, grid.header, grid.cells, walk);
            const damages::InsideCells plain = cellsInsidePlainly(outline, window, grid);
            ASSERT_EQ(bitsOfValue(fast.maximum), bitsOfValue(plain.maximum)) << "null " << null << ", round " << round;
            ASSERT_EQ(bitsOfValue(fast.sum), bitsOfValue(plain.sum)) << "null " << null << ", round " << round;
            ASSERT_EQ(fast.count, plain.count) << "null " << null << ", round " << round;
            counted += fast.count > 0 ? 1 : 0;
            higher += fast.maximum > -998.0F && fast.maximum < 1000.0F ? 1 : 0;
        }
    }
    EXPECT_GT(counted, 300);
    EXPECT_GT(higher, 5);
}

TEST(CellsInside, SumsInSinglePrecisionRowsFromTheSouth)
{
    // 1e8 swallows each 1 behind it: the order tells in the sum.
    SampledGrid grid = gridOf(4, 4, 0, 0, 1);
    const SampledRegion outline = regionOf({2.5, 4.5, 4.5, 2.5}, {2.5, 2.5, 4.5, 4.5});
    InsideWalk walk;
    grid.cells(3, 3) = 1e8F;
    grid.cells(3, 4) = 1;
    grid.cells(4, 3) = 1;
    grid.cells(4, 4) = -1e8F;
    const auto sum = [&] {
        const CellWindow window = damages::buildingWindow(outline.box, grid.header);
        return damages::cellsInside(outline, window, grid.header, grid.cells, walk).sum;
    };
    EXPECT_EQ(sum(), 0.0F);
    grid.cells(3, 3) = -1e8F;
    grid.cells(4, 4) = 1;
    grid.cells(4, 3) = 1e8F;
    grid.cells(3, 4) = 0;
    EXPECT_EQ(sum(), 1.0F);
}

TEST(CellsInside, CellsThatAreNoNumberDoNotBecomeTheMaximum)
{
    SampledGrid grid = gridOf(4, 4, 0, 0, 1);
    grid.cells(3, 3) = kNaN;
    grid.cells(4, 4) = 2;
    const SampledRegion outline = regionOf({2.5, 4.5, 4.5, 2.5}, {2.5, 2.5, 4.5, 4.5});
    InsideWalk walk;
    const damages::InsideCells cells =
        damages::cellsInside(outline, damages::buildingWindow(outline.box, grid.header), grid.header, grid.cells, walk);
    EXPECT_EQ(cells.maximum, 2.0F);
    EXPECT_TRUE(std::isnan(cells.sum));
    EXPECT_EQ(cells.count, 4);
}

TEST(RegionLevels, AMaximumIsALevelOnlyAboveItsLimit)
{
    const float next = std::nextafter(-998.0F, 0.0F);
    EXPECT_EQ(damages::maximumLevel({next, 0, 1}, kNull), next);
    EXPECT_EQ(damages::maximumLevel({-998.0F, 0, 1}, kNull), kNull);
    EXPECT_EQ(damages::maximumLevel({}, kNull), kNull);
}

TEST(RegionLevels, AnAverageTakesOneCellAtLeast)
{
    EXPECT_EQ(damages::averageLevel({9, 7, 2}, kNull), 3.5F);
    EXPECT_EQ(damages::averageLevel({-999.0F, -1000, 1}, kNull), -1000.0F); // has no limit
    EXPECT_EQ(damages::averageLevel({}, kNull), kNull);
}

} // namespace
} // namespace gridforge::test
