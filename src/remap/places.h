// Where the rows and columns of the fine terrain fall on the coarse lattice: settled once an axis, not once a cell.
#pragma once

#include "plane/grid_header.h"

#include <cstdint>
#include <vector>

namespace gridforge::remap {

// One axis of a lattice: cell 1 begins at `origin`.
struct Axis {
    double origin = 0;
    double cellsize = 1;
    std::int32_t count = 0;

    // The order of these sums is part of the results; it is not that of GridHeader::x.
    double centre(std::int32_t i) const { return origin + static_cast<double>(i - 1) * cellsize + 0.5 * cellsize; }
};

Axis columnAxis(const GridHeader& header);
Axis rowAxis(const GridHeader& header);

// A fine row or column between the centres of the coarse cells `base` and `base` + 1; base 0 means outside, which the
// outer half cells of the coarse lattice are too.
struct QuadPlace {
    std::int32_t base = 0;
    std::int32_t nearest = 0; // base or base + 1
    double centre = 0;
};
std::vector<QuadPlace> placesInQuads(const Axis& fine, const Axis& coarse);

// A fine row or column and the coarse cell whose centre is nearest, 0 outside the lattice; `offset` is from that
// centre.
struct NearestCell {
    std::int32_t cell = 0;
    double offset = 0;
};
std::vector<NearestCell> placesInCells(const Axis& fine, const Axis& coarse);

// The fine centre lies no farther than one coarse cell size from the coarse centre.
bool isNearCell(const NearestCell& column, const NearestCell& row, double cellsize);

} // namespace gridforge::remap
