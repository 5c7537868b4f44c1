// Statistics of each cell over 2 to 10 grids, with the number from 1 of the grid that each value came from.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace gridforge::ops {

inline constexpr std::int32_t kMaxStatGrids = 10;

// The same stretch of cells in each grid, in list order; all of one length, which is also that of the results. `null`
// is the first grid's. A cell counts as dry where it is not above null + 0.01.
using CellStack = std::span<const std::span<const float>>;

// A dry cell in any grid blanks the minimum and the mean, unlike the maximum and the ranks, which only cells that are
// dry in all grids blank: on purpose, since earlier results have it so. Blank cells are null in both results.

void findMinimum(CellStack grids, float null, std::span<float> values, std::span<float> sources);
void findMaximum(CellStack grids, float null, std::span<float> values, std::span<float> sources);
// The mean, summed in single precision in list order. Its source is the lowest value that reaches it, null where none
// does.
void findMean(CellStack grids, float null, std::span<float> values, std::span<float> sources);
// The fraction of grids in which a cell is not dry; where all are dry `values` stays as it was.
void findFraction(CellStack grids, float null, std::span<float> values);

// The values of one rank, from 1 for the lowest to the number of grids, and their sources.
struct RankResult {
    std::int32_t rank = 1;
    std::span<float> values;
    std::span<float> sources;
};
// Nulls take part in the order by their number, and equal values keep list order.
void findRanks(CellStack grids, float null, std::span<const RankResult> results);

// The values of one cell in ascending order and the number of the grid that each came from.
struct SortedCell {
    std::array<float, kMaxStatGrids> values{};
    std::array<std::int32_t, kMaxStatGrids> sources{};
};
// Picks the smallest value that is left, the first of several, n times. A picked place holds 9.0e29 from then on, so
// values of that size and cells that are not numbers give way to it; the results depend on that.
SortedCell sortCell(std::span<const float> values);

} // namespace gridforge::ops
