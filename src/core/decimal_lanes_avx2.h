// Reads plain decimals, four at a time: an optional minus, digits and at most one point in at most 16 characters. Any
// other value is refused here and goes to parseNumber.
#pragma once

#include "core/simd.h"

#if defined(__x86_64__)

#include "core/decimal_rounding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace gridforge::inline core {

inline constexpr std::size_t kLane = 16;

namespace lanes {

// Slid along, these give masks of the last n bytes.
alignas(16) inline constexpr auto kLastBytes = [] {
    std::array<std::uint8_t, 1 + 2 * kLane> mask{};
    std::fill(mask.begin() + 1 + kLane, mask.end(), std::uint8_t{0xFF});
    return mask;
}();

// [i] moves the bytes before the point at byte i up by one, over the point; [16] moves nothing.
alignas(16) inline constexpr auto kOverPoint = [] {
    std::array<std::array<std::uint8_t, kLane>, kLane + 1> moves{};
    for (std::size_t i = 0; i <= kLane; ++i) {
        for (std::size_t k = 0; k < kLane; ++k) {
            const bool moved = i < kLane && k <= i;
            moves[i][k] = moved ? (k == 0 ? 0x80 : static_cast<std::uint8_t>(k - 1)) : static_cast<std::uint8_t>(k);
        }
    }
    return moves;
}();

// [i] divides 16 digits whose point was at byte i.
inline constexpr std::array<double, kLane + 1> kPointPowers = {1e15, 1e14, 1e13, 1e12, 1e11, 1e10, 1e9, 1e8, 1e7,
                                                               1e6,  1e5,  1e4,  1e3,  1e2,  1e1,  1,   1};

GRIDFORGE_AVX2 inline __m256i loadPair(const void* low, const void* high)
{
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(low))),
                                   _mm_loadu_si128(static_cast<const __m128i*>(high)), 1);
}

// Two values at the ends of two lanes: their digits without sign and point, and where these were.
struct DigitPair {
    __m256i digits;
    __m256i minus;    // not 0 in the lane of a negative value
    __m256i anyDigit; // 0 in a lane without a digit
    std::size_t points[2];
};

GRIDFORGE_AVX2 inline DigitPair digitPair(const char* end0, std::size_t length0, const char* end1, std::size_t length1)
{
    const std::uint8_t* const mask0 = kLastBytes.data() + 1 + length0;
    const std::uint8_t* const mask1 = kLastBytes.data() + 1 + length1;
    const __m256i value = loadPair(mask0, mask1);
    const __m256i afterFirst = loadPair(mask0 - 1, mask1 - 1);
    const __m256i text =
        _mm256_and_si256(_mm256_sub_epi8(loadPair(end0 - kLane, end1 - kLane), _mm256_set1_epi8('0')), value);

    DigitPair pair;
    pair.minus = _mm256_andnot_si256(afterFirst, _mm256_cmpeq_epi8(text, _mm256_set1_epi8('-' - '0')));
    const __m256i point = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('.' - '0'));
    pair.anyDigit = _mm256_andnot_si256(_mm256_or_si256(pair.minus, point), value);
    const auto points = static_cast<std::uint32_t>(_mm256_movemask_epi8(point));
    pair.points[0] = _tzcnt_u32(points | 0x10000U);
    pair.points[1] = _tzcnt_u32(points >> 16 | 0x10000U);
    // A second point stays and is refused as no digit.
    pair.digits = _mm256_shuffle_epi8(_mm256_andnot_si256(pair.minus, text),
                                      loadPair(kOverPoint[pair.points[0]].data(), kOverPoint[pair.points[1]].data()));
    return pair;
}

