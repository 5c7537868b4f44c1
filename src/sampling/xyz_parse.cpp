// The lines of four points are found by bit masks, and their values become numbers four x, four y and four z at a time.
#include "sampling/xyz_parse.h"

#include "core/decimal_lanes.h"
#include "core/numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace gridforge {

namespace {

template <typename Real>
bool takeValue(FreeForm& values, Real& target)
{
    const FreeValue got = values.next(target);
    return got == FreeValue::value || got == FreeValue::empty;
}

} // namespace

bool parsePoint(std::string_view line, double& x, double& y, float& z)
{
    FreeForm values(line);
    return takeValue(values, x) && takeValue(values, y) && takeValue(values, z);
}

std::size_t countLineEnds(std::string_view text)
{
    constexpr std::size_t kPiece = 128; // its count fits a byte, and so the loop a vector of bytes
    std::size_t count = 0;
    for (; text.size() >= kPiece; text.remove_prefix(kPiece)) {
        std::uint8_t inPiece = 0;
        for (std::size_t i = 0; i < kPiece; ++i) {
            inPiece = static_cast<std::uint8_t>(inPiece + (text[i] == '\n' ? 1 : 0));
        }
        count += inPiece;
    }
    return count + static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

#if defined(__x86_64__)

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kValues = 3; // x, y, z

// For each byte of a block a bit.
struct LineBits {
    std::uint64_t values; // all that is no separator
    std::uint64_t commas;
    std::uint64_t returns;
    std::uint64_t lineEnds;
};

__attribute__((target("avx2,bmi"))) inline std::uint64_t byteMask(__m256i bytes)
{
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(bytes));
}

__attribute__((target("avx2,bmi"))) inline LineBits classify(const char* block)
{
    LineBits bits = {};
    std::uint64_t separators = 0;
    for (unsigned shift = 0; shift < kBlock; shift += 32) {
        const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + shift));
        const __m256i comma = _mm256_cmpeq_epi8(text, _mm256_set1_epi8(','));
        const __m256i lineEnd = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\n'));
        const __m256i carriageReturn = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\r'));
        const __m256i blank = _mm256_or_si256(_mm256_cmpeq_epi8(text, _mm256_set1_epi8(' ')),
                                              _mm256_cmpeq_epi8(text, _mm256_set1_epi8('\t')));
        const __m256i separator =
            _mm256_or_si256(_mm256_or_si256(blank, comma), _mm256_or_si256(lineEnd, carriageReturn));
        separators |= byteMask(separator) << shift;
        bits.commas |= byteMask(comma) << shift;
        bits.returns |= byteMask(carriageReturn) << shift;
        bits.lineEnds |= byteMask(lineEnd) << shift;
    }
    bits.values = ~separators;
    return bits;
}

// Where the values of four lines end, and how long they are: [0] of x, [1] of y, [2] of z.
struct PointGroup {
    std::array<std::array<const char*, kPointGroup>, kValues> ends;
    std::array<std::array<std::size_t, kPointGroup>, kValues> lengths;
    // Copies of lines at the head of a window, because numbers are made of the 16 bytes before their end.
    std::array<std::array<char, kLane + kBlock>, kPointGroup> heads;
};

// Finds the values of the line at `line`, a whole block, as the group's line `k`. Its length with the line end, or 0
// where it is longer than a block or anything but three or more values between plain separators.
__attribute__((target("avx2,bmi"))) inline std::size_t findLine(const char* line, PointGroup& group, std::size_t k)
{
    const LineBits bits = classify(line);
    const std::uint64_t inLine = ~bits.lineEnds & (bits.lineEnds - 1); // all ones where there is no line end
    const std::uint64_t values = bits.values & inLine;
    const std::uint64_t behindValue = values << 1;
    // A comma counts as a separator where it stands right behind a value; a return where the line ends right behind it.
    const std::uint64_t odd = (bits.commas & ~behindValue) | (bits.returns & ~(bits.lineEnds >> 1));
    std::uint64_t starts = values & ~behindValue;
    std::uint64_t ends = ~values & behindValue;
    if (bits.lineEnds == 0 || (odd & inLine) != 0) {
        return 0;
    }
    std::uint64_t longest = 0;
    for (std::size_t i = 0; i < kValues; ++i) {
        const std::uint64_t end = _tzcnt_u64(ends); // 64 where there are too few values
        const std::uint64_t length = end - _tzcnt_u64(starts);
        group.ends[i][k] = line + end;
        group.lengths[i][k] = length;
        longest = std::max(longest, length);
        starts = _blsr_u64(starts);
        if (i + 1 < kValues) {
            ends = _blsr_u64(ends);
        }
    }
    return ends == 0 || longest > kLane ? 0 : static_cast<std::size_t>(_tzcnt_u64(bits.lineEnds)) + 1;
}

// Finds four lines. Their length, or 0 where they are not plain or not all in the window.
__attribute__((target("avx2,bmi"))) inline std::size_t findGroup(std::string_view window, std::size_t at,
                                                                 PointGroup& group)
{
    const std::size_t first = at;
    for (std::size_t k = 0; k < kPointGroup; ++k) {
        if (window.size() - at < kBlock) {
            return 0;
        }
        const char* line = window.data() + at;
        if (at < kLane) {
            line = static_cast<char*>(std::memcpy(group.heads[k].data() + kLane, line, kBlock));
        }
        const std::size_t length = findLine(line, group, k);
        if (length == 0) {
            return 0;
        }
        at += length;
    }
    return at - first;
}

__attribute__((target("avx2,bmi"))) PlainPoints parseGroups(std::string_view window, std::span<double> x,
                                                            std::span<double> y, std::span<float> z)
{
    PlainPoints found;
    PointGroup group = {};
    while (found.count + kPointGroup <= x.size()) {
        const std::size_t bytes = findGroup(window, found.bytes, group);
        if (bytes == 0 || !storeDoubles(decimalQuad(group.ends[0], group.lengths[0]), x.data() + found.count) ||
            !storeDoubles(decimalQuad(group.ends[1], group.lengths[1]), y.data() + found.count) ||
            !storeFloats(decimalQuad(group.ends[2], group.lengths[2]), z.data() + found.count)) {
            break;
        }
        found.count += kPointGroup;
        found.bytes += bytes;
    }
    return found;
}

} // namespace

PlainPoints parsePlainPoints(std::string_view window, std::span<double> x, std::span<double> y, std::span<float> z)
{
    assert(x.size() == y.size() && x.size() == z.size());
    return hasDecimalLanes() ? parseGroups(window, x, y, z) : PlainPoints{};
}

#else

PlainPoints parsePlainPoints(std::string_view, std::span<double>, std::span<double>, std::span<float>)
{
    return {};
}

#endif

} // namespace gridforge
