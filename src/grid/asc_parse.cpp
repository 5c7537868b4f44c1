// Text runs through in blocks of 64 bytes: bit masks tell where values start and end, and each value becomes a number
// with a handful of vector instructions. What is out of the ordinary goes value by value, and in the end to
// parseNumber.
#include "grid/asc_parse.h"

#include "core/decimal_lanes.h"
#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
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

float withSign(float magnitude, bool negative)
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

#if defined(__x86_64__)

constexpr std::size_t kBlock = 64;
constexpr std::size_t kBatch = 1024; // values found before they are converted: few enough to stay in the nearest cache

// The values of a piece of text: where they end, in bytes from its start, and how long they are.
struct ValueIndex {
    std::size_t count = 0;
    std::array<std::uint32_t, kBatch + kBlock> ends; // a block may go past the batch
    std::array<std::uint32_t, kBatch + kBlock> lengths;
};

// For each byte of a block a bit.
struct BlockBits {
    std::uint64_t values; // all that is no separator
    std::uint64_t commas;
    std::uint64_t breaks; // commas and line ends
};

__attribute__((target("avx2,bmi"))) inline BlockBits classify(const char* block)
{
    BlockBits bits = {};
    for (unsigned i = 0; i < 2; ++i) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + std::size_t{32} * i));
        const __m256i comma = _mm256_cmpeq_epi8(text, _mm256_set1_epi8(','));
        const __m256i lineBreak = _mm256_or_si256(comma, _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\n')));
        const __m256i tab = _mm256_or_si256(_mm256_cmpeq_epi8(text, _mm256_set1_epi8('\t')),
                                            _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\r')));
        const __m256i blank = _mm256_or_si256(_mm256_cmpeq_epi8(text, _mm256_set1_epi8(' ')), tab);
        const __m256i separator = _mm256_or_si256(blank, lineBreak);
        bits.commas |= std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(comma))} << (32 * i);
        bits.breaks |= std::uint64_t{static_cast<std::uint32_t>(_mm256_movemask_epi8(lineBreak))} << (32 * i);
        bits.values |= std::uint64_t{static_cast<std::uint32_t>(~_mm256_movemask_epi8(separator))} << (32 * i);
    }
    return bits;
}

// Eight at once without looking how many there are, because a loop whose end cannot be foreseen costs more than that.
__attribute__((target("avx2,bmi"))) inline void addToIndex(ValueIndex& index, std::uint64_t starts, std::uint64_t ends,
                                                           std::uint32_t block)
{
    std::uint32_t* end = index.ends.data() + index.count;
    std::uint32_t* length = index.lengths.data() + index.count;
    index.count += static_cast<std::size_t>(std::popcount(ends));
    do {
        for (int i = 0; i < 8; ++i) {
            const auto endBit = static_cast<std::uint32_t>(_tzcnt_u64(ends));
            *end++ = block + endBit;
            *length++ = endBit - static_cast<std::uint32_t>(_tzcnt_u64(starts));
            starts = _blsr_u64(starts);
            ends = _blsr_u64(ends);
        }
    } while (ends != 0);
}

// Finds values in whole blocks of `text` until `most` are found, or an empty value stands ahead, or a value that is longer
// than a block, or the text ends. Returns how far it came.
__attribute__((target("avx2,bmi"))) std::size_t findValues(std::string_view text, std::size_t most, bool& afterValue,
                                                           ValueIndex& index)
{
    index.count = 0;
    std::size_t at = 0;
    while (text.size() - at >= kBlock && index.count < most) {
        const BlockBits bits = classify(text.data() + at);
        const std::uint64_t behindValue = bits.values << 1;
        const std::uint64_t emptyAhead = bits.commas & ~behindValue;
        const std::uint64_t plain = emptyAhead == 0 ? ~std::uint64_t{0} : (emptyAhead & (~emptyAhead + 1)) - 1;
        const std::uint64_t starts = bits.values & ~behindValue & plain;
        const std::uint64_t ends = ~bits.values & behindValue & plain;
        addToIndex(index, starts, ends, static_cast<std::uint32_t>(at));

        // Whichever comes last, the end of a value or a break, which may be at that end.
        const std::uint64_t breaks = bits.breaks & plain;
        if ((ends | breaks) != 0) {
            afterValue = (ends & ~breaks) > breaks;
        }
        // A value that goes on behind the block is left to the next one, which begins with it.
        const bool cut = emptyAhead == 0 && bits.values >> (kBlock - 1) != 0;
        const int advance = cut ? 63 - std::countl_zero(starts) : std::countr_one(plain);
        at += static_cast<std::size_t>(advance);
        if (emptyAhead != 0 || advance == 0) {
            break;
        }
    }
    if (index.count >= most) {
        index.count = most;
        at = index.ends[most - 1];
        afterValue = true;
    }
    return at;
}

