// Reals in fixed notation in a small buffer, by integers alone: layers, tables and text grids have millions of them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace gridforge::inline core {

inline constexpr auto kDigitPairs = [] {
    std::array<char, 200> pairs{};
    for (std::size_t i = 0; i < 100; ++i) {
        pairs[2 * i] = static_cast<char>('0' + i / 10);
        pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return pairs;
}();

inline constexpr int kMostScaledDecimals = 12;
inline constexpr std::array<std::uint64_t, kMostScaledDecimals + 1> kPowersOfTen = {
    1,        10,        100,        1000,        10000,        100000,       1000000,
    10000000, 100000000, 1000000000, 10000000000, 100000000000, 1000000000000};

// Writes the digits of `value`, at least `least` of them, so that they end at `end`; returns where they begin.
inline char* writeDigits(std::uint64_t value, int least, char* end)
{
    char* at = end;
    while (value >= 100) {
        at -= 2;
        std::memcpy(at, kDigitPairs.data() + 2 * (value % 100), 2);
        value /= 100;
    }
    if (value >= 10) {
        at -= 2;
        std::memcpy(at, kDigitPairs.data() + 2 * value, 2);
    } else if (value > 0) {
        *--at = static_cast<char>('0' + value);
    }
    while (end - at < least) {
        *--at = '0';
    }
    return at;
}

using FixedRoom = std::array<char, 32>;

// The value with `decimals` decimals and at least one digit before the point, which always stands, rounded exactly with ties to
// even. The text lies in `room`. Empty if the value is no number or has more than 18 digits, or if `decimals` is not 0 to 12.
std::string_view fixedDigits(double value, int decimals, FixedRoom& room);

} // namespace gridforge::inline core
