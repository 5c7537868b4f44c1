#include "remap/tin_cells.h"

#include "support/odd_cells.h"
#include "unit/remap/remap_grids.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <span>
#include <vector>

namespace gridforge {
namespace {

using Table = test::Table<float>;

constexpr float kNull = -9999.0F;

TEST(IdwOneCell, WeighsNeighboursByInverseSquare)
{
    const remap::CellFlags wet = test::flagsOf({{1, 0, 0}, {0, 0, 1}, {0, 0, 0}});
    const Grid levels = test::gridOf({{9, 0, 0}, {0, 0, 6}, {0, 0, 0}});
    // The east neighbour, in row 2, stands before the one in row 3.
    const float corner = 1.0F / (std::sqrt(2.0F) * std::sqrt(2.0F));
    EXPECT_EQ(remap::idwOneCell(2, 2, wet, levels, 2.0F), (6 + corner * 9) / (1 + corner));
}

// Each cell of a grid in turn is dry and all others are wet, with levels that no other sum gives.
TEST(IdwOneCell, ReachesTheCellsAroundItAndNoOthers)
{
    constexpr std::int32_t kSide = 4;
    auto levels = test::sameCells<float>(kSide, kSide, 0);
    for (std::size_t i = 0; i < levels.cells().size(); ++i) {
        levels.cells()[i] = static_cast<float>(1U << i);
    }
    for (std::int32_t row = 1; row <= kSide; ++row) {
        for (std::int32_t column = 1; column <= kSide; ++column) {
            auto wet = test::sameCells<std::uint8_t>(kSide, kSide, 1);
            wet(row, column) = 0;
            float sum = 0;
            float weights = 0;
            for (std::int32_t r = 1; r <= kSide; ++r) {
                for (std::int32_t c = 1; c <= kSide; ++c) {
                    const int apart = (r - row) * (r - row) + (c - column) * (c - column);
                    if (apart == 1 || apart == 2) {
                        const float weight = apart == 1 ? 1.0F : 1.0F / (std::sqrt(2.0F) * std::sqrt(2.0F));
                        weights += weight;
                        sum += weight * levels(r, c);
                    }
                }
            }
            EXPECT_EQ(remap::idwOneCell(row, column, wet, levels, 2.0F), sum / weights) << row << ' ' << column;
        }
    }
}

TEST(ExtendOneCellRow, WetCellsKeepTheirsAndUnflaggedOnesStayNull)
{
    const remap::CellFlags wet = test::flagsOf({{1, 0, 0}});
    const remap::CellFlags extent = test::flagsOf({{1, 1, 0}});
    const Grid levels = test::gridOf({{7, kNull, kNull}});
    Grid extended = test::gridOf({{kNull, kNull, kNull}});
    remap::extendOneCellRow(1, wet, extent, levels, extended);
    EXPECT_EQ(test::tableOf(extended), (Table{{7, 7, kNull}}));
}

// A quad with corners (1,1), (1,3), (3,3), (3,1).
struct QuadOfFour {
    Grid levels = test::gridOf({{2, 3}, {1, 4}});
    remap::CoarseLevels coarse{{0, 2, 2}, {0, 2, 2}, levels, levels, kNull, 0};
    remap::PreparedQuad quad = remap::prepareQuad(coarse, 1, 1);

