// How many limits each of eight values passes, by comparisons without branches.
#pragma once

#include "core/simd.h"

#if defined(__x86_64__)

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <immintrin.h>
#include <limits>
#include <span>

namespace gridforge::inline core {

// A few limits are all compared. More stand in eight groups of seven with a limit between neighbours: seven comparisons find the
// group of a value, and seven with the limits of that group the rest.
class LimitLanes {
public:
    static constexpr std::size_t kGroup = 8;
    static constexpr std::size_t kMost = kGroup * kGroup - 1;

    // At most kMost limits that never fall.
    explicit LimitLanes(std::span<const float> limits) : count_(limits.size())
    {
        assert(limits.size() <= kMost);
        limits_.fill(std::numeric_limits<float>::infinity());
        std::ranges::copy(limits, limits_.begin());
        for (std::size_t place = 0; place < kMost; ++place) {
            inGroup_[place % kGroup][place / kGroup] = limits_[place];
        }
    }

    // What is not a number passes all limits.
    GRIDFORGE_AVX2 __m256i passed(__m256 values) const { return count_ <= kFew ? amongFew(values) : amongMany(values); }

private:
    static constexpr std::size_t kFew = 16;

    // Minus one where a value passes its limit.
    GRIDFORGE_AVX2 static __m256i passes(__m256 values, __m256 limits)
    {
        return _mm256_castps_si256(_mm256_cmp_ps(values, limits, _CMP_NLE_UQ));
    }

    GRIDFORGE_AVX2 __m256i amongFew(__m256 values) const
    {
        __m256i count = _mm256_setzero_si256();
        for (std::size_t i = 0; i < count_; ++i) {
            count = _mm256_sub_epi32(count, passes(values, _mm256_set1_ps(limits_[i])));
        }
        return count;
    }

    GRIDFORGE_AVX2 __m256i amongMany(__m256 values) const
    {
        __m256i group = _mm256_setzero_si256();
        for (std::size_t i = kGroup - 1; i < kMost; i += kGroup) {
            group = _mm256_sub_epi32(group, passes(values, _mm256_set1_ps(limits_[i])));
        }
        __m256i count = _mm256_slli_epi32(group, 3);
        for (std::size_t i = 0; i + 1 < kGroup; ++i) {
            const __m256 limits = _mm256_permutevar8x32_ps(_mm256_load_ps(inGroup_[i].data()), group);
            count = _mm256_sub_epi32(count, passes(values, limits));
        }
        return _mm256_min_epi32(count, _mm256_set1_epi32(static_cast<int>(count_)));
    }

    std::size_t count_;
    std::array<float, kMost> limits_{}; // and what only a value that is not a number passes after them
    alignas(32) std::array<std::array<float, kGroup>, kGroup> inGroup_{}; // by place in the group, then by group
};

} // namespace gridforge::inline core

#endif
