// Windows of cells on a lattice.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::inline plane {

// Rows and columns from 1, both ends included. It may extend past its lattice, and is empty if a first is above its last.
struct CellWindow {
    std::int32_t firstRow = 1;
    std::int32_t lastRow = 0;
    std::int32_t firstColumn = 1;
    std::int32_t lastColumn = 0;

    bool empty() const { return firstRow > lastRow || firstColumn > lastColumn; }
    std::size_t columns() const { return static_cast<std::size_t>(std::int64_t{lastColumn} - firstColumn + 1); }
    std::size_t cells() const
    {
        return empty() ? 0 : static_cast<std::size_t>(std::int64_t{lastRow} - firstRow + 1) * columns();
    }
};

} // namespace gridforge::inline plane
