// Searches for the rainfall points at a vertex and in a region.
#pragma once

#include "plane/grid_header.h"
#include "rainfall/polygon_cells.h"
#include "rainfall/rf_point.h"

#include <cstdint>
#include <span>

namespace gridforge::rainfall {

// The number of the point nearest to a vertex, the first of several; 0 where none is at the vertex. `distances` is room
// for one value a point.
std::int32_t snappedPoint(double x, double y, const RfPoints& points, std::span<float> distances);

// How many points are in the region, and the record of the last of them.
struct RfPointsInside {
    std::int64_t count = 0;
    RfRecord last;
};
RfPointsInside pointsInside(const RfRegion& region, const GridHeader& grid, const RfPoints& points);

} // namespace gridforge::rainfall
