#include "plane/line_points.h"

#include "core/rounding.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cmath>

namespace gridforge::inline plane {

std::int32_t pointsToInsert(double x1, double y1, double x2, double y2, float spacing)
{
    const float length = DISTANCE_8(x1, y1, x2, y2);
    if (!(length > spacing)) {
        return 0;
    }
    return std::max(truncateToInt(static_cast<double>(std::floor(length / spacing))), 0);
}

float perpendicularAngle(float angle)
{
    const float perpendicular = angle + 90.0F;
    return perpendicular > 360.0F ? perpendicular - 360.0F : perpendicular;
}

} // namespace gridforge::inline plane
