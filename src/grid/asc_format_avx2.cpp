// Formats four values of up to 8 digits at a time and moves the digits to their places in the fields.
#include "grid/asc_format_avx2.h"

#if defined(__x86_64__)

#include "grid/asc_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <immintrin.h>

namespace gridforge::grid {
namespace {

constexpr std::int32_t kLane = 16;
constexpr std::int32_t kLaneDigits = 8;
constexpr std::array<double, kLaneDigits + 1> kPowersOfDigits = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};

// A field of up to 16 characters is the sum of two vectors: the digits at their places, and the characters that the
// field has when all its digits are 0, which depend on the sign and on the number of leading zeros.
struct FieldLayout {
    __m128i places[2];              // from the digits of the first and of the second value in a vector
    __m128i ground[2][kLaneDigits]; // [negative][leading zeros]
    std::uint32_t unitDigits = 0;   // the bit of the units digit in each 8, where leading zeros end at the latest
    double largest = 0;             // scaled values up to here fit, in 8 digits and in the field
};

FieldLayout fieldLayout(std::int32_t width, std::int32_t decimals)
{
    FieldLayout layout;
    const std::int32_t point = width - 1 - decimals;
    const std::int32_t wholeDigits = kLaneDigits - decimals;

    alignas(16) std::array<std::int8_t, kLane> places[2];
    for (std::int32_t i = 0; i < kLane; ++i) {
        const std::int32_t digit = i < point ? i - (point - wholeDigits) : i - point - 1 + wholeDigits;
        const bool holdsDigit = i != point && digit >= 0 && digit < kLaneDigits;
        places[0][static_cast<std::size_t>(i)] = static_cast<std::int8_t>(holdsDigit ? digit : -1);
        places[1][static_cast<std::size_t>(i)] = static_cast<std::int8_t>(holdsDigit ? digit + kLaneDigits : -1);
    }
    alignas(16) std::array<std::array<char, kLane>, kLaneDigits> ground[2];
    for (std::int32_t zeros = 0; zeros < kLaneDigits; ++zeros) {
        const std::int32_t first = std::max(point - wholeDigits + zeros, 1);
        auto& positive = ground[0][static_cast<std::size_t>(zeros)];
        positive.fill('0');
        std::fill_n(positive.begin(), std::min(first, kLane), ' ');
        positive[static_cast<std::size_t>(point)] = '.';
        auto& negative = ground[1][static_cast<std::size_t>(zeros)];
        negative = positive;
        negative[static_cast<std::size_t>(std::min(first, kLane) - 1)] = '-';
    }
    std::memcpy(layout.places, places, sizeof(places));
    std::memcpy(layout.ground, ground, sizeof(ground));

    layout.unitDigits = 0x01010101U << (wholeDigits - 1);
    layout.largest = kPowersOfDigits[static_cast<std::size_t>(std::min(kLaneDigits, width - 2))] - 1;
    return layout;
}

// The 8 decimal digits of each of four numbers below 10^8, first digit in the lowest byte: halves by halves of digits.
GRIDFORGE_AVX2 inline __m256i eightDigits(__m256i numbers)
{
    const __m256i fours = _mm256_srli_epi64(_mm256_mul_epu32(numbers, _mm256_set1_epi64x(0xD1B71759)), 45); // by 10000
    const __m256i lowFours = _mm256_sub_epi64(numbers, _mm256_mul_epu32(fours, _mm256_set1_epi64x(10000)));
    const __m256i packedFours = _mm256_or_si256(fours, _mm256_slli_epi64(lowFours, 32));

    const __m256i twos = _mm256_srli_epi16(_mm256_mulhi_epu16(packedFours, _mm256_set1_epi32(5243)), 3); // by 100
    const __m256i lowTwos = _mm256_sub_epi16(packedFours, _mm256_mullo_epi16(twos, _mm256_set1_epi32(100)));
    const __m256i packedTwos = _mm256_or_si256(twos, _mm256_slli_epi32(lowTwos, 16));

    const __m256i ones = _mm256_srli_epi16(_mm256_mullo_epi16(packedTwos, _mm256_set1_epi16(103)), 10); // by 10
    const __m256i lowOnes = _mm256_sub_epi16(packedTwos, _mm256_mullo_epi16(ones, _mm256_set1_epi16(10)));
    return _mm256_or_si256(ones, _mm256_slli_epi16(lowOnes, 8));
}

// Writes four fields, 16 bytes each, from left to right: the next field overwrites the excess bytes of the last.
GRIDFORGE_AVX2 inline char* storeFour(const FieldLayout& layout, __m256i digits, unsigned negatives, std::int32_t width,
                                      char* out)
{
    const auto zeros = static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(digits, _mm256_setzero_si256())));
    const unsigned firstDigits = ~zeros | layout.unitDigits;
    const __m128i pairs[2] = {_mm256_castsi256_si128(digits), _mm256_extracti128_si256(digits, 1)};
    for (unsigned i = 0; i < 4; ++i) {
        const int leading = std::countr_zero(firstDigits >> (8 * i));
        const __m128i field = _mm_add_epi8(_mm_shuffle_epi8(pairs[i / 2], layout.places[i % 2]),
                                           layout.ground[negatives >> i & 1][leading]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), field);
        out += width;
    }
    return out;
}

} // namespace

bool fitsFourAbreast(std::int32_t width, std::int32_t decimals)
{
    return width <= kLane && decimals < kLaneDigits && width >= decimals + 3;
}

GRIDFORGE_AVX2 void formatFourAbreast(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out)
{
    const FieldLayout layout = fieldLayout(width, decimals);
    const __m256d power = _mm256_set1_pd(kPowersOfDigits[static_cast<std::size_t>(decimals)]);
    const __m256d largest = _mm256_set1_pd(layout.largest);
    const __m256d signBit = _mm256_set1_pd(-0.0);

    // The 16 bytes of the last field of a four must not reach beyond the row.
    const std::size_t spare = static_cast<std::size_t>(kLane) / static_cast<std::size_t>(width);
    std::size_t i = 0;
    for (; i + 4 + spare <= row.size(); i += 4) {
        const __m128 values = _mm_loadu_ps(row.data() + i);
        const __m256d scaled = _mm256_mul_pd(_mm256_andnot_pd(signBit, _mm256_cvtps_pd(values)), power);
        if (_mm256_movemask_pd(_mm256_cmp_pd(scaled, largest, _CMP_LE_OQ)) != 0xF) {
            formatAscFields(row.subspan(i, 4), width, decimals, out);
            out += std::ptrdiff_t{4} * width;
            continue;
        }
        const __m256i digits = eightDigits(_mm256_cvtepu32_epi64(_mm256_cvtpd_epi32(scaled)));
        out = storeFour(layout, digits, static_cast<unsigned>(_mm_movemask_ps(values)), width, out);
    }
    formatAscFields(row.subspan(i), width, decimals, out);
}

} // namespace gridforge::grid

#else

namespace gridforge::grid {

bool fitsFourAbreast(std::int32_t, std::int32_t)
{
    return false;
}

void formatFourAbreast(std::span<const float>, std::int32_t, std::int32_t, char*) {}

} // namespace gridforge::grid

#endif
