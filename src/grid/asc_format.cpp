// A 32-bit value times a power of ten up to 10^12 is exact in double (24 and 28 bits), so the value is rounded once, when
// that product becomes an integer, and the digits of the integer are those of the text. Anything else goes to realField.
#include "grid/asc_format.h"

#include "core/fixed_digits.h"
#include "core/number_text.h"
#include "core/simd.h"
#include "grid/asc_format_avx2.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>

namespace gridforge::grid {
namespace {

// Writes a field by scaling. False, with nothing written, if the value is too large for that or too long for the field.
bool formatScaled(float value, std::int32_t width, std::int32_t decimals, char* out)
{
    constexpr double kRounder = 0x1.8p52; // sums with it have no room for a fraction
    constexpr double kLargest = 0x1p51;
    constexpr std::int32_t kMostDigits = 16;

    const std::uint64_t power = kPowersOfTen[static_cast<std::size_t>(decimals)];
    const double scaled = std::abs(static_cast<double>(value)) * static_cast<double>(power);
    if (!(scaled < kLargest)) {
        return false;
    }
    const auto rounded = static_cast<std::uint64_t>((scaled + kRounder) - kRounder);
    const std::uint64_t whole = rounded / power;
    const std::uint64_t fraction = rounded - whole * power;

    std::array<char, kMostDigits + 2> text; // a sign, the digits and the point
    char* const end = text.data() + text.size();
    char* begin = writeDigits(fraction, decimals, end);
    *--begin = '.';
    begin = writeDigits(whole, 1, begin);
    if (std::signbit(value)) {
        *--begin = '-';
    }
    const auto length = end - begin;
    assert(length <= std::ssize(text));
    if (length > width) {
        return false;
    }
    std::memset(out, ' ', static_cast<std::size_t>(width - length));
    std::memcpy(out + (width - length), begin, static_cast<std::size_t>(length));
    return true;
}

} // namespace

void formatAscFields(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out)
{
    for (const float value : row) {
        if (decimals > kMostScaledDecimals || !formatScaled(value, width, decimals, out)) {
            const std::string field = realField(static_cast<double>(value), width, decimals);
            std::memcpy(out, field.data(), std::min(field.size(), static_cast<std::size_t>(width)));
        }
        out += width;
    }
}

void formatAscRow(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out)
{
    if (width <= 0) {
        return;
    }
    decimals = std::max(decimals, 0);
    if (hasAvx2() && fitsFourAbreast(width, decimals)) {
        formatFourAbreast(row, width, decimals, out);
    } else {
        formatAscFields(row, width, decimals, out);
    }
}

ValueRange findExtremes(std::span<const float> cells, const ValueRange& before)
{
    // Comparisons with NaN are false, so it never gets in. Several lanes, because one would wait for its last
    // comparison.
    constexpr std::size_t kLanes = 32;
    std::array<float, kLanes> smallest;
    std::array<float, kLanes> largest;
    smallest.fill(before.any ? before.smallest : std::numeric_limits<float>::infinity());
    largest.fill(before.any ? before.largest : -std::numeric_limits<float>::infinity());
    std::size_t i = 0;
    for (; i + kLanes <= cells.size(); i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) {
            const float cell = cells[i + lane];
            smallest[lane] = cell < smallest[lane] ? cell : smallest[lane];
            largest[lane] = cell > largest[lane] ? cell : largest[lane];
        }
    }
    for (; i < cells.size(); ++i) {
        smallest[0] = cells[i] < smallest[0] ? cells[i] : smallest[0];
        largest[0] = cells[i] > largest[0] ? cells[i] : largest[0];
    }
    ValueRange found;
    found.smallest = *std::min_element(smallest.begin(), smallest.end());
    found.largest = *std::max_element(largest.begin(), largest.end());
    found.any = found.smallest <= found.largest;
    return found.any ? found : ValueRange{};
}

ValueRange joined(const ValueRange& first, const ValueRange& second)
{
    if (!first.any || !second.any) {
        return first.any ? first : second;
    }
    return {std::min(first.smallest, second.smallest), std::max(first.largest, second.largest), true};
}

} // namespace gridforge::grid
