#include "plane/triangle.h"

namespace gridforge::inline plane {

float interpolateTriangleApex(const TrianglePoint& point, const Triangle& triangle)
{
    return interpolatePrepared(point, prepareTriangle(triangle));
}

} // namespace gridforge::inline plane
