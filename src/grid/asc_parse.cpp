// Text runs through in blocks of 64 bytes: bit masks tell where values start and end, and each value becomes a number
// with a handful of vector instructions. What is out of the ordinary goes value by value, and in the end to
// parseNumber.
#include "grid/asc_parse.h"

#include "base/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace gridforge {
namespace {

constexpr int kLargestExactPower = 22; // 10^22 is the last power of ten that a double holds exactly
constexpr std::array<double, kLargestExactPower + 1> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

bool isSeparator(char c)
{
    return c == ' ' || c == ',' || c == '\n' || c == '\t' || c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// A double that lies at most 4 of its last places off the true value rounds to the same float as that value, unless a
// midpoint of two floats is so near. In the last 29 bits, which a float drops, a midpoint reads 1 0000...
inline bool roundsSafely(double value)
{
    constexpr std::uint64_t kDropped = (std::uint64_t{1} << 29) - 1;
    constexpr std::uint64_t kMidpoint = std::uint64_t{1} << 28;
    constexpr std::uint64_t kMargin = 4;
    const auto bits = std::bit_cast<std::uint64_t>(value);
    return ((bits + kMargin - kMidpoint) & kDropped) > 2 * kMargin;
}

inline float withSign(float magnitude, bool negative)
{
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(magnitude) | (negative ? 0x80000000U : 0U));
}

struct Decimal {
    std::uint64_t digits = 0;
    int power = 0; // of ten
    bool negative = false;
};

// A decimal of up to 19 digits; false for all else, be it a number or not.
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

bool parseCell(std::string_view token, float& cell)
{
    Decimal decimal;
    if (plainDecimal(token, decimal) && std::abs(decimal.power) <= kLargestExactPower) {
        const auto power = kPowers[static_cast<std::size_t>(std::abs(decimal.power))];
        const auto digits = static_cast<double>(decimal.digits);
        const double value = decimal.power < 0 ? digits / power : digits * power;
        if (roundsSafely(value) && value < 3e38) {
            cell = withSign(static_cast<float>(value), decimal.negative);
            return true;
        }
    }
    return parseNumber(token, cell);
}

struct Cursor {
    const char* at;
    const char* end;
    bool lastWindow;
};

// One separator or one value.
AscRow step(AscRowState& state, Cursor& text, std::span<float> row)
{
    while (text.at != text.end && (*text.at == ' ' || *text.at == '\t' || *text.at == '\r')) {
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
    if (!parseCell({text.at, valueEnd}, row[state.filled])) {
        return AscRow::failure;
    }
    ++state.filled;
    state.afterValue = true;
    text.at = valueEnd;
    return AscRow::done;
}

#if defined(__SSE2__)

constexpr std::ptrdiff_t kBlock = 64;
constexpr std::ptrdiff_t kLane = 16;

// For each byte of a block a bit.
struct BlockBits {
    std::uint64_t values = 0; // all that is no separator
    std::uint64_t commas = 0;
    std::uint64_t breaks = 0; // commas and line ends
};

inline BlockBits classify(const char* block)
{
    BlockBits bits;
    for (int i = 0; i < 4; ++i) {
        const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(block + i * kLane));
        const __m128i comma = _mm_cmpeq_epi8(text, _mm_set1_epi8(','));
        const __m128i lineBreak = _mm_or_si128(comma, _mm_cmpeq_epi8(text, _mm_set1_epi8('\n')));
        const __m128i blank = _mm_or_si128(
            _mm_cmpeq_epi8(text, _mm_set1_epi8(' ')),
            _mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('\t')), _mm_cmpeq_epi8(text, _mm_set1_epi8('\r'))));
        const auto at = [i](__m128i mask) {
            return std::uint64_t{static_cast<std::uint16_t>(_mm_movemask_epi8(mask))} << (i * kLane);
        };
        bits.commas |= at(comma);
        bits.breaks |= at(lineBreak);
        bits.values |= at(_mm_or_si128(blank, lineBreak));
    }
    bits.values = ~bits.values;
    return bits;
}

// Slid along, these give masks of the last n bytes.
alignas(16) constexpr auto kLastBytes = [] {
    std::array<std::uint8_t, 32> mask{};
    std::fill(mask.begin() + 16, mask.end(), std::uint8_t{0xFF});
    return mask;
}();

// [i] masks the bytes up to the point at byte i; [16], no point, none.
alignas(16) constexpr auto kUpToPoint = [] {
    std::array<std::array<std::uint8_t, 16>, 17> masks{};
    for (std::size_t i = 0; i < 16; ++i) {
        std::fill_n(masks[i].begin(), i + 1, std::uint8_t{0xFF});
    }
    return masks;
}();

