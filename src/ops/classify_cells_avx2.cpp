#include "ops/classify_cells_avx2.h"

#include "core/limit_lanes_avx2.h"
#include "core/simd.h"

namespace gridforge::ops {

#if defined(__x86_64__)

namespace {

GRIDFORGE_AVX2 void classifyWith(const LimitLanes& limits, const float* cells, std::size_t count, float null,
                                 float* output)
{
    const __m256 nulls = _mm256_set1_ps(null);
    for (std::size_t i = 0; i < count; i += kFloatLanes) {
        const __m256 values = _mm256_loadu_ps(cells + i);
        const __m256i number = _mm256_add_epi32(limits.passed(values), _mm256_set1_epi32(1));
        const __m256 isNull = _mm256_cmp_ps(values, nulls, _CMP_EQ_OQ);
        _mm256_storeu_ps(output + i, _mm256_blendv_ps(_mm256_cvtepi32_ps(number), nulls, isNull));
    }
}

} // namespace

std::size_t classifyLanes(std::span<const float> cells, float null, std::span<const float> limits,
                          std::span<float> output)
{
    if (!hasAvx2() || limits.size() > LimitLanes::kMost) {
        return 0;
    }
    const std::size_t count = cells.size() / kFloatLanes * kFloatLanes;
    classifyWith(LimitLanes(limits), cells.data(), count, null, output.data());
    return count;
}

#else

std::size_t classifyLanes(std::span<const float>, float, std::span<const float>, std::span<float>)
{
    return 0;
}

#endif

} // namespace gridforge::ops
