#include "ops/stat_cells_avx2.h"

#include "core/simd.h"

#if defined(__x86_64__)
#include <immintrin.h>
#include <iterator>
#endif

namespace gridforge::ops {

#if defined(__x86_64__)

namespace {

struct Limits {
    float null;
    float dry;
    float picked;
};

// How many values stand before each in the ascending order. Each is taken to stand before those of earlier grids, until that is
// seen not to hold.
template <std::size_t Grids>
GRIDFORGE_AVX2 void findPlaces(const __m256 (&values)[Grids], __m256i (&places)[Grids])
{
    for (std::size_t j = 0; j < Grids; ++j) {
        places[j] = _mm256_set1_epi32(static_cast<int>(Grids - 1 - j));
    }
    for (std::size_t j = 0; j < Grids; ++j) {
        for (std::size_t k = j + 1; k < Grids; ++k) {
            const __m256i inOrder = _mm256_castps_si256(_mm256_cmp_ps(values[j], values[k], _CMP_LE_OQ));
            places[j] = _mm256_add_epi32(places[j], inOrder);
            places[k] = _mm256_sub_epi32(places[k], inOrder);
        }
    }
}

// False if a value is no number or not below `picked`.
template <std::size_t Grids>
GRIDFORGE_AVX2 bool pickLanes(CellStack grids, std::size_t count, const Limits& limits, const RankResult& result,
                              std::size_t from)
{
    const __m256 null = _mm256_set1_ps(limits.null);
    const __m256i wanted = _mm256_set1_epi32(result.rank - 1);
    __m256 odd = _mm256_setzero_ps();
    for (std::size_t i = 0; i < count; i += kFloatLanes) {
        __m256 values[Grids];
        __m256i places[Grids];
        for (std::size_t j = 0; j < Grids; ++j) {
            values[j] = _mm256_loadu_ps(grids[j].data() + i);
        }
        findPlaces(values, places);
        __m256 value = _mm256_setzero_ps();
        __m256 source = _mm256_setzero_ps();
        __m256 wet = _mm256_setzero_ps();
        for (std::size_t j = 0; j < Grids; ++j) {
            const __m256 hit = _mm256_castsi256_ps(_mm256_cmpeq_epi32(places[j], wanted)); // one of them
            value = _mm256_or_ps(value, _mm256_and_ps(hit, values[j]));
            source = _mm256_or_ps(source, _mm256_and_ps(hit, _mm256_set1_ps(static_cast<float>(j + 1))));
            odd = _mm256_or_ps(odd, _mm256_cmp_ps(values[j], _mm256_set1_ps(limits.picked), _CMP_NLT_UQ));
            wet = _mm256_or_ps(wet, _mm256_cmp_ps(values[j], _mm256_set1_ps(limits.dry), _CMP_GT_OQ));
        }
        _mm256_storeu_ps(result.values.data() + from + i, _mm256_blendv_ps(null, value, wet));
        _mm256_storeu_ps(result.sources.data() + from + i, _mm256_blendv_ps(null, source, wet));
    }
    return _mm256_movemask_ps(odd) == 0;
}

using PickLanes = bool (*)(CellStack, std::size_t, const Limits&, const RankResult&, std::size_t);

// By the number of grids, from one.
constexpr PickLanes kPickLanes[] = {pickLanes<1>, pickLanes<2>, pickLanes<3>, pickLanes<4>, pickLanes<5>,
                                    pickLanes<6>, pickLanes<7>, pickLanes<8>, pickLanes<9>, pickLanes<10>};
static_assert(std::size(kPickLanes) == kMaxStatGrids);

} // namespace

std::optional<std::size_t> pickRankLanes(CellStack grids, float null, float limit, float picked,
                                         const RankResult& result, std::size_t from)
{
    if (!hasAvx2()) {
        return 0;
    }
    const std::size_t count = grids.front().size() / kFloatLanes * kFloatLanes;
    if (!kPickLanes[grids.size() - 1](grids, count, {null, limit, picked}, result, from)) {
        return std::nullopt;
    }
    return count;
}

#else

std::optional<std::size_t> pickRankLanes(CellStack, float, float, float, const RankResult&, std::size_t)
{
    return 0;
}

#endif

} // namespace gridforge::ops
