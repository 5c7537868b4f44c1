// The 12-sided polygon that stands for a search circle around a point.
#pragma once

#include "plane/inside_runs.h"

#include <array>
#include <cstdint>

namespace gridforge::sampling {

inline constexpr std::int32_t kSearchSides = 12;

// In the layout of the region test: vertices 1 to 12, vertex 1 again as 13, which closes the ring, and vertex 2 again as
// 14. The first 13 are the ring as a region object is written.
struct SearchPolygon {
    std::array<double, kSearchSides + 2> x{};
    std::array<double, kSearchSides + 2> y{};
    double xmin = 0;
};

// Vertex 1 lies due east of the point, the others follow anticlockwise every 30 degrees at half the diameter.
SearchPolygon searchPolygon(double x, double y, float diameter);

// The polygon as a region to walk over.
void prepareWalk(const SearchPolygon& polygon, InsideWalk& walk);

bool insideSearchPolygon(const SearchPolygon& polygon, double px, double py);

} // namespace gridforge::sampling
