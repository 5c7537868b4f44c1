// The IDW method: each cell takes the weights of all points, or of those nearest to it.
#pragma once

#include "plane/grid_header.h"
#include "rainfall/control_file.h"
#include "rainfall/idw_cells.h"
#include "rainfall/points.h"

#include <cstdint>

namespace gridforge::rainfall {

// Settles, and says, which points are used.
RfIdwMethod settleIdwMethod(const RfSettings& settings, std::int32_t points, std::int32_t hyetographs);

// Says how much memory the weights take, and takes it; ends the run where it cannot be had.
void allocateTables(const GridHeader& grid, const RfIdwMethod& method, std::int32_t points, RfIdwTables& tables);

// Fills the tables.
void rf_idw_weights(const GridHeader& grid, const RfPoints& points, RfIdwTables& tables);

} // namespace gridforge::rainfall
