// The header of a grid, for tests that need no file of it.
#pragma once

#include "plane/grid_header.h"

#include <cstdint>

namespace gridforge::test {

inline GridHeader headerOf(std::int32_t nrows, std::int32_t ncols, double xll, double yll, float cellsize)
{
    GridHeader header;
    header.nrows = nrows;
    header.ncols = ncols;
    header.xll = xll;
    header.yll = yll;
    header.cellsize = cellsize;
    header.cellsize8 = static_cast<double>(cellsize);
    return header;
}

} // namespace gridforge::test
