// Value by value: a plain decimal is scaled by a power of ten, anything else goes to parseNumber.
#include "grid/asc_parse.h"

#include "core/byte_classes.h"
#include "core/decimal_rounding.h"
#include "core/free_form.h"
#include "core/simd.h"
#include "grid/asc_parse_avx2.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace gridforge::grid {
namespace {

float withSign(float magnitude, bool negative)
{
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (negative ? 0x80000000U : 0U));
}

struct Decimal {
    std::uint64_t digits = 0;
    int power = 0; // of ten
    bool negative = false;
};

// Reads a decimal of up to 19 digits; false for anything else, also for other numbers.
bool plainDecimal(std::string_view token, Decimal& decimal)
{
    constexpr int kDigits = 19;

    const char* at = token.data();
    const char* const end = at + token.size();
    if (at != end && (*at == '-' || *at == '+')) {
        decimal.negative = *at == '-';
        ++at;
    }
    bool point = false;
    int count = 0;
    for (; at != end && (isDigit(*at) || (*at == '.' && !point)); ++at) {
        if (*at == '.') {
            point = true;
            continue;
        }
        decimal.digits = decimal.digits * 10 + static_cast<std::uint64_t>(*at - '0');
        decimal.power -= point ? 1 : 0;
        if (++count > kDigits) {
            return false;
        }
    }
    if (at == end) {
        return count > 0;
    }

    const bool exponent = *at == 'e' || *at == 'E' || *at == 'd' || *at == 'D';
    if (!exponent || count == 0 || ++at == end) {
        return false;
    }
    const bool down = *at == '-';
    if (down || *at == '+') {
        ++at;
    }
    int shift = 0;
    const char* const first = at;
    for (; at != end && isDigit(*at) && shift < 1000; ++at) {
        shift = shift * 10 + (*at - '0');
    }
    decimal.power += down ? -shift : shift;
    return at == end && at != first;
}

} // namespace

bool parseAscCell(std::string_view token, float& cell)
{
    Decimal decimal;
    if (plainDecimal(token, decimal) && std::abs(decimal.power) <= kLargestExactPower) {
        const auto power = kExactPowers[static_cast<std::size_t>(std::abs(decimal.power))];
        const auto digits = static_cast<double>(decimal.digits);
        const double value = decimal.power < 0 ? digits / power : digits * power;
        if (roundsSafely(value) && value < 3e38) {
            cell = withSign(static_cast<float>(value), decimal.negative);
            return true;
        }
    }
    return parseNumber(token, cell);
}

namespace {

// One separator or one value.
AscRow step(AscRowState& state, AscCursor& text, std::span<float> row)
{
    while (text.at != text.end && (isBlank(*text.at) || *text.at == '\r')) {
        ++text.at;
    }
    if (text.at == text.end) {
        return text.lastWindow ? AscRow::failure : AscRow::more;
    }
    if (*text.at == ',' || *text.at == '\n') {
        const bool empty = *text.at == ',' && !state.afterValue;
        state.filled += empty ? 1 : 0;
        state.afterValue = false;
        ++text.at;
        return AscRow::done;
    }
    const char* const valueEnd = std::find_if(text.at, text.end, isSeparator);
    if (valueEnd == text.end && !text.lastWindow) {
        return AscRow::more;
    }
    if (!parseAscCell({text.at, valueEnd}, row[state.filled])) {
        return AscRow::failure;
    }
    ++state.filled;
    state.afterValue = true;
    text.at = valueEnd;
    return AscRow::done;
}

} // namespace

AscRow parseAscRow(AscRowState& state, std::string_view window, bool lastWindow, std::size_t& consumed,
                   std::span<float> row)
{
    AscCursor text{window.data(), window.data() + window.size(), lastWindow};
    const bool blocks = hasAvx2();
    consumed = 0;
    while (state.filled < row.size()) {
        if (blocks && !parseAscBlocks(state, text, window.data(), row)) {
            return AscRow::failure;
        }
        if (state.filled == row.size()) {
            break;
        }
        const AscRow progress = step(state, text, row);
        if (progress != AscRow::done) {
            consumed = static_cast<std::size_t>(text.at - window.data());
            return progress;
        }
    }

    const auto left = static_cast<std::size_t>(text.end - text.at);
    const void* const lineEnd = left == 0 ? nullptr : std::memchr(text.at, '\n', left);
    if (lineEnd == nullptr) {
        consumed = window.size();
        return lastWindow ? AscRow::done : AscRow::more;
    }
    consumed = static_cast<std::size_t>(static_cast<const char*>(lineEnd) - window.data()) + 1;
    return AscRow::done;
}

} // namespace gridforge::grid
