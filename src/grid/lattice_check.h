// Whether two grids cover the same lattice.
#pragma once

#include "plane/grid_header.h"

namespace gridforge::grid {

// The grids do not differ in size, corner or cell size.
bool isSameLattice(const GridHeader& first, const GridHeader& second);
// Reports each of size, corner and cell size in which the grids differ, and ends the run if any does.
void compareGridDimensions(const GridHeader& first, const GridHeader& second);

} // namespace gridforge::grid
