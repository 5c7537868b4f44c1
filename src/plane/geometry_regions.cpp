#include "plane/geometry.h"
#include "plane/region_walk.h"

#include <cassert>
#include <cmath>

namespace gridforge::inline plane {

namespace {

// Both precisions compute the differences in their own, and all else in single.
float sideProduct(float dx, float dy, float ax1, float ay1, float bx2, float by2)
{
    return (dx * ay1 - dy * ax1) * (dx * by2 - dy * bx2);
}

float sameSide(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by)
{
    return sideProduct(x2 - x1, y2 - y1, ax - x1, ay - y1, bx - x2, by - y2);
}

float sameSide(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by)
{
    return sideProduct(static_cast<float>(x2 - x1), static_cast<float>(y2 - y1), static_cast<float>(ax - x1),
                       static_cast<float>(ay - y1), static_cast<float>(bx - x2), static_cast<float>(by - y2));
}

template <typename Real>
bool segmentsMeet(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real x4, Real y4)
{
    return sameSide(x1, y1, x2, y2, x3, y3, x4, y4) <= 0 && sameSide(x3, y3, x4, y4, x1, y1, x2, y2) <= 0;
}

template <typename Real>
struct RayCrossings {
    Real px;
    Real py;
    Real rayStart;
    Real previousY = 0;
    bool odd = false;

    // Counts the edge from vertex 1 to vertex 2. A vertex on the ray is judged with the edge that starts there.
    void take(Real x1, Real y1, Real x2, Real y2)
    {
        if (y1 == y2) {
            return;
        }
        if (y2 == py) {
            previousY = y1;
        } else if (y1 == py && x1 <= px) {
            odd ^= (previousY - py) * (y2 - py) < 0;
        } else {
            odd ^= segmentsMeet(rayStart, py, px, py, x1, y1, x2, y2);
        }
    }
};

template <typename Real>
bool inside(Real px, Real py, std::span<const Real> x, std::span<const Real> y, std::int32_t np, Real xmin,
            std::span<const std::int32_t> ir, std::int32_t nr)
{
    assert(np >= 0 && x.size() >= static_cast<std::size_t>(np) && y.size() >= static_cast<std::size_t>(np));
    assert(nr >= 0 && ir.size() >= static_cast<std::size_t>(nr));
    RayCrossings<Real> crossings{px, py, xmin - Real{10}};
    walkRings(np, ir, nr, [&](std::size_t second, std::size_t end) {
        if (y[second - 1] == py) {
            crossings.previousY = yAheadOfSecond(y, second, end);
        }
        for (std::size_t i = second; i <= end; ++i) {
            crossings.take(x[i - 1], y[i - 1], x[i], y[i]);
        }
    });
    return crossings.odd;
}

} // namespace

float SAME_SIDE(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by)
{
    return sameSide(x1, y1, x2, y2, ax, ay, bx, by);
}

float SAME_SIDE_8(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by)
{
    return sameSide(x1, y1, x2, y2, ax, ay, bx, by);
}

bool INTERSECT_LINE(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4)
{
    return segmentsMeet(x1, y1, x2, y2, x3, y3, x4, y4);
}

bool INTERSECT_LINE_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    return segmentsMeet(x1, y1, x2, y2, x3, y3, x4, y4);
}

bool INSIDE_POLYGON(float px, float py, std::span<const float> x, std::span<const float> y, std::int32_t np, float xmin,
                    std::span<const std::int32_t> ir, std::int32_t nr)
{
    return inside(px, py, x, y, np, xmin, ir, nr);
}

bool INSIDE_POLYGON_8(double px, double py, std::span<const double> x, std::span<const double> y, std::int32_t np,
                      double xmin, std::span<const std::int32_t> ir, std::int32_t nr)
{
    return inside(px, py, x, y, np, xmin, ir, nr);
}

} // namespace gridforge::inline plane