// Four plain decimals of at most 16 characters. Looks at the 16 bytes before each end. False when one is something else.
__attribute__((target("avx2,bmi"))) inline bool convertFour(const char* text, const std::uint32_t* ends,
                                                            const std::uint32_t* lengths, float* cells)
{
    if (std::max(std::max(lengths[0], lengths[1]), std::max(lengths[2], lengths[3])) > kLane) {
        return false;
    }
    return storeFloats(decimalQuad({text + ends[0], text + ends[1], text + ends[2], text + ends[3]},
                                   {lengths[0], lengths[1], lengths[2], lengths[3]}),
                       cells);
}

// Values `first` to `first + count` of the index, at most four, into cells. False when one is no number.
__attribute__((target("avx2,bmi"))) inline bool convertSome(const char* text, const ValueIndex& index,
                                                            std::size_t first, std::size_t count, float* cells)
{
    if (convertFour(text, index.ends.data() + first, index.lengths.data() + first, cells)) {
        return true;
    }
    for (std::size_t i = first; i < first + count; ++i) {
        if (!parseCell({text + index.ends[i] - index.lengths[i], index.lengths[i]}, cells[i - first])) {
            return false;
        }
    }
    return true;
}

// The indexed values of `text` into as many cells. False when one is no number.
__attribute__((target("avx2,bmi"))) bool convertValues(const char* text, ValueIndex& index, std::span<float> cells)
{
    std::size_t i = 0;
    for (; i + 4 <= index.count; i += 4) {
        if (!convertSome(text, index, i, 4, cells.data() + i)) {
            return false;
        }
    }
    if (i == index.count) {
        return true;
    }
    // The last four are filled up with the last value.
    const std::size_t count = index.count - i;
    std::fill_n(index.ends.begin() + static_cast<std::ptrdiff_t>(index.count), 3, index.ends[index.count - 1]);
    std::fill_n(index.lengths.begin() + static_cast<std::ptrdiff_t>(index.count), 3, index.lengths[index.count - 1]);
    std::array<float, 4> four;
    const bool good = convertSome(text, index, i, count, four.data());
    std::copy_n(four.begin(), count, cells.begin() + static_cast<std::ptrdiff_t>(i));
    return good;
}

// Values out of whole blocks, as far as there is nothing but values and their separators. False when one is no number.
__attribute__((target("avx2,bmi"))) bool parseBlocks(AscRowState& state, Cursor& text, const char* windowStart,
                                                     std::span<float> row)
{
    ValueIndex index;
    while (static_cast<std::size_t>(text.end - text.at) >= kBlock && state.filled < row.size()) {
        // At the head of a window the lanes would reach before it, so the first block is copied.
        std::array<char, kLane + kBlock> head;
        std::string_view piece(text.at, static_cast<std::size_t>(text.end - text.at));
        if (text.at - windowStart < static_cast<std::ptrdiff_t>(kLane)) {
            std::memcpy(head.data() + kLane, text.at, kBlock);
            piece = {head.data() + kLane, kBlock};
        }
        const std::size_t most = std::min(row.size() - state.filled, kBatch);
        const std::size_t advance = findValues(piece, most, state.afterValue, index);
        if (index.count > 0 && !convertValues(piece.data(), index, row.subspan(state.filled, index.count))) {
            return false;
        }
        state.filled += index.count;
        text.at += advance;
        if (advance == 0) {
            break;
        }
    }
    return true;
}

bool hasBlocks()
{
    return hasDecimalLanes();
}

#else

bool parseBlocks(AscRowState&, Cursor&, const char*, std::span<float>)
{
    return true;
}

bool hasBlocks()
{
    return false;
}

#endif

} // namespace

AscRow parseAscRow(AscRowState& state, std::string_view window, bool lastWindow, std::size_t& consumed,
                   std::span<float> row)
{
    Cursor text{window.data(), window.data() + window.size(), lastWindow};
    const bool blocks = hasBlocks();
    consumed = 0;
    while (state.filled < row.size()) {
        if (blocks && !parseBlocks(state, text, window.data(), row)) {
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
