#include "exports/plane_for_callers.h"
#include "plane/geometry.h"

#include <array>
#include <cassert>
#include <cmath>

namespace gridforge::exports {

namespace {

constexpr float kNoValue = -99999.0F;

bool crossing(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4, float& xi, float& yi)
{
    return INTERSECTION_POINT(x1, y1, x2, y2, x3, y3, x4, y4, xi, yi);
}

bool crossing(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4, double& xi,
              double& yi)
{
    return INTERSECTION_POINT_8(x1, y1, x2, y2, x3, y3, x4, y4, xi, yi);
}

float distance(float x1, float y1, float x2, float y2)
{
    return DISTANCE(x1, y1, x2, y2);
}

float distance(double x1, double y1, double x2, double y2)
{
    return DISTANCE_8(x1, y1, x2, y2);
}

// The value at `part` of `whole` on the way from z1 to z2; in the middle if `whole` has no length.
float along(float z1, float z2, float part, float whole)
{
    if (whole < kNoLength) {
        return z1 + (z2 - z1) * 0.5F;
    }
    return z1 + (z2 - z1) * part / whole;
}

// The double form divides first and rounds the share, unlike the single form, on purpose: callers rely on it.
float along(float z1, float z2, double part, double whole)
{
    if (whole < double{kNoLength}) {
        return z1 + (z2 - z1) * 0.5F;
    }
    return z1 + (z2 - z1) * static_cast<float>(part / whole);
}

template <typename Real>
bool interpolate(Real px, Real py, std::span<const Real, 3> x, std::span<const Real, 3> y, std::span<const float, 3> z,
                 float& zi)
{
    Real xq = 0;
    Real yq = 0;
    if (!crossing(x[0], y[0], x[1], y[1], x[2], y[2], px, py, xq, yq)) {
        zi = kNoValue;
        return false;
    }
    const float a = distance(x[0], y[0], xq, yq);
    const float b = distance(x[0], y[0], x[1], y[1]);
    const float zq = along(z[0], z[1], a, b);
    const float c = distance(x[2], y[2], px, py);
    const float e = distance(x[2], y[2], xq, yq);
    zi = along(z[2], zq, c, e);
    return true;
}

template <typename Real>
Real plainDistance(Real x1, Real y1, Real x2, Real y2)
{
    return std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
}

template <typename Real>
struct Place {
    Real x;
    Real y;
};

// Where the ray from vertex 3 through p meets the line of edge 1-2.
template <typename Real>
Place<Real> rayOnEdge(Real px, Real py, std::span<const Real, 3> x, std::span<const Real, 3> y)
{
    const bool edgeUpright = x[0] == x[1];
    const bool rayUpright = x[2] == px;
    if (edgeUpright && rayUpright) {
        return {x[0], y[0]};
    }
    if (edgeUpright) {
        const Real slope = (py - y[2]) / (px - x[2]);
        return {x[0], slope * (x[0] - x[2]) + y[2]};
    }
    const Real m1 = (y[1] - y[0]) / (x[1] - x[0]);
    if (rayUpright) {
        return {x[2], m1 * (x[2] - x[0]) + y[0]};
    }
    const Real m2 = (py - y[2]) / (px - x[2]);
    const Real xq = (m2 * x[2] - y[2] + y[0] - m1 * x[0]) / (m2 - m1);
    return {xq, m2 * (xq - x[2]) + y[2]};
}

template <typename Real>
float interpolateUnchecked(Real px, Real py, std::span<const Real, 3> x, std::span<const Real, 3> y,
                           std::span<const float, 3> z)
{
    const Place<Real> q = rayOnEdge(px, py, x, y);
    const Real a = plainDistance(x[0], y[0], q.x, q.y);
    const Real b = plainDistance(x[0], y[0], x[1], y[1]);
    const float zq = along(z[0], z[1], a, b);
    const Real c = plainDistance(x[2], y[2], px, py);
    const Real e = plainDistance(x[2], y[2], q.x, q.y);
    return along(z[2], zq, c, e);
}

// The value in the triangle of three vertices of an element; false outside it.
bool interpolateInside(double px, double py, const std::array<std::size_t, 3>& corners, std::span<const double> x,
                       std::span<const double> y, std::span<const float> z, double xmin, float& zi)
{
    constexpr std::int32_t kSlots = 5;
    constexpr std::array<std::int32_t, 1> kClosing = {4};
    std::array<double, kSlots> ringX{};
    std::array<double, kSlots> ringY{};
    std::array<float, 3> value{};
    for (std::size_t i = 0; i < kSlots; ++i) {
        ringX[i] = x[corners[i % 3]];
        ringY[i] = y[corners[i % 3]];
    }
    for (std::size_t i = 0; i < 3; ++i) {
        value[i] = z[corners[i]];
    }
    return INSIDE_POLYGON_8(px, py, ringX, ringY, kSlots, xmin, kClosing, 1) &&
           INTERPOLATE_TRIANGLE_8(px, py, std::span(ringX).first<3>(), std::span(ringY).first<3>(), value, zi);
}

} // namespace

bool INTERPOLATE_TRIANGLE(float px, float py, std::span<const float, 3> x, std::span<const float, 3> y,
                          std::span<const float, 3> z, float& zi)
{
    return interpolate(px, py, x, y, z, zi);
}

bool INTERPOLATE_TRIANGLE_8(double px, double py, std::span<const double, 3> x, std::span<const double, 3> y,
                            std::span<const float, 3> z, float& zi)
{
    return interpolate(px, py, x, y, z, zi);
}

float INTERPOLATE_TRIANGLE_NO_CHECKS(float px, float py, std::span<const float, 3> x, std::span<const float, 3> y,
                                     std::span<const float, 3> z)
{
    return interpolateUnchecked(px, py, x, y, z);
}

float INTERPOLATE_TRIANGLE_NO_CHECKS_8(double px, double py, std::span<const double, 3> x, std::span<const double, 3> y,
                                       std::span<const float, 3> z)
{
    return interpolateUnchecked(px, py, x, y, z);
}

bool INTERPOLATE_ELEMENT_8(double px, double py, std::span<const double> x, std::span<const double> y,
                           std::span<const float> z, double xmin, float& zi)
{
    assert(y.size() == x.size() && z.size() == x.size());
    if (x.size() == 3) {
        return interpolateInside(px, py, {0, 1, 2}, x, y, z, xmin, zi);
    }
    if (x.size() != 4) {
        return false;
    }
    constexpr std::array<std::array<std::size_t, 3>, 4> kTriangles = {{{1, 2, 3}, {0, 2, 3}, {0, 1, 3}, {0, 1, 2}}};
    float sum = 0;
    int count = 0;
    for (const auto& corners : kTriangles) {
        float value = 0;
        if (interpolateInside(px, py, corners, x, y, z, xmin, value)) {
            sum += value;
            ++count;
        }
    }
    zi = count > 0 ? sum / static_cast<float>(count) : kNoValue;
    return count > 0;
}

} // namespace gridforge::exports
