// The lattice that points lie on, and their way into its cells.
#pragma once

#include "core/huge_array.h"
#include "plane/box.h"
#include "plane/cell_array.h"

#include <cstddef>
#include <span>

namespace gridforge::ops {

// Points in the order of their file.
struct PointList {
    HugeArray<double> x;
    HugeArray<double> y;
    HugeArray<float> z;

    // False if out of memory.
    [[nodiscard]] bool allocate(std::size_t count)
    {
        return x.allocate(count) && y.allocate(count) && z.allocate(count);
    }
};

struct PointExtents {
    Box box = emptyBox(9.0e+29);
    float dx = 9999.0F; // the smallest separation from the first point above the tolerance
    float dy = 9999.0F;
};

PointExtents findExtents(std::span<const double> x, std::span<const double> y, float toleranceX, float toleranceY);

// Each point gives its z to the cell that its distance from the lower left point, in whole spacings, leads to; the last
// one in a cell counts. The grid reaches to the cell of the upper right point or beyond. Not-a-number counts as no distance.
void sortIntoCells(std::span<const double> x, std::span<const double> y, std::span<const float> z,
                   const PointExtents& extents, Grid& cells);

} // namespace gridforge::ops
