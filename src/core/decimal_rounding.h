// When a double that is nearly a decimal may be rounded to single precision for it.
#pragma once

#include <bit>
#include <cstdint>

namespace gridforge::inline core {

// A double that lies at most 4 of its last places off the true value rounds to the same float as that value, unless a
// midpoint of two floats is so near. In the last 29 bits, which a float drops, a midpoint reads 1 0000...
inline constexpr std::int64_t kDroppedBits = (std::int64_t{1} << 29) - 1;
inline constexpr std::int64_t kMidpoint = std::int64_t{1} << 28;
inline constexpr std::int64_t kRoundingMargin = 4;

inline bool roundsSafely(double value)
{
    const auto bits = std::bit_cast<std::int64_t>(value);
    return ((bits + kRoundingMargin - kMidpoint) & kDroppedBits) > 2 * kRoundingMargin;
}

} // namespace gridforge::inline core