// The numbers of 16 digits each, in the order low of `a`, low of `b`, high of `a`, high of `b`.
GRIDFORGE_AVX2 inline __m256d digitsToNumbers(__m256i a, __m256i b)
{
    const __m256i tens = _mm256_set1_epi16(1 << 8 | 10);
    const __m256i hundreds = _mm256_set1_epi32(1 << 16 | 100);
    const __m256i foursA = _mm256_madd_epi16(_mm256_maddubs_epi16(a, tens), hundreds);
    const __m256i foursB = _mm256_madd_epi16(_mm256_maddubs_epi16(b, tens), hundreds);
    const __m256i eights = _mm256_madd_epi16(_mm256_packus_epi32(foursA, foursB), _mm256_set1_epi32(1 << 16 | 10000));
    // An integer below 2^32 put into the lower half of 2^52 is a double: 2^52 plus the integer.
    const __m256d big = _mm256_set1_pd(0x1p52);
    const __m256i high = _mm256_blend_epi32(eights, _mm256_castpd_si256(big), 0xAA);
    const __m256i low = _mm256_or_si256(_mm256_srli_epi64(eights, 32), _mm256_castpd_si256(big));
    return _mm256_add_pd(_mm256_mul_pd(_mm256_sub_pd(_mm256_castsi256_pd(high), big), _mm256_set1_pd(1e8)),
                         _mm256_sub_pd(_mm256_castsi256_pd(low), big));
}

// All ones where 64 bits are 0, for two vectors in the order of digitsToNumbers.
GRIDFORGE_AVX2 inline __m256i isZero(__m256i a, __m256i b)
{
    return _mm256_cmpeq_epi64(_mm256_packs_epi16(a, b), _mm256_setzero_si256());
}

} // namespace lanes

// Four values. Those of up to 15 digits or below 2^53 are rounded correctly; others of 16 may be off in the last place.
struct DecimalQuad {
    __m256d magnitudes;
    __m256d signs;
    __m256i refused; // not 0 in the lane of a value that is no such decimal
};

// The values of these lengths, up to kLane, that end before `ends`. Reads the 16 bytes before each end.
GRIDFORGE_AVX2 inline DecimalQuad decimalQuad(const std::array<const char*, 4>& ends,
                                              const std::array<std::size_t, 4>& lengths)
{
    const lanes::DigitPair a = lanes::digitPair(ends[0], lengths[0], ends[2], lengths[2]);
    const lanes::DigitPair b = lanes::digitPair(ends[1], lengths[1], ends[3], lengths[3]);
    const __m256d power = _mm256_setr_pd(lanes::kPointPowers[a.points[0]], lanes::kPointPowers[b.points[0]],
                                         lanes::kPointPowers[a.points[1]], lanes::kPointPowers[b.points[1]]);
    DecimalQuad quad;
    quad.magnitudes = _mm256_div_pd(lanes::digitsToNumbers(a.digits, b.digits), power);
    quad.signs = _mm256_andnot_pd(_mm256_castsi256_pd(lanes::isZero(a.minus, b.minus)), _mm256_set1_pd(-0.0));
    const __m256i overNine = _mm256_or_si256(_mm256_subs_epu8(a.digits, _mm256_set1_epi8(9)),
                                             _mm256_subs_epu8(b.digits, _mm256_set1_epi8(9)));
    quad.refused = _mm256_or_si256(overNine, lanes::isZero(a.anyDigit, b.anyDigit));
    return quad;
}

// False if one is refused, or so near a midpoint that its rounding is open. Writes to `target` in any case.
GRIDFORGE_AVX2 inline bool storeFloats(const DecimalQuad& quad, float* target)
{
    _mm_storeu_ps(target, _mm256_cvtpd_ps(_mm256_or_pd(quad.magnitudes, quad.signs)));
    const __m256i distance = _mm256_and_si256(
        _mm256_add_epi64(_mm256_castpd_si256(quad.magnitudes), _mm256_set1_epi64x(kRoundingMargin - kMidpoint)),
        _mm256_set1_epi64x(kDroppedBits));
    const __m256i unsafe = _mm256_cmpgt_epi64(_mm256_set1_epi64x(2 * kRoundingMargin + 1), distance);
    const __m256i bad = _mm256_or_si256(quad.refused, unsafe);
    return _mm256_testz_si256(bad, bad) != 0;
}

// False if one is refused or has more digits than a double. Writes to `target` in any case.
GRIDFORGE_AVX2 inline bool storeDoubles(const DecimalQuad& quad, double* target)
{
    _mm256_storeu_pd(target, _mm256_or_pd(quad.magnitudes, quad.signs));
    // Only 16 digits without a point reach this.
    const __m256d inexact = _mm256_cmp_pd(quad.magnitudes, _mm256_set1_pd(0x1p53), _CMP_GE_OQ);
    const __m256i bad = _mm256_or_si256(quad.refused, _mm256_castpd_si256(inexact));
    return _mm256_testz_si256(bad, bad) != 0;
}

} // namespace gridforge::inline core

#endif
