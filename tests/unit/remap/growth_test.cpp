#include "remap/growth.h"

#include "unit/remap/remap_grids.h"

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace gridforge {
namespace {

constexpr float kGroundNull = -9999.0F;

using Map = std::vector<std::string>;

// A map, north row first: 'w' wet, '.' low ground, '#' ground above the level, 'n' null ground, '-' tested dry.
struct Growth {
    explicit Growth(const Map& map)
    {
        const auto nrows = static_cast<std::int32_t>(map.size());
        const auto ncols = static_cast<std::int32_t>(map.front().size());
        states = test::sameCells(nrows, ncols, remap::CellState::untouched);
        levels = test::sameCells<float>(nrows, ncols, 5);
        ground = test::sameCells<float>(nrows, ncols, 5);
        for (std::int32_t row = 1; row <= nrows; ++row) {
            for (std::int32_t column = 1; column <= ncols; ++column) {
                set(row, column, map[static_cast<std::size_t>(nrows - row)][static_cast<std::size_t>(column - 1)]);
            }
        }
    }

    void set(std::int32_t row, std::int32_t column, char cell)
    {
        switch (cell) {
        case 'w': states(row, column) = remap::CellState::wet; break;
        case '-': states(row, column) = remap::CellState::dry; break;
        case '#': ground(row, column) = 6; break;
        case 'n': ground(row, column) = kGroundNull; break;
        default: break;
        }
    }

    std::int64_t sweep() { return remap::growWetArea(front, states, levels, ground, kGroundNull); }

    Map map() const
    {
        Map lines;
        for (const auto& line : test::tableOf(states)) {
            lines.emplace_back();
            for (const remap::CellState state : line) {
                lines.back() += "-.w"[static_cast<int>(state) + 1];
            }
        }
        return lines;
    }

    remap::CellStates states;
    Grid levels;
    Grid ground;
    remap::GrowthFront front;
};

TEST(GrowWetArea, RunsFarNorthAndEastInOneSweepAndOneCellSouthAndWest)
{
    Growth growth({".....", //
                   ".....", "..w..", ".....", "....."});
    EXPECT_EQ(growth.sweep(), 4 + 4 + 3 + 3);
    EXPECT_EQ(growth.map(), (Map{".wwww", //
                                 ".wwww", ".wwww", "..www", "....."}));
}

TEST(GrowWetArea, WestwardsTakesASweepForEachCell)
{
    Growth growth({"...w"});
    EXPECT_EQ(growth.sweep(), 1);
    EXPECT_EQ(growth.sweep(), 1);
    EXPECT_EQ(growth.map(), (Map{".www"}));
    EXPECT_EQ(growth.sweep(), 1);
    EXPECT_EQ(growth.sweep(), 0);
}

TEST(GrowWetArea, ACellTestedDryIsNeverTestedAgain)
{
    Growth growth({"w#.", //
                   "..."});
    EXPECT_EQ(growth.sweep(), 4);
    EXPECT_EQ(growth.map(), (Map{"w-w", "www"}));
    growth.levels(2, 2) = 9; // too late
    EXPECT_EQ(growth.sweep(), 0);
    EXPECT_EQ(growth.map(), (Map{"w-w", "www"}));
}

TEST(GrowWetArea, NullGroundIsNeverWet)
{
    Growth growth({"wn."});
    EXPECT_EQ(growth.sweep(), 0);
    EXPECT_EQ(growth.map(), (Map{"w-."}));
    Growth near({"w."});
    near.ground(1, 2) = kGroundNull + 0.1F; // must stand above that
    EXPECT_EQ(near.sweep(), 0);
}

TEST(GrowWetArea, TheEdgeIsNotItsOwnNeighbour)
{
    Growth growth({"...", "..."});
    EXPECT_EQ(growth.sweep(), 0);
    EXPECT_EQ(growth.map(), (Map{"...", "..."}));
}

TEST(GrowWetArea, CellsThatStartDryStopIt)
{
    Growth growth({"w-."});
    EXPECT_EQ(growth.sweep(), 0);
    EXPECT_EQ(growth.map(), (Map{"w-."}));
}

remap::CellStates statesOf(const test::plain::Integers& states)
{
    auto cells = test::sameCells(states.nrows, states.ncols, remap::CellState::untouched);
    for (int r = 1; r <= states.nrows; ++r) {
        for (int c = 1; c <= states.ncols; ++c) {
            if (states(r, c) == 1 || states(r, c) == -1) {
                cells(r, c) = remap::CellState{static_cast<std::int8_t>(states(r, c))};
            }
        }
    }
    return cells;
}

TEST(GrowWetArea, IsThatOfAPlainSweepInEachIteration)
{
    std::mt19937 random(15);
    for (int trial = 0; trial < 300; ++trial) {
        const int nrows = test::randomBetween(random, 1, 30);
        const int ncols = test::randomBetween(random, 1, 30);
        const test::plain::Reals levels = test::randomReals(random, nrows, ncols, 4, 6);
        test::plain::Reals ground = test::randomReals(random, nrows, ncols, 2, trial % 2 == 0 ? 5.0F : 6.0F);
        test::plain::Integers states(nrows, ncols, -9999);
        for (std::size_t i = 0; i < states.values.size(); ++i) {
            states.values[i] = test::randomBetween(random, 1, 40) == 1 ? 1 : -9999;
            ground.values[i] = test::randomBetween(random, 1, 20) == 1 ? kGroundNull : ground.values[i];
        }
        remap::CellStates fast = statesOf(states);
        const Grid levelCells = test::cellsOf(levels);
        const Grid groundCells = test::cellsOf(ground);
        remap::GrowthFront front;
        for (std::int64_t extra = 1, k = 1; extra > 0; ++k) {
            extra = test::plain::sweep(states, levels, ground, kGroundNull);
            ASSERT_EQ(remap::growWetArea(front, fast, levelCells, groundCells, kGroundNull), extra)
                << "trial " << trial;
            ASSERT_EQ(test::tableOf(fast), test::tableOf(statesOf(states))) << "trial " << trial << ", iteration " << k;
        }
    }
}

} // namespace
} // namespace gridforge
