// Points put into a line at a spacing, and the direction across the line there.
#pragma once

#include <cstdint>

namespace gridforge::inline plane {

// How many points divide the segment 1-2: floor(d / spacing) of its DISTANCE_8 d, and none where d is not above the spacing.
std::int32_t pointsToInsert(double x1, double y1, double x2, double y2, float spacing);

// Square to a direction in degrees, on its left side.
float perpendicularAngle(float angle);

} // namespace gridforge::inline plane
