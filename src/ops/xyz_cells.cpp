#include "ops/xyz_cells.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace gridforge::ops {

PointExtents findExtents(std::span<const double> x, std::span<const double> y, float toleranceX, float toleranceY)
{
    assert(x.size() == y.size());

    PointExtents extents;
    for (std::size_t i = 0; i < x.size(); ++i) {
        takeIn(x[i], y[i], extents.box);
        const double a = std::abs(x[i] - x[0]);
        if (a > static_cast<double>(toleranceX)) {
            extents.dx = static_cast<float>(std::min(static_cast<double>(extents.dx), a));
        }
        const double b = std::abs(y[i] - y[0]);
        if (b > static_cast<double>(toleranceY)) {
            extents.dy = static_cast<float>(std::min(static_cast<double>(extents.dy), b));
        }
    }
    return extents;
}

namespace {

// Never more than that of the upper right point, for which the grid has been made. A ratio that comes just below a
// whole number is cut down to the number before: on purpose, since users compare with earlier grids.
std::int32_t spacings(double distance, double spacing)
{
    const double ratio = distance / spacing;
    return ratio > 0 ? static_cast<std::int32_t>(ratio) : 0;
}

} // namespace

void sortIntoCells(std::span<const double> x, std::span<const double> y, std::span<const float> z,
                   const PointExtents& extents, Grid& cells)
{
    assert(x.size() == y.size() && x.size() == z.size());

    const auto dx = static_cast<double>(extents.dx);
    const auto dy = static_cast<double>(extents.dy);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const std::int32_t column = spacings(x[i] - extents.box.xmin, dx) + 1;
        const std::int32_t row = spacings(y[i] - extents.box.ymin, dy) + 1;
        cells(row, column) = z[i];
    }
}

} // namespace gridforge::ops
