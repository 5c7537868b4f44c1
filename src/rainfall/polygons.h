// The polygon method: each cell takes one hyetograph and one factor from the last region that its centre is in.
#pragma once

#include "rainfall/hyetographs.h"
#include "rainfall/points.h"
#include "rainfall/polygon_cells.h"

#include <cstdint>
#include <string>

namespace gridforge::rainfall {

// Takes the tables, with the null of the grid in each cell.
void allocateTables(const GridHeader& grid, RfPolygonTables& tables);

// The pass over the control file that paints the regions of its polygon layers and writes the tables as the grids
// rf_index and rf_fac. Regions without a name take that of the point inside.
void rf_set_polygons(const std::string& controlFile, const RfPoints& points, const RfHyetographs& hyetographs,
                     const GridHeader& grid, RfPolygonTables& tables);

} // namespace gridforge::rainfall
