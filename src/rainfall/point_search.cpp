#include "rainfall/point_search.h"

#include "plane/geometry.h"
#include "plane/region_rows.h"

#include <algorithm>

namespace gridforge::rainfall {

std::int32_t snappedPoint(double x, double y, const RfPoints& points, std::span<float> distances)
{
    constexpr float kSnapped = 0.001F;
    std::ranges::transform(points.records, distances.begin(),
                           [&](const RfPoint& point) { return DISTANCE_8(x, y, point.x, point.y); });
    const auto nearest = std::ranges::min_element(distances);
    if (nearest == distances.end() || !(*nearest < kSnapped)) {
        return 0;
    }
    return static_cast<std::int32_t>(nearest - distances.begin()) + 1;
}

RfPointsInside pointsInside(const RfRegion& region, const GridHeader& grid, const RfPoints& points)
{
    PreparedRegion ready;
    prepareRfRegion(region, grid, ready);
    RfPointsInside inside;
    for (const RfPoint& point : points.records) {
        if (insideRegion(ready, point.x, point.y)) {
            ++inside.count;
            inside.last = point.record;
        }
    }
    return inside;
}

} // namespace gridforge::rainfall
