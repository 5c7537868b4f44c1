#include "ops/resize_cells.h"

#include "core/computed.h"
#include "core/numbers.h"
#include "ops/resize_cells_avx2.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace gridforge::ops {

namespace {

// The cell, or `otherwise` where it is null, by its bits: written as a choice it becomes a branch that the processor
// cannot foresee.
float activeOr(float otherwise, float cell, float null)
{
    const std::uint32_t mask = cell != null ? ~std::uint32_t{0} : 0;
    return std::bit_cast<float>((std::bit_cast<std::uint32_t>(cell) & mask) |
                                (std::bit_cast<std::uint32_t>(otherwise) & ~mask));
}

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// What one tile has gathered so far. Null cells come through `take` too.
struct Average : TileSum {
    explicit Average(float /*null*/) {}
    void take(float cell, float null)
    {
        // The sum is never a negative zero, so a zero added for a null cell leaves it as it is.
        sum += static_cast<double>(activeOr(0.0F, cell, null));
        count += cell != null ? 1 : 0;
    }
    float result(float null) const
    {
        return count > 0 ? stored(static_cast<float>(sum / static_cast<double>(static_cast<float>(count)))) : null;
    }
};

struct Minimum {
    float value = kMinimumStart;

    explicit Minimum(float /*null*/) {}
    void take(float cell, float null)
    {
        const float active = activeOr(kInfinity, cell, null);
        value = active < value ? active : value;
    }
    float result(float null) const { return value == kMinimumStart ? null : value; }
};

struct Maximum {
    float value;

    explicit Maximum(float null) : value(null) {}
    void take(float cell, float null)
    {
        const float active = activeOr(-kInfinity, cell, null);
        value = active > value ? active : value;
    }
    float result(float /*null*/) const { return value; }
};

// Tiles walked side by side: each one's sum is a chain of additions in a fixed order, and several chains fill the time
// that one waits for.
constexpr std::size_t kAbreast = 4;

// Gives the first tiles their cells of the row, and returns how many tiles these are.
template <typename Tile>
std::size_t takeLanes(std::span<const float> row, float null, std::size_t factor, std::span<Tile> tiles)
{
    if constexpr (std::is_same_v<Tile, Average>) {
        static_assert(sizeof(Average) == sizeof(TileSum));
        return addToTiles(row, null, factor, tiles.data(), tiles.size());
    }
    return 0;
}

// One input row into the tiles of an output row. All tiles but the last are `factor` cells wide.
template <typename Tile>
void takeRow(std::span<const float> row, float null, const Tiling& tiling, std::span<Tile> tiles)
{
    const auto factor = static_cast<std::size_t>(tiling.factor);
    const std::size_t last = tiles.size() - 1;
    const std::size_t full = std::min(last, row.size() / factor);
    std::size_t t = takeLanes(row, null, factor, tiles.first(full));
    for (; t + kAbreast <= full; t += kAbreast) {
        const float* const cells = row.data() + t * factor;
        std::array<Tile, kAbreast> abreast{tiles[t], tiles[t + 1], tiles[t + 2], tiles[t + 3]};
        for (std::size_t j = 0; j < factor; ++j) {
            for (std::size_t k = 0; k < kAbreast; ++k) {
                abreast[k].take(cells[k * factor + j], null);
            }
        }
        std::copy(abreast.begin(), abreast.end(), tiles.begin() + static_cast<std::ptrdiff_t>(t));
    }
    for (; t < tiles.size(); ++t) {
        const std::size_t start = std::min(row.size(), t * factor);
        const std::size_t width = t == last ? static_cast<std::size_t>(tiling.lastColumns) : factor;
        Tile tile = tiles[t];
        for (const float cell : row.subspan(start, std::min(width, row.size() - start))) {
            tile.take(cell, null);
        }
        tiles[t] = tile;
    }
}

// The input rows under an output row; none where its tiles stand past the grid.
CellRows rowsUnder(const Tiling& tiling, std::int32_t row)
{
    const std::int64_t first = std::int64_t{row - 1} * tiling.factor + 1;
    const std::int64_t height = row == tiling.rows ? tiling.lastRows : tiling.factor;
    const std::int64_t last = std::min<std::int64_t>(first + height - 1, tiling.cellRows);
    return first > last ? CellRows{} : CellRows{static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)};
}

// The rows from `first` on that are got at once, of those up to `last`.
CellRows rowsAtOnce(const RowSource& cells, std::int32_t first, std::int32_t last)
{
    return {first, last - first < cells.atOnce ? last : first + cells.atOnce - 1};
}

template <typename Tile>
bool fillTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
               std::span<float> output)
{
    const auto columns = static_cast<std::size_t>(tiling.columns);
    const auto cellColumns = static_cast<std::size_t>(tiling.cellColumns);
    assert(output.size() == tileRows.count() * columns);
    std::vector<Tile> tiles(columns, Tile(null));
    const CellRows all = tiledRows(tiling, tileRows);
    CellRows rows{1, 0}; // of those got last
    std::span<const float> got;
    std::size_t outputEnd = output.size();
    for (std::int32_t tileRow = tileRows.first; tileRow <= tileRows.last; ++tileRow) {
        std::ranges::fill(tiles, Tile(null));
        const CellRows under = rowsUnder(tiling, tileRow);
        for (std::int32_t row = under.first; row <= under.last; ++row) {
            if (row > rows.last) {
                rows = rowsAtOnce(cells, row, all.last);
                const auto some = cells.get(rows);
                if (!some) {
                    return false;
                }
                got = *some;
            }
            takeRow<Tile>(got.subspan(static_cast<std::size_t>(rows.last - row) * cellColumns, cellColumns), null,
                          tiling, tiles);
        }
        outputEnd -= columns;
        std::ranges::transform(tiles, output.subspan(outputEnd, columns).begin(),
                               [null](const Tile& tile) { return tile.result(null); });
    }
    return true;
}

std::int32_t tilesIn(std::int32_t cells, std::int32_t factor)
{
    return ceilToInt(std::ceil(static_cast<float>(cells) / static_cast<float>(factor)));
}

std::int32_t restOf(std::int32_t cells, std::int32_t factor)
{
    const std::int32_t rest = cells % factor;
    return rest == 0 ? factor : rest;
}

} // namespace

Tiling tilingOf(std::int32_t nrows, std::int32_t ncols, std::int32_t factor)
{
    assert(factor >= 1);
    return {factor, tilesIn(nrows, factor), tilesIn(ncols, factor), restOf(nrows, factor), restOf(ncols, factor), nrows,
            ncols};
}

CellRows tiledRows(const Tiling& tiling, const CellRows& tileRows)
{
    const CellRows south = rowsUnder(tiling, tileRows.first);
    const CellRows north = rowsUnder(tiling, tileRows.last);
    if (south.count() == 0) {
        return {};
    }
    return {south.first, north.count() == 0 ? tiling.cellRows : north.last};
}

bool averageTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                  std::span<float> output)
{
    return fillTiles<Average>(cells, null, tiling, tileRows, output);
}

bool minimumTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                  std::span<float> output)
{
    return fillTiles<Minimum>(cells, null, tiling, tileRows, output);
}

bool maximumTiles(const RowSource& cells, float null, const Tiling& tiling, const CellRows& tileRows,
                  std::span<float> output)
{
    return fillTiles<Maximum>(cells, null, tiling, tileRows, output);
}

} // namespace gridforge::ops