    char under(double x, double y) const { return "WNES"[&remap::triangleUnder(quad, {x, y}) - quad.triangles.data()]; }
};

TEST(TriangleUnder, IsTheOneOfTheSide)
{
    const QuadOfFour q;
    EXPECT_EQ(q.under(1.25, 2), 'W');
    EXPECT_EQ(q.under(2, 2.75), 'N');
    EXPECT_EQ(q.under(2.75, 2), 'E');
    EXPECT_EQ(q.under(2, 1.25), 'S');
}

TEST(TriangleUnder, OnADiagonalGoesToTheSettledSide)
{
    const QuadOfFour q;
    EXPECT_EQ(q.under(2.5, 2.5), 'E'); // from south-west to north-east, above the other diagonal
    EXPECT_EQ(q.under(1.5, 1.5), 'S'); // below it
    EXPECT_EQ(q.under(1.5, 2.5), 'N'); // the other diagonal, above the first
    EXPECT_EQ(q.under(2.5, 1.5), 'S'); // below the first
    EXPECT_EQ(q.under(2, 2), 'S');     // on both
}

TEST(PrepareQuad, TheCentreIsTheMeanOfTheCornersInTheirOrder)
{
    // In single precision the order counts: south-west, north-west, north-east, south-east.
    const Grid levels = test::gridOf({{1.0F, -1.0e8F}, {1.0e8F, 3.0F}});
    const remap::CoarseLevels coarse{{0, 2, 2}, {0, 2, 2}, levels, levels, kNull, 0};
    const float centre = remap::prepareQuad(coarse, 1, 1).triangles[0].triangle.apexValue;
    EXPECT_EQ(centre, 0.25F * 3.0F); // 1e8 + 1 is 1e8, less 1e8 is 0, and 3
}

struct TinGrids {
    Table levels;
    Table depths;
};

// The whole method behind the extension: `model` are the coarse levels, `extended` those past the edge.
TinGrids runTin(const Grid& model, const Grid& extended, const test::plain::Lattice& coarse, float null,
                float freeboard, const Grid& ground, const test::plain::Lattice& fine)
{
    const remap::Axis columns{coarse.xll, coarse.size, model.ncols()};
    const remap::Axis rows{coarse.yll, coarse.size, model.nrows()};
    const remap::CoarseLevels levels{columns, rows, model, extended, null, freeboard};
    const remap::TinPlaces places =
        remap::placeTin(levels, {fine.xll, fine.size, ground.ncols()}, {fine.yll, fine.size, ground.nrows()});
    remap::TinWalk walk;
    auto fineLevels = test::sameCells<float>(ground.nrows(), ground.ncols(), 77);
    auto fineDepths = test::sameCells<float>(ground.nrows(), ground.ncols(), 77);
    std::ranges::copy(ground.cells(), fineDepths.cells().begin());
    auto states = test::sameCells(ground.nrows(), ground.ncols(), remap::startState(null));
    for (std::int32_t row = 1; row <= ground.nrows(); ++row) {
        remap::interpolateTinRow(levels, places, walk, row, 0, fineLevels.row(row), states.row(row));
    }
    remap::depthsWhereWet(states.cells(), null, fineLevels.cells(), fineDepths.cells());
    return {test::tableOf(fineLevels), test::tableOf(fineDepths)};
}

TEST(Tin, APlaneComesOutAsAPlaneAndTheRimStaysNull)
{
    // Coarse cells of 2, level = x + 10 y at their centres (1, 3 and 5); fine cells of 1, centres at the halves.
    const Grid levels = test::gridOf({{51, 53, 55}, {31, 33, 35}, {11, 13, 15}});
    const auto ground = test::sameCells<float>(6, 6, 0);
    const TinGrids found = runTin(levels, levels, {0, 0, 2}, kNull, 0, ground, {0, 0, 1});
    const float n = kNull;
    EXPECT_EQ(found.levels, (Table{{n, n, n, n, n, n},
                                   {n, 46.5, 47.5, 48.5, 49.5, n},
                                   {n, 36.5, 37.5, 38.5, 39.5, n},
                                   {n, 26.5, 27.5, 28.5, 29.5, n},
                                   {n, 16.5, 17.5, 18.5, 19.5, n},
                                   {n, n, n, n, n, n}}));
    EXPECT_EQ(found.depths, found.levels);
}

TEST(Tin, OnlyCellsNearestToAWetCornerAreWet)
{
    // Coarse centres at 2 and 6, the west ones wet. Fine centres at 2.5, 3.5, 4.5, 5.5.
    const Grid model = test::gridOf({{8, kNull}, {8, kNull}});
    const Grid extended = test::gridOf({{8, 8}, {8, 8}});
    const Grid ground = test::gridOf({{1, 8, 1, 1}, {1, 9, 1, 1}});
    const TinGrids found = runTin(model, extended, {0, 0, 4}, kNull, 0, ground, {2, 2, 1});
    EXPECT_EQ(found.levels, (Table{{8, 8, kNull, kNull}, {8, kNull, kNull, kNull}}));
    EXPECT_EQ(found.depths, (Table{{7, 0, kNull, kNull}, {7, kNull, kNull, kNull}})); // a depth of 0 is kept
}

TEST(Tin, ANearestCornerExactlyHalfWayIsTheLowerOne)
{
    // Fine centre at 4, half way between the coarse centres 2 and 6.
    const Grid extended = test::gridOf({{8, 8}, {8, 8}});
    const Grid ground = test::gridOf({{0}});
    const Grid onlySouthWest = test::gridOf({{kNull, kNull}, {8, kNull}});
    EXPECT_EQ(runTin(onlySouthWest, extended, {0, 0, 4}, kNull, 0, ground, {3.5, 3.5, 1}).depths, (Table{{8}}));
    const Grid allButSouthWest = test::gridOf({{8, 8}, {kNull, 8}});
    EXPECT_EQ(runTin(allButSouthWest, extended, {0, 0, 4}, kNull, 0, ground, {3.5, 3.5, 1}).depths, (Table{{kNull}}));
}

TEST(Tin, ANullCornerEntersTheCentreAsItsNumber)
{
    // Right in the middle of a quad with a null corner the level is far below most ground.
    const Grid levels = test::gridOf({{8, kNull}, {8, 8}});
    const float centre = 0.25F * (((8.0F + 8.0F) + kNull) + 8.0F);
    const auto levelsOver = [&](float ground) {
        return runTin(levels, levels, {0, 0, 4}, kNull, 0, test::gridOf({{ground}}), {3.5, 3.5, 1}).levels;
    };
    EXPECT_EQ(levelsOver(1), (Table{{kNull}}));
    EXPECT_EQ(levelsOver(-5000), (Table{{centre}}));
}

TEST(Tin, NullGroundStandsAsVeryLowGround)
{
    const Grid levels = test::gridOf({{8, 8}, {8, 8}});
    const Grid ground = test::gridOf({{-9999.0F}});
    EXPECT_EQ(runTin(levels, levels, {0, 0, 4}, kNull, 0, ground, {3.5, 3.5, 1}).depths, (Table{{10007}}));
}

TEST(Tin, AWetCornerStandsAboveNullAndFreeboard)
{
    // With a null of 0 and a freeboard of 2 a level of 2 is dry.
    const float threshold = (0.0F + 2.0F) + 0.1F;
    const Grid ground = test::gridOf({{-1}});
    for (const float level : {2.0F, threshold, std::nextafter(threshold, 9.0F)}) {
        const Grid levels = test::gridOf({{level, level}, {level, level}});
        EXPECT_EQ(runTin(levels, levels, {0, 0, 4}, 0, 2, ground, {3.5, 3.5, 1}).depths,
                  (Table{{level > threshold ? level + 1 : 0.0F}}));
    }
}

TEST(Tin, TerrainElsewhereStaysNull)
{
    const Grid levels = test::gridOf({{8, 8}, {8, 8}});
    const Grid ground = test::gridOf({{0, 0}});
    for (const double far : {1000.0, -1000.0, 1.0e15, -1.0e15}) {
        EXPECT_EQ(runTin(levels, levels, {0, 0, 4}, kNull, 0, ground, {far, 0, 1}).levels, (Table{{kNull, kNull}}));
        EXPECT_EQ(runTin(levels, levels, {0, 0, 4}, kNull, 0, ground, {0, far, 1}).levels, (Table{{kNull, kNull}}));
    }
}

TEST(Tin, IsThatOfALoopOverTheFineCells)
{
    std::mt19937 random(13);
    for (int trial = 0; trial < 400; ++trial) {
        const auto number = [&](int low, int high) { return test::randomBetween(random, low, high); };
        const auto real = [&](double low, double high) { return test::randomReal(random, low, high); };
        const float null = std::vector<float>{kNull, 1.5F, -1.0F, 0.0F}[static_cast<std::size_t>(trial % 4)];
        // So far out that cells of one coarse size have no width.
        const bool isFar = trial % 13 == 12;
        const double corner = trial % 3 == 0 && !isFar ? 0 : real(-1, 1) * (isFar ? 1e17 : 1e6);
        const test::plain::Lattice coarse{corner, corner, trial % 2 == 0 ? number(1, 9) : real(0.5, 30)};
        const double ratio = trial % 5 == 0 ? real(0.2, 9) : number(1, 8);
        const double shift = trial % 2 == 0 ? 0 : real(-2, 2) * coarse.size;
        const test::plain::Lattice fine{coarse.xll + shift, coarse.yll - shift, coarse.size / ratio};
        test::plain::Reals model = test::randomReals(random, number(1, 9), number(1, 9), 10, 12);
        test::plain::Reals extended = model;
        for (std::size_t i = 0; i < model.values.size(); ++i) {
            if (number(1, 4) == 1) {
                model.values[i] = null;
                extended.values[i] = number(1, 2) == 1 ? null : 11;
            }
        }
        const test::plain::Reals ground = test::randomReals(random, number(1, 60), number(1, 60), 9, 12);
        test::plain::Reals levels(ground.nrows, ground.ncols);
        test::plain::Reals depths(ground.nrows, ground.ncols);
        test::plain::Integers states(ground.nrows, ground.ncols);
        const float freeboard = trial % 7 == 0 ? 0.5F : 0.0F;
        test::plain::tin(model, extended, coarse, null, freeboard, ground, fine, levels, states, depths);

        const TinGrids found =
            runTin(test::cellsOf(model), test::cellsOf(extended), coarse, null, freeboard, test::cellsOf(ground), fine);
        ASSERT_EQ(found.levels, test::tableOf(levels)) << "trial " << trial;
        ASSERT_EQ(found.depths, test::tableOf(depths)) << "trial " << trial;
    }
}

TEST(Tin, AStretchAnywhereIsThatOfTheWholeWalk)
{
    std::mt19937 random(14);
    for (int trial = 0; trial < 60; ++trial) {
        const auto number = [&](int low, int high) { return test::randomBetween(random, low, high); };
        const bool isFar = trial % 5 == 4;
        const double corner = isFar ? 1e17 : 0;
        test::plain::Reals cells = test::randomReals(random, number(2, 9), number(2, 9), 10, 12);
        for (float& cell : cells.values) {
            cell = number(1, 4) == 1 ? kNull : cell;
        }
        const Grid model = test::cellsOf(cells);
        const remap::CoarseLevels levels{
            {corner, 7, model.ncols()}, {corner, 7, model.nrows()}, model, model, kNull, 0};
        const std::int32_t rows = number(1, 60);
        const std::int32_t columns = number(1, 60);
        const remap::TinPlaces places =
            remap::placeTin(levels, {corner - 2.5, 1.3, columns}, {corner + 1.5, 1.3, rows});
        const auto start = remap::startState(kNull);
        auto wholeLevels = test::sameCells<float>(rows, columns, 77);
        auto wholeStates = test::sameCells(rows, columns, start);
        remap::TinWalk walk;
        for (std::int32_t row = 1; row <= rows; ++row) {
            remap::interpolateTinRow(levels, places, walk, row, 0, wholeLevels.row(row), wholeStates.row(row));
        }
        remap::TinWalk jumping;
        for (int stretch = 0; stretch < 50; ++stretch) {
            const std::int32_t row = number(1, rows);
            const auto from = static_cast<std::size_t>(number(0, columns - 1));
            const auto count = static_cast<std::size_t>(number(1, columns - static_cast<std::int32_t>(from)));
            std::vector<float> found(count, 55);
            std::vector<remap::CellState> states(count, start);
            remap::interpolateTinRow(levels, places, jumping, row, from, found, states);
            const auto whole = wholeLevels.row(row).subspan(from, count);
            ASSERT_TRUE(std::ranges::equal(std::as_bytes(std::span(found)), std::as_bytes(whole))) << "trial " << trial;
            ASSERT_TRUE(std::ranges::equal(states, wholeStates.row(row).subspan(from, count))) << "trial " << trial;
        }
    }
}

TEST(IdwOneCell, ANotANumberThatIsComputedHasTheBitsOfTheQuietOne)
{
    const remap::CellFlags wet = test::flagsOf({{1, 0, 1}});
    const Grid levels = test::gridOf({{test::kInfinity, 0, -test::kInfinity}});
    EXPECT_TRUE(test::allQuietNaN(std::vector{remap::idwOneCell(1, 2, wet, levels, 2.0F)}));
}

} // namespace
} // namespace gridforge
