// -resize: a coarser grid, each of whose cells is the average, minimum or maximum of a square of input cells.
#pragma once

#include "grid/grid.h"
#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstdint>

namespace gridforge {

void runResize(const RunSettings& settings, const InputFileList& inputs);

// How tiles of factor by factor cells cover a grid, from its south-west corner. The last tile of a row or column holds
// what rests.
struct Tiling {
    std::int32_t factor = 1;
    std::int32_t rows = 0; // of tiles
    std::int32_t columns = 0;
    std::int32_t lastRows = 0; // of cells in the northern tiles
    std::int32_t lastColumns = 0;
};

// `factor` from 1. The counts of tiles are rounded in single precision, so beyond 2^24 rows or columns the last tiles
// may stand past the grid or short of its edge.
Tiling tilingOf(std::int32_t nrows, std::int32_t ncols, std::int32_t factor);

// A tile that holds no value below this is null for the minimum; deliberate, also for values above it.
inline constexpr float kMinimumStart = 100000.0F;

// Rows `from` to `to` of the output, a grid of the tiling's size. Cells equal to `null` do not count. The average sums
// in double, row by row from the south. The maximum starts at null, so a null above the data stands.
void averageTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to,
                  Grid& output);
void minimumTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to,
                  Grid& output);
void maximumTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to,
                  Grid& output);

} // namespace gridforge
