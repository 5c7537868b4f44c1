// A value inside a triangle, by the line from its apex through the point to the opposite edge.
#pragma once

#include <cmath>

namespace gridforge::inline plane {

// Place in the plane.
struct TrianglePoint {
    double x = 0;
    double y = 0;
};

// Corners 1 and 2 bound an edge, 3 is the apex opposite to it.
struct Triangle {
    TrianglePoint corner1;
    TrianglePoint corner2;
    TrianglePoint apex;
    float value1 = 0;
    float value2 = 0;
    float apexValue = 0;
};

// Lengths below this (a single, widened) count as 0: the value is then taken half way.
inline constexpr double kDegenerateLength = static_cast<double>(1.0e-6F);

// The part that does not depend on the point, prepared once for many points of a triangle.
struct PreparedTriangle {
    Triangle triangle;
    double edgeSlope = 0;
    double edgeLength = 0;
};

inline double triangleDistance(const TrianglePoint& a, const TrianglePoint& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    return std::sqrt(dx * dx + dy * dy);
}

inline PreparedTriangle prepareTriangle(const Triangle& triangle)
{
    const TrianglePoint& a = triangle.corner1;
    const TrianglePoint& b = triangle.corner2;
    return {triangle, (b.y - a.y) / (b.x - a.x), triangleDistance(a, b)};
}

// The value half way or at the ratio `part` to `whole`, which is rounded to single precision before use.
inline float valueAlong(float from, float to, double part, double whole)
{
    const float ratio = whole < kDegenerateLength ? 0.5F : static_cast<float>(part / whole);
    return from + (to - from) * ratio;
}

// Where the line from the apex through `point` cuts the line of the edge. The comparisons are exact on purpose.
inline TrianglePoint cutOfEdge(const TrianglePoint& point, const PreparedTriangle& prepared)
{
    const TrianglePoint& a = prepared.triangle.corner1;
    const TrianglePoint& apex = prepared.triangle.apex;
    const double slope = (point.y - apex.y) / (point.x - apex.x);
    const double edgeSlope = prepared.edgeSlope;
    if (a.x == prepared.triangle.corner2.x) {
        return apex.x == point.x ? a : TrianglePoint{a.x, slope * (a.x - apex.x) + apex.y};
    }
    if (apex.x == point.x) {
        return {apex.x, edgeSlope * (apex.x - a.x) + a.y};
    }
    const double x = ((((slope * apex.x) - apex.y) + a.y) - edgeSlope * a.x) / (slope - edgeSlope);
    return {x, slope * (x - apex.x) + apex.y};
}

inline float interpolatePrepared(const TrianglePoint& point, const PreparedTriangle& prepared)
{
    const Triangle& t = prepared.triangle;
    const TrianglePoint cut = cutOfEdge(point, prepared);
    const float edgeValue = valueAlong(t.value1, t.value2, triangleDistance(cut, t.corner1), prepared.edgeLength);
    return valueAlong(t.apexValue, edgeValue, triangleDistance(point, t.apex), triangleDistance(cut, t.apex));
}

// The value at `point`: interpolated along the edge to where the line from the apex through the point cuts it, then
// along that line. Places in double, values in single precision. A point outside the triangle is extrapolated.
float interpolateTriangleApex(const TrianglePoint& point, const Triangle& triangle);

} // namespace gridforge::inline plane
