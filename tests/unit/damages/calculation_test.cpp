#include "damages/calculation.h"

#include "damages/output.h"
#include "gis/layer_table.h"
#include "host/console.h"
#include "plane/geometry.h"
#include "support/child_run.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tuple>

namespace gridforge::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

// --- The order of the grids ------------------------------------------------------------------------------------------

// The plain twin: for each place the largest, which then gets -1.
std::vector<damages::DmgRes> sortPlainly(std::vector<damages::DmgRes> listed)
{
    std::vector<damages::DmgRes> sorted;
    std::size_t chosen = listed.size();
    for (std::size_t i = 0; i < listed.size(); ++i) {
        float best = -9999.0F;
        for (std::size_t j = 0; j < listed.size(); ++j) {
            if (listed[j].AEP > best) {
                best = listed[j].AEP;
                chosen = j;
            }
        }
        sorted.push_back(listed[chosen]);
        listed[chosen].AEP = -1.0F;
    }
    return sorted;
}

std::vector<damages::DmgRes> listOf(const std::vector<float>& probabilities)
{
    std::vector<damages::DmgRes> listed;
    for (std::size_t i = 0; i < probabilities.size(); ++i) {
        listed.push_back({std::to_string(i + 1), probabilities[i]});
    }
    return listed;
}

std::string shown(const std::vector<damages::DmgRes>& results)
{
    std::string text;
    for (const damages::DmgRes& result : results) {
        text += result.file + ":" + std::to_string(result.AEP) + " ";
    }
    return text;
}

TEST(SortByFrequency, TheMostFrequentGoesFirstAndEqualOnesKeepTheirOrder)
{
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({1, 10, 0.5, 10, 1})).value()),
              "2:10.000000 4:10.000000 1:1.000000 5:1.000000 3:0.500000 ");
    EXPECT_TRUE(damages::sortByFrequency({}).value().empty());
}

TEST(SortByFrequency, WhatIsNoProbabilityGivesItsPlaceToAGridThatWasTaken)
{
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-5, 10, kNan})).value()), "2:10.000000 2:-1.000000 2:-1.000000 ");
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-5, -3})).value()), "2:-3.000000 2:-1.000000 ");
    EXPECT_EQ(shown(damages::sortByFrequency(listOf({-1, 4})).value()), "2:4.000000 1:-1.000000 ");
}

TEST(SortByFrequency, IsTheSelectionForAnyList)
{
    std::mt19937 random(3);
    const std::vector<float> some = {10, 5, 5, 1, 0.2F, 0, -0.5F, -1, -1, -2, -7, kNan, -9999, -20000};
    std::uniform_int_distribution<std::size_t> pick(0, some.size() - 1);
    std::uniform_int_distribution<int> length(1, 9);
    for (int round = 0; round < 3000; ++round) {
        std::vector<float> probabilities(static_cast<std::size_t>(length(random)));
        std::ranges::generate(probabilities, [&] { return some[pick(random)]; });
        if (std::ranges::none_of(probabilities, [](float p) { return p > -9999.0F; })) {
            EXPECT_FALSE(damages::sortByFrequency(listOf(probabilities)));
            continue;
        }
        const std::vector<damages::DmgRes> listed = listOf(probabilities);
        EXPECT_EQ(shown(damages::sortByFrequency(listed).value()), shown(sortPlainly(listed)));
    }
}

// --- Polygons --------------------------------------------------------------------------------------------------------

damages::DmgBuilding polygon(std::vector<double> x, std::vector<double> y)
{
    x.insert(x.end(), {x[0], x[1]});
    y.insert(y.end(), {y[0], y[1]});
    damages::DmgBuilding building;
    building.kind = damages::BuildingKind::polygon;
    building.vertices = static_cast<std::int32_t>(x.size());
    building.extent.xmin = *std::ranges::min_element(x);
    building.extent.xmax = *std::ranges::max_element(x);
    building.extent.ymin = *std::ranges::min_element(y);
    building.extent.ymax = *std::ranges::max_element(y);
    building.x = std::move(x);
    building.y = std::move(y);
    return building;
}

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
    const CellWindow w = damages::buildingWindow(polygon({103, 107.9, 105}, {204, 205, 209}), grid.header);
    EXPECT_EQ(w.firstColumn, 0); // trunc(3 / 2) - 1
    EXPECT_EQ(w.lastColumn, 4);  // trunc(7.9 / 2) + 1
    EXPECT_EQ(w.firstRow, 1);    // trunc(4 / 2) - 1
    EXPECT_EQ(w.lastRow, 5);     // trunc(9 / 2) + 1
}

