// The lattice of the rainfall grids.
#pragma once

#include "plane/grid_header.h"
#include "rainfall/control_file.h"

namespace gridforge::rainfall {

// Rows, columns, corner, cell size and null of the rainfall grids; a size that does not make a grid ends the run.
GridHeader settleRfGrid(const RfSettings& settings);

} // namespace gridforge::rainfall
