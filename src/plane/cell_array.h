// The cells of a grid in memory. Only this file knows how rows lie there.
#pragma once

#include "core/huge_array.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::inline plane {

// Cells by (row, column), both from 1, row 1 in the south and column 1 in the west. In memory the rows lie as in the
// files, north row first, each from west to east.
template <typename Value>
class CellArray {
public:
    // Takes nrows by ncols zeros; false if out of memory.
    [[nodiscard]] bool allocate(std::int32_t nrows, std::int32_t ncols)
    {
        nrows_ = nrows;
        ncols_ = ncols;
        return values_.allocate(static_cast<std::size_t>(nrows) * static_cast<std::size_t>(ncols));
    }
    void release()
    {
        values_.release();
        nrows_ = 0;
        ncols_ = 0;
    }

    std::int32_t nrows() const { return nrows_; }
    std::int32_t ncols() const { return ncols_; }
    // All cells in the order of the files.
    std::span<Value> cells() { return values_.all(); }
    std::span<const Value> cells() const { return values_.all(); }
    // One row from west to east.
    std::span<Value> row(std::int32_t row) { return values_.all().subspan(rowStart(row), columns()); }
    std::span<const Value> row(std::int32_t row) const { return values_.all().subspan(rowStart(row), columns()); }
    Value& operator()(std::int32_t row, std::int32_t column) { return values_[at(row, column)]; }
    const Value& operator()(std::int32_t row, std::int32_t column) const { return values_[at(row, column)]; }

private:
    std::size_t columns() const { return static_cast<std::size_t>(ncols_); }
    std::size_t rowStart(std::int32_t row) const
    {
        assert(row >= 1 && row <= nrows_);
        return static_cast<std::size_t>(nrows_ - row) * columns();
    }
    std::size_t at(std::int32_t row, std::int32_t column) const
    {
        assert(column >= 1 && column <= ncols_);
        return rowStart(row) + static_cast<std::size_t>(column - 1);
    }

    HugeArray<Value> values_;
    std::int32_t nrows_ = 0;
    std::int32_t ncols_ = 0;
};

using Grid = CellArray<float>;

} // namespace gridforge::inline plane
