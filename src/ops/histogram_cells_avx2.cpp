#include "ops/histogram_cells_avx2.h"

#include "core/limit_lanes_avx2.h"
#include "core/simd.h"

#include <algorithm>
#include <array>

namespace gridforge::ops {

#if defined(__x86_64__)

namespace {

// A lane has bins of its own, so that neighbouring cells of one bin do not wait for each other. The upper half is for null.
constexpr std::size_t kBins = 64;
using LaneBins = std::array<std::array<std::uint32_t, 2 * kBins>, kFloatLanes>;

GRIDFORGE_AVX2 void countWith(const LimitLanes& limits, const float* cells, std::size_t count, float null,
                              LaneBins& bins)
{
    const __m256 nulls = _mm256_set1_ps(null);
    const __m256i half = _mm256_set1_epi32(static_cast<int>(kBins));
    alignas(32) std::array<std::uint32_t, kFloatLanes> bin;
    for (std::size_t i = 0; i < count; i += kFloatLanes) {
        const __m256 values = _mm256_loadu_ps(cells + i);
        const __m256i isNull = _mm256_castps_si256(_mm256_cmp_ps(values, nulls, _CMP_EQ_OQ));
        const __m256i found = _mm256_or_si256(limits.passed(values), _mm256_and_si256(isNull, half));
        _mm256_store_si256(reinterpret_cast<__m256i*>(bin.data()), found);
        for (std::size_t lane = 0; lane < kFloatLanes; ++lane) {
            ++bins[lane][bin[lane]];
        }
    }
}

} // namespace

std::size_t countLanes(std::span<const float> cells, float null, std::span<const float> limits,
                       std::span<std::int64_t> counts)
{
    if (!hasAvx2() || limits.size() > LimitLanes::kMost) {
        return 0;
    }
    constexpr std::size_t kStretch = std::size_t{1} << 30; // far below what a bin can count
    const LimitLanes lanes(limits);
    const std::size_t count = cells.size() / kFloatLanes * kFloatLanes;
    for (std::size_t from = 0; from < count; from += kStretch) {
        LaneBins bins{};
        countWith(lanes, cells.data() + from, std::min(kStretch, count - from), null, bins);
        for (const auto& lane : bins) {
            for (std::size_t bin = 0; bin < counts.size(); ++bin) {
                counts[bin] += lane[bin];
            }
        }
    }
    return count;
}

#else

std::size_t countLanes(std::span<const float>, float, std::span<const float>, std::span<std::int64_t>)
{
    return 0;
}

#endif

} // namespace gridforge::ops
