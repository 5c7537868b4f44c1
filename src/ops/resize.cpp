#include "ops/resize.h"

#include "core/computed.h"
#include "core/numbers.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace gridforge {

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
struct Average {
    double sum = 0;
    std::int64_t count = 0;

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

// One input row into the tiles of an output row. All tiles but the last are `factor` cells wide.
template <typename Tile>
void takeRow(std::span<const float> row, float null, const Tiling& tiling, std::span<Tile> tiles)
{
    const auto factor = static_cast<std::size_t>(tiling.factor);
    const std::size_t last = tiles.size() - 1;
    const std::size_t full = std::min(last, row.size() / factor);
    std::size_t t = 0;
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

template <typename Tile>
void fillTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to, Grid& output)
{
    assert(output.nrows() == tiling.rows && output.ncols() == tiling.columns);
    std::vector<Tile> tiles(static_cast<std::size_t>(tiling.columns), Tile(null));
    for (std::int32_t row = from; row <= to; ++row) {
        std::ranges::fill(tiles, Tile(null));
        const std::int64_t first = static_cast<std::int64_t>(row - 1) * tiling.factor + 1;
        const std::int64_t height = row == tiling.rows ? tiling.lastRows : tiling.factor;
        const std::int64_t last = std::min<std::int64_t>(first + height - 1, cells.nrows());
        for (std::int64_t r = first; r <= last; ++r) {
            takeRow<Tile>(cells.row(static_cast<std::int32_t>(r)), null, tiling, tiles);
        }
        std::ranges::transform(tiles, output.row(row).begin(), [null](const Tile& tile) { return tile.result(null); });
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
    return {factor, tilesIn(nrows, factor), tilesIn(ncols, factor), restOf(nrows, factor), restOf(ncols, factor)};
}

void averageTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to, Grid& output)
{
    fillTiles<Average>(cells, null, tiling, from, to, output);
}

void minimumTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to, Grid& output)
{
    fillTiles<Minimum>(cells, null, tiling, from, to, output);
}

void maximumTiles(const Grid& cells, float null, const Tiling& tiling, std::int32_t from, std::int32_t to, Grid& output)
{
    fillTiles<Maximum>(cells, null, tiling, from, to, output);
}

namespace {

void checkRequest(const RunSettings& settings, const InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - More than one grid file specified with the resize option.");
    }
    if (settings.resizeFactor < 1) {
        fail("ERROR - Resize factor must be 1 or more.");
    }
}

void saySizes(const GridHeader& header, std::int32_t factor, double newSize)
{
    constexpr int kWidth = 10;
    constexpr int kDecimals = 4;
    say("Current grid size = ", realField(header.cellsize8, kWidth, kDecimals));
    say("Resize factor     = ", integerField(factor, kWidth));
    say("New cell size (c) = ", realField(newSize, kWidth, kDecimals));
}

// The header of the coarser grid: the corner stays in place.
GridHeader resizedHeader(const GridHeader& header, const Tiling& tiling, double newSize)
{
    GridHeader resized = header;
    resized.nrows = tiling.rows;
    resized.ncols = tiling.columns;
    resized.cellsize = static_cast<float>(newSize);
    resized.cellsize8 = static_cast<double>(resized.cellsize);
    return resized;
}

} // namespace

void runResize(const RunSettings& settings, const InputFileList& inputs)
{
    say("Resizing grid.");
    checkRequest(settings, inputs);
    const std::int32_t factor = settings.resizeFactor;

    say("Loading grid data...");
    GridHeader header = readGridHeader(inputs[1]);
    Grid input;
    allocateGrid(input, header, "storing input grid...");
    readGridCells(inputs[1], header, input);

    const double newSize = static_cast<double>(static_cast<float>(factor)) * header.cellsize8;
    const Tiling tiling = tilingOf(header.nrows, header.ncols, factor);
    const GridHeader resized = resizedHeader(header, tiling, newSize);
    saySizes(header, factor, newSize);
    Grid output;
    allocateGrid(output, resized, "storing output grid...");

    const auto tilesOf = settings.resizeMethod == ResizeMethod::average   ? averageTiles
                         : settings.resizeMethod == ResizeMethod::minimum ? minimumTiles
                                                                          : maximumTiles;
    sayOpen("Processing Output Row:");
    for (std::int32_t done = 0; done < tiling.rows;) {
        const std::int32_t from = done + 1;
        done += std::min(kProgressRows, tiling.rows - done);
        tilesOf(input, header.null, tiling, from, done, output);
        if (done % kProgressRows == 0) {
            progress(done);
        }
    }
    endLine();

    const std::string base = outputNameRule(settings, inputs[1], join("_resize", factor));
    const std::int32_t format = outputFormatRule(settings, header.format);
    say("Writing resized grid to: ", base);
    writeGrid(format, base, resized, output, header.projectionText, settings.decimals);
}

} // namespace gridforge