TEST(BuildingWindow, TruncatesTowardsZeroAndStaysInTheIntegers)
{
    const SampledGrid grid = gridOf(10, 10, 0, 0, 1);
    const CellWindow near = damages::buildingWindow(polygon({-0.9, 0.5, 0.5}, {-1.9, 0.5, 0.5}), grid.header);
    EXPECT_EQ(near.firstColumn, -1);
    EXPECT_EQ(near.firstRow, -2);
    const CellWindow far = damages::buildingWindow(polygon({-1e300, 1e300, 0}, {-1e300, 1e300, 0}), grid.header);
    EXPECT_EQ(far.firstColumn, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(far.lastColumn, std::numeric_limits<std::int32_t>::max());
}

// The plain twin of the kernel: every vertex for every cell.
damages::InsideCells cellsInsidePlainly(const damages::DmgBuilding& building, const CellWindow& window,
                                        const SampledGrid& grid)
{
    const GridHeader& header = grid.header;
    const std::array<std::int32_t, 1> ir = {building.vertices - 1};
    damages::InsideCells cells;
    for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
        for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
            const double y = header.yll + static_cast<double>(static_cast<float>(row)) * header.cellsize8;
            const double x = header.xll + static_cast<double>(static_cast<float>(column)) * header.cellsize8;
            if (row > header.nrows || column > header.ncols ||
                !INSIDE_POLYGON_8(x, y, building.x, building.y, building.vertices, building.extent.xmin, ir, 1)) {
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
damages::DmgBuilding anyPolygon(const GridHeader& header, std::mt19937& random)
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
    return polygon(std::move(x), std::move(y));
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
            const damages::DmgBuilding building = anyPolygon(grid.header, random);
            const CellWindow window = damages::buildingWindow(building, grid.header);
            if (window.firstRow < 1 || window.firstColumn < 1 || window.firstRow > 31 || window.firstColumn > 42) {
                continue;
            }
            const damages::InsideCells fast = damages::cellsInside(building, window, grid.header, grid.cells, walk);
            const damages::InsideCells plain = cellsInsidePlainly(building, window, grid);
            EXPECT_EQ(std::bit_cast<std::uint32_t>(fast.maximum), std::bit_cast<std::uint32_t>(plain.maximum));
            EXPECT_EQ(std::bit_cast<std::uint32_t>(fast.sum), std::bit_cast<std::uint32_t>(plain.sum));
            EXPECT_EQ(fast.count, plain.count);
            counted += fast.count > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(counted, 300);
}

TEST(CellsInside, SumsInSinglePrecisionRowsFromTheSouth)
{
    // 1e8 swallows each 1 behind it: the order tells in the sum.
    SampledGrid grid = gridOf(4, 4, 0, 0, 1);
    const damages::DmgBuilding building = polygon({2.5, 4.5, 4.5, 2.5}, {2.5, 2.5, 4.5, 4.5});
    InsideWalk walk;
    grid.cells(3, 3) = 1e8F;
    grid.cells(3, 4) = 1;
    grid.cells(4, 3) = 1;
    grid.cells(4, 4) = -1e8F;
    const auto sum = [&] {
        const CellWindow window = damages::buildingWindow(building, grid.header);
        return damages::cellsInside(building, window, grid.header, grid.cells, walk).sum;
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
    grid.cells(3, 3) = kNan;
    grid.cells(4, 4) = 2;
    const damages::DmgBuilding building = polygon({2.5, 4.5, 4.5, 2.5}, {2.5, 2.5, 4.5, 4.5});
    InsideWalk walk;
    const damages::InsideCells cells =
        damages::cellsInside(building, damages::buildingWindow(building, grid.header), grid.header, grid.cells, walk);
    EXPECT_EQ(cells.maximum, 2.0F);
    EXPECT_TRUE(std::isnan(cells.sum));
    EXPECT_EQ(cells.count, 4);
}

constexpr float kNull = -9999.0F;

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

// --- States that must not occur --------------------------------------------------------------------------------------

ChildRun calculate(damages::BuildingKind kind, damages::RegionLevel method)
{
    const ScratchFolder folder;
    folder.give("g.asc", "ncols 1\nnrows 1\nxllcorner 0\nyllcorner 0\ncellsize 1\n5\n");
    return runInChild(folder, [=] {
        std::vector<damages::DmgBuilding> buildings = {polygon({2.1, 2.2, 2.2}, {2.1, 2.1, 2.2})};
        buildings[0].kind = kind;
        buildings[0].curve = 1;
        buildings[0].damage.resize(1);
        const std::vector<damages::DmgCurve> curves = {{"c", {0, 1}, {0, 1}}};
        const std::vector<damages::DmgRes> results = {{"g.asc", 1}};
        float level = 0;
        damages::dmg_calc_res(buildings, curves, results, 1, method, level);
    });
}

TEST(CalcRes, AnUnknownMethodOrTypeEndsTheRun)
{
    const ChildRun method = calculate(damages::BuildingKind::polygon, static_cast<damages::RegionLevel>(2));
    EXPECT_TRUE(method.ended);
    EXPECT_NE(method.console.find("   Done.\nERROR - Unexpected region inspection method [dmg_calc_res]\n"),
              std::string::npos)
        << method.console;
    const ChildRun type = calculate(static_cast<damages::BuildingKind>(2), damages::RegionLevel::maximum);
    EXPECT_TRUE(type.ended);
    EXPECT_NE(type.console.find("   Done.\nERROR - Should not be here dmg_calc_res[a]\n"), std::string::npos)
        << type.console;
    EXPECT_FALSE(calculate(damages::BuildingKind::polygon, damages::RegionLevel::average).ended);
}

} // namespace
} // namespace gridforge::test
