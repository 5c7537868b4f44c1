// Each cell takes one hyetograph and one factor from the last region that its centre is in.
#pragma once

#include "plane/box.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "plane/region_rows.h"

#include <cstdint>
#include <span>

namespace gridforge::rainfall {

struct RfPolygonTables {
    CellArray<std::int32_t> index; // the number of the hyetograph; 0 and below: no rain
    Grid factor;
};

// A region of one ring as read: its closing vertex and the slot after it belong to it.
struct RfRegion {
    std::span<const double> x;
    std::span<const double> y;
    Box extent;
};
RfRegion rfRegion(std::span<const double> x, std::span<const double> y);

// Prepares the region for the test of points and cells.
void prepareRfRegion(const RfRegion& region, const GridHeader& grid, PreparedRegion& prepared);

// Gives the hyetograph and the factor to the cells whose centre is in the region; how many of them had a hyetograph.
std::int64_t paintRegion(const RfRegion& region, const GridHeader& grid, std::int32_t hyetograph, float factor,
                         RfPolygonTables& tables);

} // namespace gridforge::rainfall
