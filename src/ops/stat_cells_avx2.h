// One rank of each cell over several grids, eight cells at a time. For processors with AVX2 only.
#pragma once

#include "ops/stat_cells.h"

#include <cstddef>
#include <optional>

namespace gridforge::ops {

// findRanks of one rank for the first cells of the stretch, whose results begin at `from`. Returns how many these are, or nothing
// where a cell has values that the order does not hold for: ones that are no number, or not below `picked`. Cells up to `limit`
// count as dry.
std::optional<std::size_t> pickRankLanes(CellStack grids, float null, float limit, float picked,
                                         const RankResult& result, std::size_t from);

} // namespace gridforge::ops
