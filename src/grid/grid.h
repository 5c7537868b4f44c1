// The record that describes a grid and the cells of one. This is the one place that knows how rows lie in memory.
#pragma once

#include "core/huge_array.h"
#include "host/units.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace gridforge {

// File formats of a grid (`gridFormat`).
inline constexpr std::int32_t kFormatAsc = 1;
inline constexpr std::int32_t kFormatFlt = 2;

inline constexpr float kDefaultNull = -9999.0F;
inline constexpr double kUnsetCorner = -99999.0;

struct GridHeader {
    std::int32_t format = kFormatAsc;
    std::int32_t ncols = 0;
    std::int32_t nrows = 0;
    double xll = kUnsetCorner; // lower left corner of the lower left cell
    double yll = kUnsetCorner;
    float cellsize = -1.0F;
    double cellsize8 = -1.0; // the same widened, for coordinates
    float null = kDefaultNull;
    Unit unit = 0;
    std::string projectionText; // the PROJCS line, blank if none

    std::size_t cells() const { return static_cast<std::size_t>(nrows) * static_cast<std::size_t>(ncols); }
    // Centre of a cell.
    double x(std::int32_t column) const { return xll + (static_cast<double>(column) - 0.5) * cellsize8; }
    double y(std::int32_t row) const { return yll + (static_cast<double>(row) - 0.5) * cellsize8; }
};

// Cells by (row, column), both from 1, row 1 in the south and column 1 in the west. In memory the rows lie as in the
// files, north row first, each from west to east.
template <typename Value>
class CellArray {
public:
    // Takes nrows by ncols zeros; false when the memory cannot be had.
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

// Writes "Allocating <n>Kb memory for <purpose>" and takes an array of the header's size, zero at first; ends the run
// where the memory cannot be had. An array of that size already is kept, and zero again.
void allocateGrid(Grid& grid, const GridHeader& header, std::string_view purpose);
// The Kb figure of such a line, in the 32-bit arithmetic of its digits.
std::int32_t gridKilobytes(std::int32_t nrows, std::int32_t ncols);

} // namespace gridforge
