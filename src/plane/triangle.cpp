#include "plane/triangle.h"

namespace gridforge {

float interpolateTriangleApex(const TrianglePoint& point, const Triangle& triangle)
{
    return interpolatePrepared(point, prepareTriangle(triangle));
}

} // namespace gridforge
