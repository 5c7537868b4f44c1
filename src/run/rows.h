// Loops over all cells: with their progress on the console, or by all threads.
#pragma once

#include "host/console.h"
#include "host/threads.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace gridforge::run {

inline constexpr std::int32_t kProgressRows = 100;

// A stretch of cells in the order of the files: the place of the first from 0, and how many.
struct CellBlock {
    std::size_t start = 0;
    std::size_t count = 0;
};

// Writes the heading and walks over all cells from the south row to the north row, in blocks of rows between two
// progress numbers: `work` is called with the CellBlock of each.
template <typename Work>
void overRows(std::string_view heading, std::int32_t nrows, std::int32_t ncols, Work&& work)
{
    sayOpen(heading);
    const auto columns = static_cast<std::size_t>(ncols);
    for (std::int32_t done = 0; done < nrows;) {
        const std::int32_t rows = std::min(kProgressRows, nrows - done);
        done += rows;
        work(CellBlock{static_cast<std::size_t>(nrows - done) * columns, static_cast<std::size_t>(rows) * columns});
        if (done % kProgressRows == 0) {
            progress(done);
        }
    }
    endLine();
}

// Calls `work` with blocks of cells that make up the whole, several at a time.
template <typename Work>
void overBlocks(std::size_t cells, Work&& work)
{
    constexpr std::size_t kBlockCells = std::size_t{1} << 18;
    const std::size_t each = cellsPerPiece(kBlockCells);
    parallelFor((cells + each - 1) / each, [&](std::size_t block, std::size_t) {
        work(CellBlock{block * each, std::min(each, cells - block * each)});
    });
}

// Calls `work` for the rows, or parts of rows, of a block in a lattice, in the order of the files: with the row, the place of
// the first column from 0, and the block within this one, whose `start` counts from the block's own.
template <typename Work>
void overRowsOf(const CellBlock& block, std::int32_t nrows, std::int32_t ncols, Work&& work)
{
    const auto columns = static_cast<std::size_t>(ncols);
    for (std::size_t done = 0; done < block.count;) {
        const std::size_t at = block.start + done;
        const std::size_t column = at % columns;
        const std::size_t count = std::min(columns - column, block.count - done);
        work(nrows - static_cast<std::int32_t>(at / columns), column, CellBlock{done, count});
        done += count;
    }
}

// The cells of a block.
template <typename Cells>
auto cellsOf(Cells& grid, const CellBlock& block)
{
    return grid.cells().subspan(block.start, block.count);
}

// The cells of the rows from `first` to `last`, the last and northern one first; none where `first` is above `last`.
template <typename Cells>
auto rowsOf(Cells& grid, std::int32_t first, std::int32_t last)
{
    const auto columns = static_cast<std::size_t>(grid.ncols());
    const std::size_t rows = first > last ? 0 : static_cast<std::size_t>(last - first) + 1;
    const std::size_t start = rows == 0 ? 0 : static_cast<std::size_t>(grid.nrows() - last) * columns;
    return grid.cells().subspan(start, rows * columns);
}

} // namespace gridforge::run
