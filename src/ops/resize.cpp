#include "ops/resize.h"

#include "core/number_text.h"
#include "core/worker_rooms.h"
#include "grid/allocate.h"
#include "grid/writer.h"
#include "host/ends.h"
#include "host/threads.h"
#include "run/cells_ahead.h"
#include "run/fill_ahead.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace gridforge::ops {

namespace {

void checkRequest(const ResizeOptions& options, const run::InputFileList& inputs)
{
    if (inputs.count() > 1) {
        fail("ERROR - More than one grid file specified with the resize option.");
    }
    if (options.factor < 1) {
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

// --- Ahead -----------------------------------------------------------------------------------------------------------

// As many rows of the grid as stay in the cache.
std::int32_t cachedRows(const Tiling& tiling)
{
    return static_cast<std::int32_t>(std::clamp<std::size_t>(std::min(run::kCachedCells, run::cellsOfPart()) /
                                                                 static_cast<std::size_t>(tiling.cellColumns),
                                                             1, static_cast<std::size_t>(tiling.cellRows)));
}

// The rows of an input from the south on, fetched as many at a time as `room` holds, up to the row `last`.
class RowsOfInput {
public:
    RowsOfInput(const grid::CellStore& input, const Tiling& tiling, std::int32_t last, std::span<float> room)
        : input_(input), tiling_(tiling), last_(last), room_(room)
    {
    }

    // The first of these rows, and as many of the others as are fetched with it; none where cells cannot be had.
    std::optional<std::span<const float>> someOf(const CellRows& rows);

private:
    const grid::CellStore& input_;
    const Tiling& tiling_;
    std::int32_t last_;
    std::span<float> room_;
    CellRows fetched_;
    std::span<const float> cells_; // of these
};

std::optional<std::span<const float>> RowsOfInput::someOf(const CellRows& rows)
{
    const auto columns = static_cast<std::size_t>(tiling_.cellColumns);
    if (rows.first > fetched_.last) {
        const std::int32_t atOnce = cachedRows(tiling_);
        fetched_ = {rows.first, last_ - rows.first < atOnce ? last_ : rows.first + atOnce - 1};
        const std::size_t start = static_cast<std::size_t>(tiling_.cellRows - fetched_.last) * columns;
        const auto got = input_.get(start, fetched_.count() * columns, room_);
        if (!got) {
            return std::nullopt;
        }
        cells_ = *got;
    }
    const CellRows some{rows.first, std::min(rows.last, fetched_.last)};
    return cells_.subspan(static_cast<std::size_t>(fetched_.last - some.last) * columns, some.count() * columns);
}

// Fills these rows of tiles, the north row first. False where cells cannot be had.
bool fillTiles(RowsOfInput& input, const CellRows& tileRows, TileRow& tiles, std::span<float> output)
{
    const auto columns = static_cast<std::size_t>(tiles.tiling.columns);
    std::size_t end = output.size();
    for (std::int32_t tileRow = tileRows.first; tileRow <= tileRows.last; ++tileRow, end -= columns) {
        CellRows left = rowsUnder(tiles.tiling, tileRow);
        while (left.count() > 0) {
            const auto some = input.someOf(left);
            if (!some) {
                return false;
            }
            takeRows(*some, tiles);
            left.first += static_cast<std::int32_t>(some->size() / static_cast<std::size_t>(tiles.tiling.cellColumns));
        }
        finishTiles(tiles, output.subspan(end - columns, columns));
    }
    return true;
}

// Pieces are some rows of tiles each.
run::Way fillTilesAhead(const grid::CellStore& input, float null, const Tiling& tiling, ResizeMethod method,
                        grid::CellStore& output)
{
    const auto columns = static_cast<std::size_t>(tiling.columns);
    const auto cellColumns = static_cast<std::size_t>(tiling.cellColumns);
    const std::size_t cellsUnderRow = cellColumns * static_cast<std::size_t>(tiling.factor);
    const std::size_t rowsOfPiece =
        std::clamp<std::size_t>(run::cellsOfPart() / cellsUnderRow, 1, static_cast<std::size_t>(tiling.rows));
    WorkerRooms<float> rooms;
    if (!rooms.take(threadCount(), input.isInFile() ? static_cast<std::size_t>(cachedRows(tiling)) * cellColumns : 0)) {
        return run::Way::noRoom;
    }
    const auto fill = [&](std::size_t first, std::span<float> tiles, std::size_t worker) {
        const std::int32_t last = tiling.rows - static_cast<std::int32_t>(first / columns);
        const CellRows rows{last - static_cast<std::int32_t>(tiles.size() / columns) + 1, last};
        const CellRows under = tiledRows(tiling, rows);
        input.willRead(static_cast<std::size_t>(tiling.cellRows - under.last) * cellColumns,
                       std::min(under.count() * cellColumns, 4 * run::cellsOfPart()));
        RowsOfInput source(input, tiling, under.last, rooms.of(worker));
        TileRow row = emptyTiles(method, tiling, null);
        return fillTiles(source, rows, row, tiles) ? run::Way::ahead : run::Way::readRefused;
    };
    return run::fillAhead(output, rowsOfPiece * columns, fill);
}

std::optional<grid::CellStore> resizedAhead(const run::Common& common, const ResizeOptions& options,
                                            const run::InputFileList& inputs)
{
    const auto looks = run::lookAtInputs(inputs);
    if (!looks) {
        return std::nullopt;
    }
    const grid::GridLook& look = looks->front();
    const run::OutputWish wish = run::outputWish(common, inputs[1], look.format, 1);
    const Tiling tiling = tilingOf(look.header.nrows, look.header.ncols, options.factor);
    const std::size_t tiles = static_cast<std::size_t>(tiling.rows) * static_cast<std::size_t>(tiling.columns);
    grid::CellStore input;
    grid::CellStore output;
    run::Way way = run::openCells(look, wish.folder, input);
    if (way == run::Way::ahead) {
        way = run::takeOutput(output, tiles, wish)
                  ? fillTilesAhead(input, look.header.null, tiling, options.method, output)
                  : run::Way::noRoom;
    }
    run::countWay(way);
    return way == run::Way::ahead ? std::optional<grid::CellStore>(std::move(output)) : std::nullopt;
}

// --- Step by step ----------------------------------------------------------------------------------------------------

void resizeRows(const Grid& input, const CellRows& tileRows, TileRow& tiles, Grid& output)
{
    for (std::int32_t tileRow = tileRows.first; tileRow <= tileRows.last; ++tileRow) {
        const CellRows under = rowsUnder(tiles.tiling, tileRow);
        takeRows(run::rowsOf(input, under.first, under.last), tiles);
        finishTiles(tiles, output.row(tileRow));
    }
}

} // namespace

void runResize(const run::Common& common, const ResizeOptions& options, const run::InputFileList& inputs)
{
    say("Resizing grid.");
    checkRequest(options, inputs);
    const std::int32_t factor = options.factor;

    std::optional<grid::CellStore> ahead = resizedAhead(common, options, inputs);
    Grid input;
    const run::LoadedGrid loaded = run::loadGrid(
        inputs[1], {.opening = "Loading grid data...", .purpose = "storing input grid...", .ahead = ahead.has_value()},
        input);
    const GridHeader& header = loaded.header;

    const double newSize = static_cast<double>(static_cast<float>(factor)) * header.cellsize8;
    const Tiling tiling = tilingOf(header.nrows, header.ncols, factor);
    const GridHeader resized = resizedHeader(header, tiling, newSize);
    saySizes(header, factor, newSize);
    Grid output;
    if (ahead) {
        grid::sayAllocation(resized, "storing output grid...");
    } else {
        grid::allocateGrid(output, resized, "storing output grid...");
    }

    TileRow tiles = emptyTiles(options.method, tiling, header.null);
    sayOpen("Processing Output Row:");
    for (std::int32_t done = 0; done < tiling.rows;) {
        const CellRows tileRows{done + 1, done + std::min(run::kProgressRows, tiling.rows - done)};
        if (!ahead) {
            resizeRows(input, tileRows, tiles, output);
        }
        done = tileRows.last;
        if (done % run::kProgressRows == 0) {
            progress(done);
        }
    }
    endLine();

    const std::string base = run::outputNameRule(common, inputs[1], join("_resize", factor));
    const grid::Format format = run::outputFormatRule(common, loaded.format);
    say("Writing resized grid to: ", base);
    const grid::CellSource cells = ahead ? grid::CellSource(*ahead, resized) : grid::CellSource(output);
    grid::writeGrid(format, base, resized, cells, loaded.projectionText, common.decimals);
}

} // namespace gridforge::ops
