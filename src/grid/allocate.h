// Memory for the cells of grids, with the line on the console about it.
#pragma once

#include "plane/cell_array.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <string_view>

namespace gridforge::grid {

// Writes "Allocating <n>Kb memory for <purpose>" and takes an array of the header's size, zero at first; ends the run if
// out of memory. An array already of that size is reused and cleared.
void allocateGrid(Grid& grid, const GridHeader& header, std::string_view purpose);
// Writes only the line.
void sayAllocation(const GridHeader& header, std::string_view purpose);
// The number of Kb in such a line, which wraps at 32 bits.
std::int32_t gridKilobytes(std::int32_t nrows, std::int32_t ncols);

} // namespace gridforge::grid
