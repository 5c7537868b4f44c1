// Whole runs of -remap on grids that hold every odd number, against its steps done one cell after the other.
#include "support/odd_grids.h"
#include "support/plain_remap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

using plain::Flags;
using plain::Integers;
using plain::Lattice;
using plain::Reals;

constexpr int kCoarseRows = 23;
constexpr int kCoarseColumns = 29;
constexpr int kFineRows = 61;
constexpr int kFineColumns = 83;
constexpr float kNullOfLevels = -9999;
constexpr float kNullOfGround = -1;
constexpr float kNullOfExtra = -3;
constexpr float kFineSize = 0.4F; // no sum of powers of two, as most cell sizes
const Lattice kCoarse{-2.25, 10.5, 1.25};
const Lattice kFine{-2.75, 12.25, static_cast<double>(kFineSize)}; // in part outside

// A grid as the run has it, and as the plain steps do: the south row first.
Reals oddReals(int rows, int columns, float null, std::uint32_t seed)
{
    const Values cells = oddCells(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), null, seed);
    Reals grid(rows, columns);
    std::size_t i = 0;
    for (int r = rows; r >= 1; --r) {
        for (int c = 1; c <= columns; ++c) {
            grid(r, c) = cells[i++];
        }
    }
    return grid;
}

Reals levelCells()
{
    return oddReals(kCoarseRows, kCoarseColumns, kNullOfLevels, 31);
}

Reals groundCells()
{
    return oddReals(kFineRows, kFineColumns, kNullOfGround, 32);
}

Reals extraCells()
{
    return oddReals(kCoarseRows, kCoarseColumns, kNullOfExtra, 33);
}

Values northFirst(const Reals& grid)
{
    Values cells;
    for (int r = grid.nrows; r >= 1; --r) {
        for (int c = 1; c <= grid.ncols; ++c) {
            cells.push_back(grid(r, c));
        }
    }
    return cells;
}

void give(ToolRun& run, const std::string& base, const Reals& grid, const Lattice& lattice, float null)
{
    run.give(base + ".flt", bytesOf(northFirst(grid)));
    run.give(base + ".hdr", hdr(grid.ncols, grid.nrows,
                                {.xll = lattice.xll, .yll = lattice.yll, .cellsize = lattice.size, .null = null}));
}

Flags wetFlagsOf(const Reals& cells)
{
    Flags wet(cells.nrows, cells.ncols);
    for (std::size_t i = 0; i < cells.values.size(); ++i) {
        wet.values[i] = cells.values[i] > kNullOfLevels + 0.01F ? 1 : 0;
    }
    return wet;
}

// The levels with the freeboard added to the wet ones: one of 0, which takes the sign from a negative zero.
Reals raisedLevels()
{
    constexpr float kFreeboard = 0;
    Reals levels = levelCells();
    const Flags wet = wetFlagsOf(levels);
    for (std::size_t i = 0; i < levels.values.size(); ++i) {
        levels.values[i] = wet.values[i] == 1 ? levels.values[i] + kFreeboard : levels.values[i];
    }
    return levels;
}

// Wet cells as they are, those of the extent by the nearest `points`, the others null.
Reals extended(const Reals& cells, const Flags& extent, int points)
{
    const Flags wet = wetFlagsOf(cells);
    Reals result(cells.nrows, cells.ncols, kNullOfLevels);
    for (int r = 1; r <= cells.nrows; ++r) {
        for (int c = 1; c <= cells.ncols; ++c) {
            if (wet(r, c) == 1) {
                result(r, c) = cells(r, c);
            } else if (extent(r, c) == 1) {
                result(r, c) = plain::idwPoint(points, r, c, wet, cells, 2).value();
            }
        }
    }
    return result;
}

// Dry cells of the extent by all of the eight neighbours that are wet.
Reals extendedByNeighbours(const Reals& cells, const Flags& extent)
{
    const Flags wet = wetFlagsOf(cells);
    Reals result = cells;
    for (int r = 1; r <= cells.nrows; ++r) {
        for (int c = 1; c <= cells.ncols; ++c) {
            if (wet(r, c) == 1) {
                continue;
            }
            float weights = 0;
            float weighted = 0;
            for (int i = std::max(1, r - 1); i <= std::min(cells.nrows, r + 1); ++i) {
                for (int j = std::max(1, c - 1); j <= std::min(cells.ncols, c + 1); ++j) {
                    if (wet(i, j) == 1) {
                        const auto apart = static_cast<double>(plain::apart(r, i, c, j));
                        const float weight = 1.0F / static_cast<float>(std::pow(apart, 2.0));
                        weights += weight;
                        weighted += weight * cells(i, j);
                    }
                }
            }
            result(r, c) = extent(r, c) == 1 ? weighted / weights : kNullOfLevels;
        }
    }
    return result;
}

struct Expected {
    Expected() : levels(kFineRows, kFineColumns, kNullOfLevels), depths(levels), extra(levels) {}

    Reals levels;
    Reals depths;
    Reals extra;
};

