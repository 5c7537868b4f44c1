#include "ops/resize_cells.h"

#include "core/computed.h"
#include "core/rounding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>
#include <utility>
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

// What a tile has gathered by each method. Null cells come through `take` too.
struct Average {
    static TileSum start(float /*null*/) { return {}; }
    static void take(float cell, float null, TileSum& tile)
    {
        // The sum is never a negative zero, so a zero added for a null cell leaves it as it is.
        tile.sum += static_cast<double>(activeOr(0.0F, cell, null));
        tile.count += cell != null ? 1 : 0;
    }
    static float result(const TileSum& tile, float null)
    {
        return tile.count > 0
                   ? stored(static_cast<float>(tile.sum / static_cast<double>(static_cast<float>(tile.count))))
                   : null;
    }
    static std::vector<TileSum>& tilesOf(TileRow& row) { return row.sums; }
};

struct Minimum {
    static float start(float /*null*/) { return kMinimumStart; }
    static void take(float cell, float null, float& tile)
    {
        const float active = activeOr(kInfinity, cell, null);
        tile = active < tile ? active : tile;
    }
    static float result(float tile, float null) { return tile == kMinimumStart ? null : tile; }
    static std::vector<float>& tilesOf(TileRow& row) { return row.extremes; }
};

struct Maximum {
    static float start(float null) { return null; }
    static void take(float cell, float null, float& tile)
    {
        const float active = activeOr(-kInfinity, cell, null);
        tile = active > tile ? active : tile;
    }
    static float result(float tile, float /*null*/) { return tile; }
    static std::vector<float>& tilesOf(TileRow& row) { return row.extremes; }
};

// Calls work(Average()) or what else the method is.
template <typename Work>
void byMethod(ResizeMethod method, const Work& work)
{
    switch (method) {
    case ResizeMethod::average: work(Average()); break;
    case ResizeMethod::minimum: work(Minimum()); break;
    case ResizeMethod::maximum: work(Maximum()); break;
    }
}

// Tiles walked side by side: each one's sum is a chain of additions in a fixed order, and several chains fill the time
// that one waits for.
constexpr std::size_t kAbreast = 4;

// Gives the first tiles their cells of the row, and returns how many tiles these are: those of sums only.
std::size_t takeLanes(std::span<const float> row, float null, std::size_t factor, std::span<TileSum> tiles)
{
    return addToTiles(row, null, factor, tiles.data(), tiles.size());
}

std::size_t takeLanes(std::span<const float> /*row*/, float /*null*/, std::size_t /*factor*/,
                      std::span<float> /*tiles*/)
{
    return 0;
}

// One input row into the tiles of an output row. All tiles except the last are `factor` cells wide.
template <typename Method, typename Tile>
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
                Method::take(cells[k * factor + j], null, abreast[k]);
            }
        }
        std::copy(abreast.begin(), abreast.end(), tiles.begin() + static_cast<std::ptrdiff_t>(t));
    }
    for (; t < tiles.size(); ++t) {
        const std::size_t start = std::min(row.size(), t * factor);
        const std::size_t width = t == last ? static_cast<std::size_t>(tiling.lastColumns) : factor;
        Tile tile = tiles[t];
        for (const float cell : row.subspan(start, std::min(width, row.size() - start))) {
            Method::take(cell, null, tile);
        }
        tiles[t] = tile;
    }
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

CellRows rowsUnder(const Tiling& tiling, std::int32_t tileRow)
{
    const std::int64_t first = std::int64_t{tileRow - 1} * tiling.factor + 1;
    const std::int64_t height = tileRow == tiling.rows ? tiling.lastRows : tiling.factor;
    const std::int64_t last = std::min<std::int64_t>(first + height - 1, tiling.cellRows);
    return first > last ? CellRows{} : CellRows{static_cast<std::int32_t>(first), static_cast<std::int32_t>(last)};
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

TileRow emptyTiles(ResizeMethod method, const Tiling& tiling, float null)
{
    TileRow tiles{.method = method, .null = null, .tiling = tiling, .sums = {}, .extremes = {}};
    byMethod(method, [&]<typename Method>(Method) {
        Method::tilesOf(tiles).assign(static_cast<std::size_t>(tiling.columns), Method::start(null));
    });
    return tiles;
}

void takeRows(std::span<const float> rows, TileRow& tiles)
{
    const auto columns = static_cast<std::size_t>(tiles.tiling.cellColumns);
    assert(rows.size() % columns == 0);
    byMethod(tiles.method, [&]<typename Method>(Method) {
        const std::span row(Method::tilesOf(tiles));
        for (std::size_t end = rows.size(); end > 0; end -= columns) {
            takeRow<Method>(rows.subspan(end - columns, columns), tiles.null, tiles.tiling, row);
        }
    });
}

void finishTiles(TileRow& tiles, std::span<float> results)
{
    byMethod(tiles.method, [&]<typename Method>(Method) {
        auto& row = Method::tilesOf(tiles);
        assert(results.size() == row.size());
        for (std::size_t t = 0; t < row.size(); ++t) {
            results[t] = Method::result(std::exchange(row[t], Method::start(tiles.null)), tiles.null);
        }
    });
}

} // namespace gridforge::ops
