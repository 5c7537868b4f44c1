// Decimals by doubles: exact powers of ten, and when a double that is nearly a decimal may be rounded to single precision for it.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace gridforge::inline core {

inline constexpr int kLargestExactPower = 22; // 10^22 is the last power of ten that a double holds exactly
inline constexpr std::array<double, kLargestExactPower + 1> kExactPowers = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

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