// The nearest of the four centres around each fine cell, where the depth is not below 0.
void takeExtra(const Flags& extent, Expected& expected)
{
    const Reals coarse = extended(extraCells(), extent, 1);
    const double d = kCoarse.size;
    for (int row = 1; row <= kFineRows; ++row) {
        for (int col = 1; col <= kFineColumns; ++col) {
            const double x = kFine.x(col);
            const double y = kFine.y(row);
            const int i = static_cast<int>(((x - kCoarse.xll) + 0.5 * d) / d);
            const int j = static_cast<int>(((y - kCoarse.yll) + 0.5 * d) / d);
            if (i < 1 || i > kCoarseColumns - 1 || j < 1 || j > kCoarseRows - 1 || !(expected.depths(row, col) >= 0)) {
                continue;
            }
            const int east = (x - kCoarse.x(i)) / d > 0.5 ? 1 : 0;
            const int north = (y - kCoarse.y(j)) / d > 0.5 ? 1 : 0;
            expected.extra(row, col) = coarse(j + north, i + east);
        }
    }
}

Expected expectedByTin()
{
    const Reals levels = raisedLevels();
    Flags extent(kCoarseRows, kCoarseColumns);
    plain::bufferExtent(wetFlagsOf(levels), static_cast<float>(kCoarse.size), static_cast<float>(1.5 * kCoarse.size),
                        extent);
    Expected expected;
    Integers states(kFineRows, kFineColumns);
    plain::tin(levels, extendedByNeighbours(levels, extent), kCoarse, kNullOfLevels, 0, groundCells(), kFine,
               expected.levels, states, expected.depths);
    takeExtra(extent, expected);
    return expected;
}

// Is the coarse cell that the place rounds to wet, and not farther than its size?
bool isSeed(double x, double y, const Reals& levels)
{
    const double d = kCoarse.size;
    const auto i = static_cast<int>(std::round(((x - kCoarse.xll) + 0.5 * d) / d));
    const auto j = static_cast<int>(std::round(((y - kCoarse.yll) + 0.5 * d) / d));
    return i >= 1 && i <= kCoarseColumns && j >= 1 && j <= kCoarseRows &&
           std::hypot(x - kCoarse.x(i), y - kCoarse.y(j)) <= d && levels(j, i) > kNullOfLevels + 0.1F;
}

constexpr float kBuffer = 2.5F;
constexpr int kPoints = 5;

Expected expectedByIdw(Reals& coarse)
{
    const Reals model = raisedLevels();
    const Reals ground = groundCells();
    Flags extent(kCoarseRows, kCoarseColumns);
    plain::bufferExtent(wetFlagsOf(model), static_cast<float>(kCoarse.size), kBuffer, extent);
    coarse = extended(model, extent, kPoints);
    Expected expected;
    Integers states(kFineRows, kFineColumns);
    for (int row = 1; row <= kFineRows; ++row) {
        for (int col = 1; col <= kFineColumns; ++col) {
            const double x = kFine.x(col);
            const double y = kFine.y(row);
            const float level = plain::sample(x, y, kCoarse, coarse, kNullOfLevels);
            expected.levels(row, col) = level < ground(row, col) ? kNullOfLevels : level;
            states(row, col) = isSeed(x, y, model) ? 1 : 0;
        }
    }
    const int sweeps = static_cast<int>(static_cast<double>(kBuffer) / kFine.size) + 1;
    for (int k = 1; k <= sweeps; ++k) {
        if (plain::sweep(states, expected.levels, ground, kNullOfGround) == 0) {
            break;
        }
    }
    for (std::size_t i = 0; i < states.values.size(); ++i) {
        float& level = expected.levels.values[i];
        level = states.values[i] == 1 ? level : kNullOfLevels;
        if (states.values[i] == 1 && level >= ground.values[i]) {
            expected.depths.values[i] = level - ground.values[i];
        }
    }
    takeExtra(extent, expected);
    return expected;
}

void expectOutputs(const ToolRun& run, const Expected& expected)
{
    EXPECT_TRUE(run.reachedEnd()) << run.console();
    {
        SCOPED_TRACE("levels");
        expectSameBits(valuesOf(run.read("wl_remap_h.flt")), northFirst(expected.levels));
    }
    {
        SCOPED_TRACE("depths");
        expectSameBits(valuesOf(run.read("wl_remap_d.flt")), northFirst(expected.depths));
    }
    SCOPED_TRACE("extra grid");
    expectSameBits(valuesOf(run.read("hazard_remap.flt")), northFirst(expected.extra));
}

void giveAll(ToolRun& run)
{
    give(run, "wl", levelCells(), kCoarse, kNullOfLevels);
    give(run, "dem", groundCells(), kFine, kNullOfGround);
    give(run, "hazard", extraCells(), kCoarse, kNullOfExtra);
}

TEST(RemapOddNumbers, GoThroughTheTinAsThroughItsPlainSteps)
{
    ToolRun run("-b -remap -wl wl.flt -dem dem.flt hazard.flt");
    giveAll(run);
    run.start();
    expectOutputs(run, expectedByTin());
}

TEST(RemapOddNumbers, GoThroughIdwAsThroughItsPlainSteps)
{
    ToolRun run("-b -remap -idw_npt5 -bd2.5 -wl wl.flt -dem dem.flt hazard.flt");
    giveAll(run);
    run.start();
    Reals coarse(kCoarseRows, kCoarseColumns);
    const Expected expected = expectedByIdw(coarse);
    expectOutputs(run, expected);
    SCOPED_TRACE("coarse levels");
    expectSameBits(valuesOf(run.read("wl_h_IDW.flt")), northFirst(coarse));
}

} // namespace
} // namespace gridforge::test
