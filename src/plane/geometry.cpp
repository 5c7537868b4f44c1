#include "plane/geometry.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

namespace gridforge::inline plane {

namespace {

constexpr float kNoLength = 1e-6F;

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
    if (std::fmod(rest, 90.0) != 0) { // also NaN
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

// --- Points and segments ---------------------------------------------------------------------------------------------

float DISTANCE(float x1, float y1, float x2, float y2)
{
    return length(std::abs(x2 - x1), std::abs(y2 - y1));
}

float DISTANCE_8(double x1, double y1, double x2, double y2)
{
    return length(static_cast<float>(std::abs(x2 - x1)), static_cast<float>(std::abs(y2 - y1)));
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

} // namespace gridforge::inline plane
