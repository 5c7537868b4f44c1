#include "plane/geometry.h"

#include "core/numbers.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace gridforge::inline plane {

namespace {

constexpr float kNoLength = 1e-6F;
constexpr float kNoDepth = 1e-5F;

float length(float dx, float dy)
{
    if (dx < kNoLength && dy < kNoLength) {
        return 0;
    }
    return std::sqrt(dx * dx + dy * dy);
}

template <typename Real>
std::int32_t crossingCode(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real x4, Real y4)
{
    const Real d = (y4 - y3) * (x2 - x1) - (x4 - x3) * (y2 - y1);
    const Real a = (x4 - x3) * (y1 - y3) - (y4 - y3) * (x1 - x3);
    const Real b = (x2 - x1) * (y1 - y3) - (y2 - y1) * (x1 - x3);
    if (d == 0) {
        return a == 0 && b == 0 ? -1 : 0;
    }
    const Real ua = a / d;
    const Real ub = b / d;
    const bool inFirst = ua > 0 && ua <= 1;
    const bool inSecond = ub > 0 && ub <= 1;
    if (inFirst) {
        return inSecond ? 3 : 1;
    }
    return inSecond ? 2 : 4;
}

template <typename Real>
bool crossingPoint(Real x1, Real y1, Real x2, Real y2, Real x3, Real y3, Real x4, Real y4, Real& xi, Real& yi)
{
    const bool firstUpright = x1 == x2;
    const bool secondUpright = x3 == x4;
    if (firstUpright && secondUpright) {
        return false;
    }
    if (firstUpright) {
        const Real m2 = (y4 - y3) / (x4 - x3);
        xi = x1;
        yi = m2 * (xi - x3) + y3;
        return true;
    }
    const Real m1 = (y2 - y1) / (x2 - x1);
    if (secondUpright) {
        xi = x3;
        yi = m1 * (xi - x1) + y1;
        return true;
    }
    const Real m2 = (y4 - y3) / (x4 - x3);
    if (m1 == m2) {
        return false;
    }
    xi = (m2 * x3 - y3 + y1 - m1 * x1) / (m2 - m1);
    yi = m2 * (xi - x3) + y3;
    return true;
}

// The quarter turn that a multiple of 90 degrees stands for, 0 to 3; -1 for other angles.
int quarterTurn(double degrees)
{
    const double rest = std::fmod(degrees, 360.0);
    if (std::fmod(rest, 90.0) != 0) { // also not-a-number
        return -1;
    }
    return (static_cast<int>(rest / 90.0) + 4) % 4;
}

double radians(double degrees)
{
    return degrees * (std::numbers::pi / 180.0);
}

} // namespace

// --- Angles in degrees -----------------------------------------------------------------------------------------------

double sind(double degrees)
{
    constexpr double kSines[] = {0, 1, 0, -1};
    const int quarter = quarterTurn(degrees);
    return quarter >= 0 ? kSines[quarter] : std::sin(radians(degrees));
}

double cosd(double degrees)
{
    constexpr double kCosines[] = {1, 0, -1, 0};
    const int quarter = quarterTurn(degrees);
    return quarter >= 0 ? kCosines[quarter] : std::cos(radians(degrees));
}

double atan2d(double y, double x)
{
    if (y == 0) {
        return x < 0 ? 180.0 : 0.0;
    }
    if (x == 0) {
        return std::copysign(90.0, y);
    }
    return std::atan2(y, x) * (180.0 / std::numbers::pi);
}

float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    // Only the x differences count, so an upright segment has no angle to any other; deliberate.
    constexpr double kLeast = kNoLength;
    if (std::abs(x2 - x1) < kLeast || std::abs(x4 - x3) < kLeast) {
        return 0;
    }
    const auto first = static_cast<float>(atan2d(y2 - y1, x2 - x1));
    const auto second = static_cast<float>(atan2d(y4 - y3, x4 - x3));
    const float angle = std::abs(first - second);
    return angle > 180.0F ? 360.0F - angle : angle;
}

// --- Points and segments ---------------------------------------------------------------------------------------------

float DISTANCE(float x1, float y1, float x2, float y2)
{
    return length(std::abs(x2 - x1), std::abs(y2 - y1));
}

float DISTANCE_8(double x1, double y1, double x2, double y2)
{
    return length(static_cast<float>(std::abs(x2 - x1)), static_cast<float>(std::abs(y2 - y1)));
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

std::int32_t INTERSECT_LINE_V2(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4)
{
    return crossingCode(x1, y1, x2, y2, x3, y3, x4, y4);
}

std::int32_t INTERSECT_LINE_V2_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    return crossingCode(x1, y1, x2, y2, x3, y3, x4, y4);
}

bool INTERSECTION_POINT(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4, float& xi,
                        float& yi)
{
    return crossingPoint(x1, y1, x2, y2, x3, y3, x4, y4, xi, yi);
}

bool INTERSECTION_POINT_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
                          double& xi, double& yi)
{
    return crossingPoint(x1, y1, x2, y2, x3, y3, x4, y4, xi, yi);
}

float VECTOR_MAGNITUDE(float u, float v)
{
    if (std::abs(u) > kNoLength || std::abs(v) > kNoLength) {
        return std::sqrt(u * u + v * v);
    }
    return 0;
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
    // One is added behind the comparison, since a far coordinate already stands at the limit of the integers.
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

} // namespace gridforge::inline plane
