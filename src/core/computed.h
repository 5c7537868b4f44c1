// Computed values that must not depend on the processor or on how the compiler arranged a loop.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace gridforge::inline core {

// Processors differ in the sign and the lower bits of what they return for 0 / 0 and the like. Outputs hold these bits.
inline constexpr auto kNotANumber = std::bit_cast<float>(std::uint32_t{0x7fc00000});
inline constexpr auto kNotANumber8 = std::bit_cast<double>(std::uint64_t{0x7ff8000000000000});

// A computed value as outputs hold it. It has no branch, so loops that call it still vectorise. Values that are only
// copied keep their bits and do not pass through here.
inline float stored(float computed)
{
    return std::isnan(computed) ? kNotANumber : computed;
}

inline double stored(double computed)
{
    return std::isnan(computed) ? kNotANumber8 : computed;
}

// A power in double, rounded once to single. The square of a single is exact in double, so the product of singles, which
// is much faster, has the same bits.
inline float power(float base, float exponent)
{
    return exponent == 2.0F ? base * base
                            : static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}

} // namespace gridforge::inline core
