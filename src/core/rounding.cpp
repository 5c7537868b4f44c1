#include "core/rounding.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gridforge::inline core {

namespace {

std::int32_t heldAtLimits(double whole)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(whole)) {
        return 0;
    }
    return static_cast<std::int32_t>(
        std::clamp(whole, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

} // namespace

std::int32_t truncateToInt(double value)
{
    return heldAtLimits(std::trunc(value));
}

std::int32_t roundToInt(double value)
{
    return heldAtLimits(std::round(value));
}

std::int32_t ceilToInt(double value)
{
    return heldAtLimits(std::ceil(value));
}

std::int32_t floorToInt(double value)
{
    return heldAtLimits(std::floor(value));
}

} // namespace gridforge::inline core
