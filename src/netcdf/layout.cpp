#include "netcdf/layout.h"

#include "core/worker_rooms.h"
#include "host/threads.h"
#include "netcdf/layout_cells.h"

#include <algorithm>
#include <atomic>

namespace gridforge::netcdf {

namespace {

constexpr std::size_t kTileCells = std::size_t{1} << 18;
// Of files. Their columns are far apart, so a tile is about as high as it is wide.
constexpr std::size_t kFileTileCells = std::size_t{1} << 20;
constexpr std::size_t kFileTileColumns = std::size_t{1} << 10;

// A rectangle of cells by rows from the north and columns from the west, both from 0.
struct LayTile {
    std::size_t row;
    std::size_t rows;
    std::size_t column;
    std::size_t columns;
};

// The tiles that a grid is cut into.
class LayTiles {
public:
    LayTiles(Layout layout, const GridHeader& lattice, bool inFile)
        : nrows_(static_cast<std::size_t>(lattice.nrows)), ncols_(static_cast<std::size_t>(lattice.ncols))
    {
        const std::size_t cells = cellsPerPiece(inFile ? kFileTileCells : kTileCells);
        const std::size_t widest = inFile ? kFileTileColumns : std::max(cells / kLineCells, kLineCells);
        columns_ = layout == Layout::rows ? ncols_ : std::min(ncols_, widest);
        rows_ = std::clamp<std::size_t>(cells / columns_, 1, nrows_);
        across_ = (ncols_ + columns_ - 1) / columns_;
    }

    std::size_t cells() const { return rows_ * columns_; }
    std::size_t count() const { return across_ * ((nrows_ + rows_ - 1) / rows_); }
    LayTile operator[](std::size_t i) const
    {
        const std::size_t row = i / across_ * rows_;
        const std::size_t column = i % across_ * columns_;
        return {row, std::min(rows_, nrows_ - row), column, std::min(columns_, ncols_ - column)};
    }

private:
    std::size_t nrows_;
    std::size_t ncols_;
    std::size_t rows_ = 0;
    std::size_t columns_ = 0;
    std::size_t across_ = 0;
};

bool fetchTile(const grid::GetCells& source, const LayTile& tile, std::size_t ncols, std::span<float> cells)
{
    if (tile.columns == ncols) {
        return source(tile.row * ncols, cells);
    }
    for (std::size_t r = 0; r < tile.rows; ++r) {
        if (!source((tile.row + r) * ncols + tile.column, cells.subspan(r * tile.columns, tile.columns))) {
            return false;
        }
    }
    return true;
}

// Rows of whole width.
bool layRows(std::span<const float> cells, const LayTile& tile, std::size_t nrows, std::span<float> room,
             grid::CellStore& laid)
{
    const std::size_t first = (nrows - tile.row - tile.rows) * tile.columns;
    const std::span<float> target = laid.isInFile() ? room : laid.inMemory().subspan(first, cells.size());
    for (std::size_t r = 0; r < tile.rows; ++r) {
        std::ranges::copy(cells.subspan(r * tile.columns, tile.columns),
                          target.subspan((tile.rows - 1 - r) * tile.columns).begin());
    }
    return !laid.isInFile() || laid.put(first, target.first(cells.size()));
}

bool layColumns(std::span<const float> cells, const LayTile& tile, std::size_t nrows, std::span<float> room,
                grid::CellStore& laid)
{
    const std::size_t first = tile.column * nrows + (nrows - tile.row - tile.rows);
    if (!laid.isInFile()) {
        turnCells(cells, tile.columns, laid.inMemory().data() + first, nrows);
        return true;
    }
    turnCells(cells, tile.columns, room.data(), tile.rows);
    if (tile.rows == nrows) {
        return laid.put(first, room.first(cells.size()));
    }
    for (std::size_t c = 0; c < tile.columns; ++c) {
        if (!laid.put(first + c * nrows, room.subspan(c * tile.rows, tile.rows))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool layCells(const grid::GetCells& source, Layout layout, const GridHeader& lattice, grid::CellStore& laid)
{
    const LayTiles tiles(layout, lattice, laid.isInFile());
    WorkerRooms<float> rooms;
    const std::size_t roomCells = tiles.cells() * (laid.isInFile() ? 2 : 1);
    if (!rooms.take(std::min(threadCount(), tiles.count()), roomCells)) {
        return false;
    }
    const auto nrows = static_cast<std::size_t>(lattice.nrows);
    const auto ncols = static_cast<std::size_t>(lattice.ncols);
    std::atomic<bool> good = true;
    parallelFor(tiles.count(), [&](std::size_t i, std::size_t worker) {
        const LayTile tile = tiles[i];
        const std::span<float> room = rooms.of(worker);
        const std::span<float> cells = room.first(tile.rows * tile.columns);
        const std::span<float> further = room.subspan(cells.size());
        if (!good || !fetchTile(source, tile, ncols, cells)) {
            good = false;
            return;
        }
        const bool put = layout == Layout::rows ? layRows(cells, tile, nrows, further, laid)
                                                : layColumns(cells, tile, nrows, further, laid);
        if (!put) {
            good = false;
        }
    });
    return good;
}

std::optional<std::span<const float>> cellsOf(const grid::CellStore& laid, std::size_t first, std::span<float> room)
{
    if (!laid.isInFile()) {
        return laid.inMemory().subspan(first, room.size());
    }
    return laid.get(first, room) ? std::optional<std::span<const float>>(room) : std::nullopt;
}

} // namespace gridforge::netcdf
