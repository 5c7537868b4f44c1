// The classes of bytes, for 64 bytes of text at a time.
#pragma once

#include "core/simd.h"

#if defined(__x86_64__)

#include <cstddef>
#include <cstdint>
#include <immintrin.h>

namespace gridforge::inline core {

inline constexpr std::size_t kByteBlock = 64;

// A bit for each byte of a block, that of the first byte lowest.
struct ByteBlock {
    std::uint64_t values; // every byte that is no separator
    std::uint64_t commas;
    std::uint64_t lineEnds;
    std::uint64_t returns;
};

GRIDFORGE_AVX2 inline std::uint64_t byteMask(__m256i bytes)
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

GRIDFORGE_AVX2 inline ByteBlock classifyBytes(const char* block)
{
    ByteBlock classes = {};
    std::uint64_t separators = 0;
    for (unsigned shift = 0; shift < kByteBlock; shift += 32) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + shift));
        const __m256i comma = _mm256_cmpeq_epi8(text, _mm256_set1_epi8(','));
        const __m256i lineEnd = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\n'));
        const __m256i carriageReturn = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\r'));
        const __m256i blank = _mm256_or_si256(_mm256_cmpeq_epi8(text, _mm256_set1_epi8(' ')),
                                              _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\t')));
        const __m256i separator =
            _mm256_or_si256(_mm256_or_si256(blank, comma), _mm256_or_si256(lineEnd, carriageReturn));
        separators |= byteMask(separator) << shift;
        classes.commas |= byteMask(comma) << shift;
        classes.lineEnds |= byteMask(lineEnd) << shift;
        classes.returns |= byteMask(carriageReturn) << shift;
    }
    classes.values = ~separators;
    return classes;
}

} // namespace gridforge::inline core

#endif
