#include "ops/resize_cells_avx2.h"

#include "core/simd.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace gridforge::ops {

#if defined(__x86_64__)

namespace {

// Four tiles as they lie in memory. Sums and counts stand in the order 0, 2, 1, 3.
struct FourTiles {
    __m256d sums;
    __m256i counts;
};

GRIDFORGE_AVX2 inline FourTiles load(const TileSum* tiles)
{
    const auto* const at = reinterpret_cast<const __m256i*>(tiles);
    const __m256i low = _mm256_loadu_si256(at);
    const __m256i high = _mm256_loadu_si256(at + 1);
    return {_mm256_castsi256_pd(_mm256_unpacklo_epi64(low, high)), _mm256_unpackhi_epi64(low, high)};
}

GRIDFORGE_AVX2 inline void store(const FourTiles& four, TileSum* tiles)
{
    auto* const at = reinterpret_cast<__m256i*>(tiles);
    const __m256i sums = _mm256_castpd_si256(four.sums);
    _mm256_storeu_si256(at, _mm256_unpacklo_epi64(sums, four.counts));
    _mm256_storeu_si256(at + 1, _mm256_unpackhi_epi64(sums, four.counts));
}

// The cells of four tiles, a tile's width apart, in the order of FourTiles.
GRIDFORGE_AVX2 inline __m128 cellsOfFour(const float* cells, std::size_t factor)
{
    return _mm_setr_ps(cells[0], cells[2 * factor], cells[factor], cells[3 * factor]);
}

// A sum is never a negative zero, so the zero that is added for a null cell leaves it as it is.
GRIDFORGE_AVX2 inline void add(FourTiles& four, __m128 cells, __m128 null)
{
    const __m128 active = _mm_cmp_ps(cells, null, _CMP_NEQ_UQ);
    four.sums = _mm256_add_pd(four.sums, _mm256_cvtps_pd(_mm_and_ps(active, cells)));
    four.counts = _mm256_sub_epi64(four.counts, _mm256_cvtepi32_epi64(_mm_castps_si128(active)));
}

GRIDFORGE_AVX2 void addRow(const float* row, float null, std::size_t factor, TileSum* tiles, std::size_t count)
{
    const __m128 nulls = _mm_set1_ps(null);
    for (std::size_t t = 0; t < count; t += kFloatLanes) {
        FourTiles first = load(tiles + t);
        FourTiles second = load(tiles + t + kFloatLanes / 2);
        const float* cells = row + t * factor;
        for (std::size_t j = 0; j < factor; ++j, ++cells) {
            add(first, cellsOfFour(cells, factor), nulls);
            add(second, cellsOfFour(cells + kFloatLanes / 2 * factor, factor), nulls);
        }
        store(first, tiles + t);
        store(second, tiles + t + kFloatLanes / 2);
    }
}

} // namespace

std::size_t addToTiles(std::span<const float> row, float null, std::size_t factor, TileSum* tiles, std::size_t count)
{
    static_assert(sizeof(TileSum) == 2 * sizeof(double));
    if (!hasAvx2()) {
        return 0;
    }
    const std::size_t done = count / kFloatLanes * kFloatLanes;
    addRow(row.data(), null, factor, tiles, done);
    return done;
}

#else

std::size_t addToTiles(std::span<const float>, float, std::size_t, TileSum*, std::size_t)
{
    return 0;
}

#endif

} // namespace gridforge::ops