// [i] is what 16 digits with the point at byte i are to be divided by.
constexpr auto kPointPowers = [] {
    std::array<double, 17> powers{};
    for (std::size_t i = 0; i < 16; ++i) {
        powers[i] = kPowers[15 - i];
    }
    powers[16] = 1;
    return powers;
}();

// 16 decimal digits, one a byte with the first digit first, as a number.
inline std::uint64_t digitsToNumber(__m128i digits)
{
    const __m128i tens = _mm_mullo_epi16(_mm_and_si128(digits, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10));
    const __m128i twos = _mm_add_epi16(tens, _mm_srli_epi16(digits, 8));
    const __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
    const __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
    const auto halves = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return (halves & 0xFFFFFFFF) * 100000000 + (halves >> 32);
}

// A plain decimal of at most 16 characters behind its sign. Looks at the 16 bytes before `end`. False for all else.
inline bool parseShort(const char* first, const char* end, float& cell)
{
    const bool negative = *first == '-';
    first += negative || *first == '+' ? 1 : 0;
    const std::ptrdiff_t length = end - first;
    if (length > kLane) {
        return false;
    }
    __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(end - kLane));
    text = _mm_sub_epi8(text, _mm_set1_epi8('0'));
    text = _mm_and_si128(text, _mm_loadu_si128(reinterpret_cast<const __m128i*>(kLastBytes.data() + length)));

    // The bytes before the point move up by one, over it. A second point would be left and is no digit.
    const __m128i points = _mm_cmpeq_epi8(text, _mm_set1_epi8('.' - '0'));
    const auto point =
        static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(_mm_movemask_epi8(points)) | 0x10000U));
    const __m128i before = _mm_load_si128(reinterpret_cast<const __m128i*>(kUpToPoint[point].data()));
    const __m128i digits = _mm_or_si128(_mm_and_si128(before, _mm_slli_si128(text, 1)), _mm_andnot_si128(before, text));
    const __m128i overNine = _mm_subs_epu8(digits, _mm_set1_epi8(9));
    const bool allDigits = _mm_movemask_epi8(_mm_cmpeq_epi8(overNine, _mm_setzero_si128())) == 0xFFFF;
    const bool anyDigit = length > (point == 16 ? 0 : 1);

    const double value = static_cast<double>(static_cast<std::int64_t>(digitsToNumber(digits))) / kPointPowers[point];
    cell = withSign(static_cast<float>(value), negative);
    return allDigits && anyDigit && roundsSafely(value);
}

// Whole blocks, as long as they hold nothing but values and their separators. Stops before an empty value, a value
// longer than a block, and where less than a block is left. False when a value is no number.
bool parseBlocks(AscRowState& state, Cursor& text, const char* windowStart, std::span<float> row)
{
    while (text.end - text.at >= kBlock) {
        const BlockBits bits = classify(text.at);
        const std::uint64_t behindValue = bits.values << 1;
        const std::uint64_t emptyAhead = bits.commas & ~behindValue;
        const std::uint64_t plain = emptyAhead == 0 ? ~std::uint64_t{0} : (emptyAhead & (~emptyAhead + 1)) - 1;
        std::uint64_t starts = bits.values & ~behindValue;
        std::uint64_t ends = ~bits.values & behindValue & plain;

        int lastEnd = 0;
        while (ends != 0) {
            const char* const first = text.at + std::countr_zero(starts);
            lastEnd = std::countr_zero(ends);
            const char* const end = text.at + lastEnd;
            float& cell = row[state.filled];
            if (end - windowStart < kLane || !parseShort(first, end, cell)) {
                if (!parseCell({first, end}, cell)) {
                    return false;
                }
            }
            state.afterValue = true;
            if (++state.filled == row.size()) {
                text.at = end;
                return true;
            }
            starts &= starts - 1;
            ends &= ends - 1;
        }

        const std::uint64_t passed = (starts & plain) != 0 ? (starts & (~starts + 1)) - 1 : plain;
        if ((bits.breaks & passed) >> lastEnd != 0) {
            state.afterValue = false;
        }
        const int advance = std::countr_one(passed);
        text.at += advance;
        if (emptyAhead != 0 || advance == 0) {
            return true;
        }
    }
    return true;
}

#else

bool parseBlocks(AscRowState&, Cursor&, const char*, std::span<float>)
{
    return true;
}

#endif

} // namespace

AscRow parseAscRow(AscRowState& state, std::string_view window, bool lastWindow, std::size_t& consumed,
                   std::span<float> row)
{
    Cursor text{window.data(), window.data() + window.size(), lastWindow};
    consumed = 0;
    while (state.filled < row.size()) {
        if (!parseBlocks(state, text, window.data(), row)) {
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

} // namespace gridforge
