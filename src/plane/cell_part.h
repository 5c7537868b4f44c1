// Some of the cells of a grid, under the rows and columns that they have in it.
#pragma once

#include "plane/cell_array.h"
#include "plane/cell_window.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::inline plane {

class CellPart {
public:
    CellPart() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a grid is the largest part of itself
    CellPart(const Grid& whole) : cells_(whole.cells()), window_{1, whole.nrows(), 1, whole.ncols()} {}
    // The cells of the window, north row first.
    CellPart(std::span<const float> cells, const CellWindow& window) : cells_(cells), window_(window) {}

    const CellWindow& window() const { return window_; }
    // `count` cells of a row from the column `first` on.
    std::span<const float> row(std::int32_t row, std::int32_t first, std::int32_t count) const
    {
        return count == 0 ? std::span<const float>() : cells_.subspan(at(row, first), static_cast<std::size_t>(count));
    }
    const float& operator()(std::int32_t row, std::int32_t column) const { return cells_[at(row, column)]; }

private:
    std::size_t at(std::int32_t row, std::int32_t column) const
    {
        assert(row >= window_.firstRow && row <= window_.lastRow);
        assert(column >= window_.firstColumn && column <= window_.lastColumn);
        const auto columns = static_cast<std::size_t>(window_.lastColumn - window_.firstColumn) + 1;
        return static_cast<std::size_t>(window_.lastRow - row) * columns +
               static_cast<std::size_t>(column - window_.firstColumn);
    }

    std::span<const float> cells_;
    CellWindow window_;
};

} // namespace gridforge::inline plane
