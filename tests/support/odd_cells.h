// Cells for the tests of kernels: random values with ties, nulls and what lies next to them.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <random>
#include <span>
#include <vector>

namespace gridforge::test {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

// Small whole and broken numbers, many of them equal, and every few cells `null` or a neighbour of it.
inline std::vector<float> tiedCells(std::size_t count, float null, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<float> cells(count);
    for (float& cell : cells) {
        const auto kind = random() % 12;
        const float number = static_cast<float>(random() % 9) - 3.0F;
        cell = kind < 2    ? null
               : kind == 2 ? std::nextafter(null, 1.0e30F)
               : kind == 3 ? std::nextafter(null, -1.0e30F)
               : kind == 4 ? null + 0.01F
               : kind == 5 ? number * 0.3F
                           : number;
    }
    return cells;
}

// The same with cells that are no number, infinite, very large or next to zero among them.
inline std::vector<float> oddCells(std::size_t count, float null, std::uint32_t seed)
{
    using Limits = std::numeric_limits<float>;
    constexpr float kOdd[] = {kNaN,
                              kInfinity,
                              -kInfinity,
                              9.0e29F,
                              1.0e30F,
                              8.9e29F,
                              -0.0F,
                              0.0F,
                              3.4e38F,
                              -3.4e38F,
                              Limits::max(),
                              Limits::lowest(),
                              Limits::min(),
                              1.0e-40F,
                              -1.0e-40F,
                              Limits::denorm_min(),
                              -Limits::denorm_min()};
    std::mt19937 random(seed + 1);
    std::vector<float> cells = tiedCells(count, null, seed);
    for (float& cell : cells) {
        if (random() % 5 == 0) {
            cell = kOdd[random() % std::size(kOdd)];
        }
    }
    return cells;
}

// Nulls of grids that hold such cells: an ordinary one, a zero, which both zeros equal, an infinite one, one that nothing
// equals, and one as small as can be.
inline constexpr float kOddNulls[] = {-9999.0F, -0.0F, kInfinity, kNaN, std::numeric_limits<float>::lowest()};

// Values by their bits, so that equal means the same and not a number equals itself.
inline std::uint32_t bitsOfValue(float value)
{
    return value != value ? 0x7FC00000U : std::bit_cast<std::uint32_t>(value);
}

inline std::vector<std::uint32_t> bitsOf(const std::vector<float>& values)
{
    std::vector<std::uint32_t> bits;
    for (const float value : values) {
        bits.push_back(bitsOfValue(value));
    }
    return bits;
}

// A not-a-number that no processor makes by itself.
inline const float kOddNaN = std::bit_cast<float>(0xffc12345U);
// As many cells as fill vectors and leave a rest.
inline constexpr std::size_t kVectorsAndRest = 37;

// Do all values hold the bits of the one not-a-number that outputs hold?
inline bool allQuietNaN(std::span<const float> values)
{
    return !values.empty() &&
           std::ranges::all_of(values, [](float value) { return std::bit_cast<std::uint32_t>(value) == 0x7fc00000U; });
}

} // namespace gridforge::test
