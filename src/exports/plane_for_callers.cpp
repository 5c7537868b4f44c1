#include "exports/plane_for_callers.h"

#include "core/rounding.h"
#include "plane/geometry.h"
#include "plane/region_walk.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>

namespace gridforge::exports {

namespace {

constexpr float kNoDepth = 1e-5F;

} // namespace

// --- Points and segments ---------------------------------------------------------------------------------------------

float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    // Only the x differences count, so an upright segment has no angle to any other, on purpose: callers rely on it.
    constexpr double kLeast = kNoLength;
    if (std::abs(x2 - x1) < kLeast || std::abs(x4 - x3) < kLeast) {
        return 0;
    }
    const auto first = static_cast<float>(atan2d(y2 - y1, x2 - x1));
    const auto second = static_cast<float>(atan2d(y4 - y3, x4 - x3));
    const float angle = std::abs(first - second);
    return angle > 180.0F ? 360.0F - angle : angle;
}

bool SAME_POINT(float x1, float y1, float x2, float y2, float tolerance)
{
    return std::abs(x1 - x2) < tolerance && std::abs(y1 - y2) < tolerance;
}

bool SAME_POINT_8(double x1, double y1, double x2, double y2, double tolerance)
{
    return std::abs(x1 - x2) < tolerance && std::abs(y1 - y2) < tolerance;
}

bool INTERSECT_POINT(float x1, float y1, float x2, float y2, float px, float py)
{
    return SAME_SIDE(x1, y1, x2, y2, px, py, px, py) == 0;
}

float VECTOR_MAGNITUDE(float u, float v)
{
    if (std::abs(u) > kNoLength || std::abs(v) > kNoLength) {
        return std::sqrt(u * u + v * v);
    }
    return 0;
}

// --- Regions ---------------------------------------------------------------------------------------------------------

bool isWholeRegion(std::int32_t np, std::span<const std::int32_t> ir, std::int32_t nr)
{
    return walkRings(np, ir, nr, [](std::size_t, std::size_t) {});
}

float POLYGON_AREA(std::span<const double> x, std::span<const double> y)
{
    assert(x.size() == y.size());
    double sum = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const std::size_t j = i == 0 ? x.size() - 1 : i - 1;
        sum += (x[j] + x[i]) * (y[j] - y[i]);
    }
    return std::abs(static_cast<float>(sum)) * 0.5F;
}

// --- Channel sections ------------------------------------------------------------------------------------------------

float CIRCLE_WIDTH(float r, float d)
{
    if (d > 2.0F * r - kNoDepth || d < kNoDepth) {
        return 0;
    }
    return 2.0F * std::sqrt(r * r - (d - r) * (d - r));
}

HydraulicParameters HYD_PARAM(float x1, float z1, float x2, float z2, float level, float factor)
{
    if (factor <= 0) {
        return {};
    }
    const float w = x2 - x1;
    if (level >= z1 && level >= z2) {
        return {w * (level - (z1 + z2) * 0.5F), w, DISTANCE(x1, z1, x2, z2)};
    }
    if (level < z1 && level < z2) {
        return {};
    }
    if (level >= z1) {
        const float f = (level - z1) / (z2 - z1);
        return {f * w * (level - z1) * 0.5F, f * w, DISTANCE(x1, z1, x1 + f * w, level)};
    }
    const float f = (level - z2) / (z1 - z2);
    return {f * w * (level - z2) * 0.5F, f * w, DISTANCE(x2 - f * w, level, x2, z2)};
}

HydraulicHalves HYD_PARAM2(float x1, float z1, float factor1, float x2, float z2, float factor2, float level)
{
    const float xMiddle = (x1 + x2) * 0.5F;
    const float zMiddle = (z1 + z2) * 0.5F;
    return {HYD_PARAM(x1, z1, xMiddle, zMiddle, level, factor1), HYD_PARAM(xMiddle, zMiddle, x2, z2, level, factor2)};
}

// --- Grid axes -------------------------------------------------------------------------------------------------------

void GEO_SHIFT(std::span<const double> x, std::span<const double> y, double x0, double y0, double angle,
               std::span<float> u, std::span<float> v)
{
    assert(y.size() == x.size() && u.size() == x.size() && v.size() == x.size());
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    for (std::size_t i = 0; i < x.size(); ++i) {
        u[i] = static_cast<float>((x[i] - x0) * c + (y[i] - y0) * s);
        v[i] = static_cast<float>((y[i] - y0) * c - (x[i] - x0) * s);
    }
}

SubGridArea SET_SUB_GRID_AREA(std::span<const float> u, std::span<const float> v, float size, std::int32_t rows,
                              std::int32_t columns)
{
    assert(u.size() == v.size());
    if (u.empty()) {
        return {};
    }
    // Adds one after the comparison, because a far coordinate is already at the limit of the integers.
    const auto low = [size](float least, std::int32_t limit) {
        return least < 0 ? 0 : std::min(truncateToInt(least / size), limit) + 1;
    };
    const auto high = [size](float greatest, std::int32_t limit) {
        return std::min(truncateToInt(greatest / size), limit - 1) + 1;
    };
    const auto [umin, umax] = std::minmax_element(u.begin(), u.end());
    const auto [vmin, vmax] = std::minmax_element(v.begin(), v.end());
    SubGridArea area;
    area.umin = *umin;
    area.umax = *umax;
    area.vmin = *vmin;
    area.vmax = *vmax;
    constexpr std::int32_t kNoLimit = INT32_MAX - 1;
    area.iLow = low(area.vmin, kNoLimit);
    area.jLow = low(area.umin, kNoLimit);
    area.iHigh = high(area.vmax, rows);
    area.jHigh = high(area.umax, columns);
    return area;
}

} // namespace gridforge::exports
