// The average, minimum or maximum of squares of cells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace gridforge::ops {

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

// The rows of the grid that lie under these rows of tiles, of which there is one at least.
CellRows tiledRows(const Tiling& tiling, const CellRows& tileRows);

// The cells of some rows, the north row first; none where they cannot be had.
using GetRows = std::function<std::optional<std::span<const float>>(const CellRows& rows)>;

// Where tiles get their cells: rows from the south on, at most so many at once.
struct RowSource {
    GetRows get;
    std::int32_t atOnce = 1;
};

// These rows of tiles in the order of the files, the north row first. Cells equal to `null` do not count. The average
// sums in double, row by row from the south. The maximum starts at null, so a null above the data stands. False where
// cells cannot be had.
[[nodiscard]] bool averageTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                                std::span<float> output);
[[nodiscard]] bool minimumTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                                std::span<float> output);
[[nodiscard]] bool maximumTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                                std::span<float> output);

} // namespace gridforge::ops
