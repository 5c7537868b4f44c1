// The lines of four points are found by bit masks, and their values become numbers four x, four y and four z at a time.
#include "ops/xyz_parse_avx2.h"

#if defined(__x86_64__)

#include "core/byte_blocks_avx2.h"
#include "core/decimal_lanes_avx2.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace gridforge::ops {

namespace {

constexpr std::size_t kValues = 3; // x, y, z

// Where the values of four lines end, and how long they are: [0] of x, [1] of y, [2] of z.
struct PointGroup {
    std::array<std::array<const char*, kPointGroup>, kValues> ends;
    std::array<std::array<std::size_t, kPointGroup>, kValues> lengths;
    // Copies of lines at the head of a window, because numbers are made of the 16 bytes before their end.
    std::array<std::array<char, kLane + kByteBlock>, kPointGroup> heads;
};

// Finds the values of the line at `line`, a whole block, as the group's line `k`. Its length with the line end, or 0
// where it is longer than a block or anything but three or more values between plain separators.
GRIDFORGE_AVX2 inline std::size_t findLine(const char* line, PointGroup& group, std::size_t k)
{
    const ByteBlock bits = classifyBytes(line);
    const std::uint64_t inLine = ~bits.lineEnds & (bits.lineEnds - 1); // all ones where there is no line end
    const std::uint64_t values = bits.values & inLine;
    const std::uint64_t behindValue = values << 1;
    // A comma counts as a separator where it stands right after a value; a return where the line ends right after it.
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
GRIDFORGE_AVX2 inline std::size_t findGroup(std::string_view window, std::size_t at, PointGroup& group)
{
    const std::size_t first = at;
    for (std::size_t k = 0; k < kPointGroup; ++k) {
        if (window.size() - at < kByteBlock) {
            return 0;
        }
        const char* line = window.data() + at;
        if (at < kLane) {
            line = static_cast<char*>(std::memcpy(group.heads[k].data() + kLane, line, kByteBlock));
        }
        const std::size_t length = findLine(line, group, k);
        if (length == 0) {
            return 0;
        }
        at += length;
    }
    return at - first;
}

} // namespace

GRIDFORGE_AVX2 PlainPoints parsePointGroups(std::string_view window, std::span<double> x, std::span<double> y,
                                            std::span<float> z)
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

} // namespace gridforge::ops

#else

namespace gridforge::ops {

PlainPoints parsePointGroups(std::string_view, std::span<double>, std::span<double>, std::span<float>)
{
    return {};
}

} // namespace gridforge::ops

#endif
