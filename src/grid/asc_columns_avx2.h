// Values in columns: right-aligned in fields of one width after at least one blank, all with as many decimals. So stand the values
// of most text grids, and they need not be searched for: what a column may hold is checked while it is converted.
#pragma once

#include "core/decimal_lanes_avx2.h"
#include "core/simd.h"

#if defined(__x86_64__)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <immintrin.h>
#include <optional>
#include <span>
#include <string_view>

namespace gridforge::grid {

class AscColumns {
public:
    // Fields of `width` that end like the value. None for fields that no lane takes.
    static std::optional<AscColumns> like(std::string_view value, std::size_t width)
    {
        if (width <= value.size() || width > kLane) {
            return std::nullopt;
        }
        const std::size_t point = value.find('.');
        const bool pointed = point != std::string_view::npos;
        return AscColumns(width, pointed, pointed ? value.size() - point - 1 : 0);
    }

    std::size_t width() const { return width_; }

    // Reads as many cells as stand in columns from `text` on, but leaves a rest of less than four. Returns how many these are.
    // The text may be read from 16 bytes before it.
    GRIDFORGE_AVX2 std::size_t read(std::string_view text, std::span<float> cells) const
    {
        const std::size_t most = std::min(cells.size(), text.size() / width_);
        std::size_t read = 0;
        while (read + 4 <= most && readFour(text.data() + read * width_, cells.data() + read)) {
            read += 4;
        }
        // A value that goes on after its field is none of this width.
        const std::size_t end = read * width_;
        const bool ended = end < text.size() && (text[end] == ' ' || text[end] == '\r' || text[end] == '\n');
        return read == 0 || ended ? read : read - 1;
    }

private:
    using Lane = std::array<std::uint8_t, kLane>;

    AscColumns(std::size_t width, bool pointed, std::size_t decimals) : width_(width)
    {
        constexpr std::uint8_t kNothing = 0x80;
        constexpr std::uint8_t kAll = 0xFF;
        const std::size_t field = kLane - width;
        const std::size_t point = pointed ? kLane - 1 - decimals : kLane;
        for (std::size_t to = 0; to < kLane; ++to) {
            const std::size_t from = pointed && to <= point ? to - 1 : to; // may be before 0
            const bool inField = from < kLane && from >= field;
            moves_[to] = inField ? static_cast<std::uint8_t>(from) : kNothing;
            inField_[to] = inField ? kAll : 0;
            first_[to] = inField && from == field ? kAll : 0;
            digits_[to] = to + 1 == kLane || to > point ? kAll : 0;
            point_[to] = to == point ? kAll : 0;
        }
        power_ = lanes::kPointPowers[point];
    }

    // Two values without their point. What is not 0 in `bad` stands in no such column.
    struct Pair {
        __m256i digits;
        __m256i minus;
        __m256i bad;
    };

    GRIDFORGE_AVX2 static __m256i both(const Lane& lane)
    {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lane.data())));
    }

    GRIDFORGE_AVX2 Pair pair(const char* end0, const char* end1) const
    {
        const __m256i raw = lanes::loadPair(end0 - kLane, end1 - kLane);
        const __m256i text = _mm256_shuffle_epi8(raw, both(moves_));
        const __m256i number = _mm256_sub_epi8(text, _mm256_set1_epi8('0'));
        const __m256i isDigit = _mm256_cmpeq_epi8(_mm256_min_epu8(number, _mm256_set1_epi8(9)), number);
        const __m256i isBlank = _mm256_cmpeq_epi8(text, _mm256_set1_epi8(' '));
        const __m256i isMinus = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('-'));
        const __m256i isPoint = _mm256_cmpeq_epi8(raw, _mm256_set1_epi8('.'));

        // Blanks, perhaps a minus, and digits from there on.
        const __m256i afterDigit = _mm256_slli_si256(isDigit, 1);
        const __m256i afterMinus = _mm256_slli_si256(isMinus, 1);
        const __m256i mustBeDigit = _mm256_or_si256(_mm256_or_si256(afterDigit, afterMinus), both(digits_));
        const __m256i known = _mm256_or_si256(_mm256_or_si256(isDigit, isBlank), isMinus);
        const __m256i noDigit = _mm256_andnot_si256(isDigit, mustBeDigit);
        const __m256i unknown = _mm256_andnot_si256(known, both(inField_));
        const __m256i noBlank = _mm256_andnot_si256(isBlank, both(first_));
        const __m256i noPoint = _mm256_andnot_si256(isPoint, both(point_));
        return {_mm256_and_si256(number, isDigit), isMinus,
                _mm256_or_si256(_mm256_or_si256(noDigit, unknown), _mm256_or_si256(noBlank, noPoint))};
    }

    // False if one of the four stands in no such column, or must be rounded with more care; the cells stay as they were then.
    GRIDFORGE_AVX2 bool readFour(const char* text, float* cells) const
    {
        const Pair a = pair(text + width_, text + 3 * width_);
        const Pair b = pair(text + 2 * width_, text + 4 * width_);
        DecimalQuad quad;
        quad.magnitudes = _mm256_div_pd(lanes::digitsToNumbers(a.digits, b.digits), _mm256_set1_pd(power_));
        quad.signs = _mm256_andnot_pd(_mm256_castsi256_pd(lanes::isZero(a.minus, b.minus)), _mm256_set1_pd(-0.0));
        quad.refused = _mm256_or_si256(a.bad, b.bad);
        std::array<float, 4> four;
        if (!storeFloats(quad, four.data())) {
            return false;
        }
        std::memcpy(cells, four.data(), sizeof four);
        return true;
    }

    std::size_t width_;
    double power_;
    // For each byte of a lane without the point:
    Lane moves_;   // which byte it is taken from
    Lane inField_; // whether it belongs to the field,
    Lane first_;   // is the first of it,
    Lane digits_;  // or is always a digit
    Lane point_;   // where the point stands, in the lane as it is
};

} // namespace gridforge::grid

#endif
