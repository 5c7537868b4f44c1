// A real is an integer of 53 bits times a power of two. Times a power of ten it fits into 128 bits, so what is cut off is known
// exactly, and the value is rounded once.
#include "core/fixed_digits.h"

#include <bit>
#include <limits>

namespace gridforge::inline core {

namespace {

constexpr int kMantissaBits = 52;
constexpr int kExponentOfOne = 1023 + kMantissaBits; // of the mantissa as an integer
constexpr std::uint64_t kMostScaled = 999'999'999'999'999'999;

struct Binary {
    std::uint64_t mantissa = 0;
    int shift = 0; // the value is mantissa / 2^shift
    bool negative = false;
};

Binary binaryOf(double value)
{
    constexpr std::uint64_t kHidden = std::uint64_t{1} << kMantissaBits;
    constexpr std::uint64_t kExponentMask = 0x7ff;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const auto exponent = static_cast<int>((bits >> kMantissaBits) & kExponentMask);
    const std::uint64_t fraction = bits & (kHidden - 1);
    const bool isNormal = exponent != 0;
    return {isNormal ? fraction | kHidden : fraction, kExponentOfOne - (isNormal ? exponent : 1), (bits >> 63) != 0};
}

// The integer nearest to mantissa * power / 2^shift, ties to even; more than kMostScaled if it is too large.
std::uint64_t scaled(const Binary& value, std::uint64_t power)
{
    __extension__ using Wide = unsigned __int128;
    constexpr int kProductBits = 53 + 40; // 10^12 has 40
    if (value.shift <= 0) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    if (value.shift > kProductBits) {
        return 0; // less than a half
    }
    const Wide product = Wide{value.mantissa} * power;
    const Wide whole = product >> value.shift;
    if (whole > kMostScaled) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    const Wide rest = product - (whole << value.shift);
    const Wide half = Wide{1} << (value.shift - 1);
    const auto kept = static_cast<std::uint64_t>(whole);
    const bool up = rest > half || (rest == half && kept % 2 != 0);
    return up ? kept + 1 : kept;
}

} // namespace

std::string_view fixedDigits(double value, int decimals, FixedRoom& room)
{
    if (decimals < 0 || decimals > kMostScaledDecimals) {
        return {};
    }
    const std::uint64_t power = kPowersOfTen[static_cast<std::size_t>(decimals)];
    const Binary binary = binaryOf(value);
    const std::uint64_t digits = scaled(binary, power);
    if (digits > kMostScaled) {
        return {};
    }
    const std::uint64_t whole = digits / power;
    char* const end = room.data() + room.size();
    char* begin = writeDigits(digits - whole * power, decimals, end);
    *--begin = '.';
    begin = writeDigits(whole, 1, begin);
    if (binary.negative) {
        *--begin = '-';
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

} // namespace gridforge::inline core
