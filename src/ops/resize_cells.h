// The average, minimum or maximum of squares of cells.
#pragma once

#include "ops/resize_cells_avx2.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::ops {

enum class ResizeMethod { average, maximum, minimum };

// How tiles of factor by factor cells cover a grid, from its south-west corner. The last tile of a row or column holds
// what rests.
struct Tiling {
    std::int32_t factor = 1;
    std::int32_t rows = 0; // of tiles
    std::int32_t columns = 0;
    std::int32_t lastRows = 0; // of cells in the northern tiles
    std::int32_t lastColumns = 0;
    std::int32_t cellRows = 0; // of the grid that is covered
    std::int32_t cellColumns = 0;
};

// `factor` from 1. The counts of tiles are rounded in single precision, so beyond 2^24 rows or columns the last tiles
// may stand past the grid or short of its edge.
Tiling tilingOf(std::int32_t nrows, std::int32_t ncols, std::int32_t factor);

// A tile that holds no value below this is null for the minimum, on purpose: also one of values above it.
inline constexpr float kMinimumStart = 100000.0F;

// Rows of a grid, numbered from 1 in the south; none where `first` is above `last`.
struct CellRows {
    std::int32_t first = 1;
    std::int32_t last = 0;

    std::size_t count() const { return first > last ? 0 : static_cast<std::size_t>(last - first) + 1; }
};

// The rows of the grid under this row of tiles; none where it stands past the grid.
CellRows rowsUnder(const Tiling& tiling, std::int32_t tileRow);
// The same for these rows of tiles, at least one.
CellRows tiledRows(const Tiling& tiling, const CellRows& tileRows);

// A row of tiles, and what it has gathered so far: sums for the average, otherwise the extremes.
struct TileRow {
    ResizeMethod method = ResizeMethod::average;
    float null = 0;
    Tiling tiling;
    std::vector<TileSum> sums;
    std::vector<float> extremes;
};

// Tiles that have gathered nothing yet.
TileRow emptyTiles(ResizeMethod method, const Tiling& tiling, float null);

// Adds whole rows of cells under the tiles, the north row first. Where several calls add the rows of a tile, they go from
// the south to the north. Cells equal to null do not count. The average sums in double, row by row from the south. The
// maximum starts at null, so a null above the data stands.
void takeRows(std::span<const float> rows, TileRow& tiles);

// Gives the result of each tile, and leaves the tiles empty again.
void finishTiles(TileRow& tiles, std::span<float> results);

} // namespace gridforge::ops
