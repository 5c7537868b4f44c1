// Rows of cells turned into columns.
#pragma once

#include <cstddef>
#include <span>

namespace gridforge::netcdf {

// As many cells as fill a line of the processor's cache.
inline constexpr std::size_t kLineCells = 16;

// Rows of `columns` cells, the north one first, into columns from the south: each begins `apart` cells after
// the one before.
void turnCells(std::span<const float> rows, std::size_t columns, float* target, std::size_t apart);

} // namespace gridforge::netcdf
