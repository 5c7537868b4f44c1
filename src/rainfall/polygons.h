// The polygon method: each cell takes one hyetograph and one factor from the last region that its centre is in.
#pragma once

#include "grid/grid.h"
#include "plane/box.h"
#include "rainfall/hyetographs.h"
#include "rainfall/points.h"

#include <cstdint>
#include <span>
#include <string>

namespace gridforge::rainfall {

struct RfPolygonTables {
    CellArray<std::int32_t> index; // the number of the hyetograph; 0 and below: no rain
    Grid factor;
};

// Takes the tables, with the null of the grid in each cell.
void allocateTables(const GridHeader& grid, RfPolygonTables& tables);

// A region of one ring as read: its closing vertex and the slot after it belong to it.
struct RfRegion {
    std::span<const double> x;
    std::span<const double> y;
    Box extent;
};
RfRegion rfRegion(std::span<const double> x, std::span<const double> y);

// Gives the hyetograph and the factor to the cells whose centre is in the region; how many of them had a hyetograph.
std::int64_t paintRegion(const RfRegion& region, const GridHeader& grid, std::int32_t hyetograph, float factor,
                         RfPolygonTables& tables);

// How many points are in the region, and the record of the last of them.
struct RfPointsInside {
    std::int64_t count = 0;
    RfRecord last;
};
RfPointsInside pointsInside(const RfRegion& region, const GridHeader& grid, const RfPoints& points);

// The pass over the control file that paints the regions of its polygon layers and writes the tables as the grids
// rf_index and rf_fac. Regions without a name take that of the point inside.
void rf_set_polygons(const std::string& controlFile, const RfPoints& points, const RfHyetographs& hyetographs,
                     const GridHeader& grid, RfPolygonTables& tables);

} // namespace gridforge::rainfall
