// The fraction of a list of grids in which each cell is active, gathered grid by grid.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::ops {

// All with the first grid's null, which counts for every grid, on purpose: earlier results have it so. `counts` starts
// at null.

// One more for each cell that is not null; a count that is null becomes 1.
void countActiveCells(std::span<const float> cells, float null, std::span<float> counts);
// Counts to fractions of the number of grids; null stays.
void scaleCounts(std::int32_t grids, float null, std::span<float> counts);

} // namespace gridforge::ops
