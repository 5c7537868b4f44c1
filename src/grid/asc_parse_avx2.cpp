// Bit masks show where values start and end, and a handful of vector instructions makes a number of each value. Unusual
// text is read value by value.
#include "grid/asc_parse_avx2.h"

#if defined(__x86_64__)

#include "core/byte_blocks_avx2.h"
#include "core/decimal_lanes_avx2.h"
#include "grid/asc_columns_avx2.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

namespace gridforge::grid {
namespace {

constexpr std::size_t kBatch = 1024; // values found before they are converted: few enough to stay in the nearest cache

// The values of a piece of text: where they end, in bytes from its start, and how long they are.
struct ValueIndex {
    std::size_t count = 0;
    std::array<std::uint32_t, kBatch + kByteBlock> ends; // a block may go past the batch
    std::array<std::uint32_t, kBatch + kByteBlock> lengths;
};

// Eight at once, however many there are: a loop whose end the processor cannot predict costs more.
GRIDFORGE_AVX2 inline void addToIndex(ValueIndex& index, std::uint64_t starts, std::uint64_t ends, std::uint32_t block)
{
    std::uint32_t* end = index.ends.data() + index.count;
    std::uint32_t* length = index.lengths.data() + index.count;
    index.count += static_cast<std::size_t>(std::popcount(ends));
    do {
        for (int i = 0; i < 8; ++i) {
            const auto endBit = static_cast<std::uint32_t>(_tzcnt_u64(ends));
            *end++ = block + endBit;
            *length++ = endBit - static_cast<std::uint32_t>(_tzcnt_u64(starts));
            starts = _blsr_u64(starts);
            ends = _blsr_u64(ends);
        }
    } while (ends != 0);
}

// Finds values in whole blocks of `text`, up to `most` of them, and stops before an empty value and before a value longer
// than a block. Returns how many bytes it has used up.
GRIDFORGE_AVX2 std::size_t findValues(std::string_view text, std::size_t most, bool& afterValue, ValueIndex& index)
{
    index.count = 0;
    std::size_t at = 0;
    while (text.size() - at >= kByteBlock && index.count < most) {
        const ByteBlock bits = classifyBytes(text.data() + at);
        const std::uint64_t valueBefore = bits.values << 1;
        const std::uint64_t emptyAhead = bits.commas & ~valueBefore;
        const std::uint64_t plain = emptyAhead == 0 ? ~std::uint64_t{0} : (emptyAhead & (~emptyAhead + 1)) - 1;
        const std::uint64_t starts = bits.values & ~valueBefore & plain;
        const std::uint64_t ends = ~bits.values & valueBefore & plain;
        addToIndex(index, starts, ends, static_cast<std::uint32_t>(at));

        // A value came last if the last end of a value is after the last break; a break may be at such an end.
        const std::uint64_t breaks = (bits.commas | bits.lineEnds) & plain;
        if ((ends | breaks) != 0) {
            afterValue = (ends & ~breaks) > breaks;
        }
        // A value that goes on after the block is left to the next one, which begins with it.
        const bool cut = emptyAhead == 0 && bits.values >> (kByteBlock - 1) != 0;
        const int advance = cut ? 63 - std::countl_zero(starts) : std::countr_one(plain);
        at += static_cast<std::size_t>(advance);
        if (emptyAhead != 0 || advance == 0) {
            break;
        }
    }
    if (index.count >= most) {
        index.count = most;
        at = index.ends[most - 1];
        afterValue = true;
    }
    return at;
}

// Four plain decimals of at most 16 characters. Reads the 16 bytes before each end. False if one is anything else.
GRIDFORGE_AVX2 inline bool convertFour(const char* text, const std::uint32_t* ends, const std::uint32_t* lengths,
                                       float* cells)
{
    if (std::max(std::max(lengths[0], lengths[1]), std::max(lengths[2], lengths[3])) > kLane) {
        return false;
    }
    return storeFloats(decimalQuad({text + ends[0], text + ends[1], text + ends[2], text + ends[3]},
                                   {lengths[0], lengths[1], lengths[2], lengths[3]}),
                       cells);
}

// Puts at most four values of the index, from `first` on, into cells. False if one is no number.
GRIDFORGE_AVX2 inline bool convertSome(const char* text, const ValueIndex& index, std::size_t first, std::size_t count,
                                       float* cells)
{
    if (convertFour(text, index.ends.data() + first, index.lengths.data() + first, cells)) {
        return true;
    }
    for (std::size_t i = first; i < first + count; ++i) {
        if (!parseAscCell({text + index.ends[i] - index.lengths[i], index.lengths[i]}, cells[i - first])) {
            return false;
        }
    }
    return true;
}

// Puts the indexed values of `text` into as many cells. False if one is no number.
GRIDFORGE_AVX2 bool convertValues(const char* text, ValueIndex& index, std::span<float> cells)
{
    std::size_t i = 0;
    for (; i + 4 <= index.count; i += 4) {
        if (!convertSome(text, index, i, 4, cells.data() + i)) {
            return false;
        }
    }
    if (i == index.count) {
        return true;
    }
    // Repeats the last value to make four.
    const std::size_t count = index.count - i;
    std::fill_n(index.ends.begin() + static_cast<std::ptrdiff_t>(index.count), 3, index.ends[index.count - 1]);
    std::fill_n(index.lengths.begin() + static_cast<std::ptrdiff_t>(index.count), 3, index.lengths[index.count - 1]);
    std::array<float, 4> four;
    const bool good = convertSome(text, index, i, count, four.data());
    std::copy_n(four.begin(), count, cells.begin() + static_cast<std::ptrdiff_t>(i));
    return good;
}

// How many values are looked at to see whether they stand in columns.
constexpr std::size_t kColumnsSeen = 3;
// Where columns end after no more values than this they are given up; otherwise some values are searched for before they are tried
// again.
constexpr std::size_t kHardlyAny = 16;
constexpr std::size_t kAfterColumns = 64;

// The columns that the values of the index stand in.
std::optional<AscColumns> columnsOf(const char* text, const ValueIndex& index)
{
    if (index.count != kColumnsSeen) {
        return std::nullopt;
    }
    const std::size_t width = index.ends[1] - index.ends[0];
    for (std::size_t i = 2; i < kColumnsSeen; ++i) {
        if (index.ends[i] - index.ends[i - 1] != width) {
            return std::nullopt;
        }
    }
    const std::size_t last = kColumnsSeen - 1;
    return AscColumns::like({text + index.ends[last] - index.lengths[last], index.lengths[last]}, width);
}

// Reads on as long as values stand in columns; if these are hardly any they are given up.
GRIDFORGE_AVX2 void readColumns(std::optional<AscColumns>& columns, AscRowState& state, AscCursor& text,
                                const char* windowStart, std::span<float> row)
{
    if (text.at - windowStart < static_cast<std::ptrdiff_t>(kLane)) {
        return;
    }
    const std::size_t read = columns->read({text.at, text.end}, row.subspan(state.filled));
    text.at += read * columns->width();
    state.filled += read;
    if (read > 0) {
        state.afterValue = true;
    }
    if (read < kHardlyAny) {
        columns.reset();
    }
}

} // namespace

GRIDFORGE_AVX2 bool parseAscBlocks(AscRowState& state, AscCursor& text, const char* windowStart, std::span<float> row)
{
    ValueIndex index;
    std::optional<AscColumns> columns;
    std::size_t atOnce = state.filled == 0 ? kColumnsSeen : kBatch; // columns are looked for at the start of a row
    while (static_cast<std::size_t>(text.end - text.at) >= kByteBlock && state.filled < row.size()) {
        // The lanes of the first values would begin before the window, so its first block is copied.
        std::array<char, kLane + kByteBlock> head;
        std::string_view piece(text.at, static_cast<std::size_t>(text.end - text.at));
        if (text.at - windowStart < static_cast<std::ptrdiff_t>(kLane)) {
            std::memcpy(head.data() + kLane, text.at, kByteBlock);
            piece = {head.data() + kLane, kByteBlock};
        }
        const std::size_t most = std::min(row.size() - state.filled, atOnce);
        const std::size_t advance = findValues(piece, most, state.afterValue, index);
        if (index.count > 0 && !convertValues(piece.data(), index, row.subspan(state.filled, index.count))) {
            return false;
        }
        state.filled += index.count;
        text.at += advance;
        if (advance == 0) {
            break;
        }
        if (atOnce == kColumnsSeen) {
            columns = columnsOf(piece.data(), index);
        }
        if (columns) {
            readColumns(columns, state, text, windowStart, row);
        }
        atOnce = columns ? kAfterColumns : kBatch;
    }
    return true;
}

} // namespace gridforge::grid

#else

namespace gridforge::grid {

bool parseAscBlocks(AscRowState&, AscCursor&, const char*, std::span<float>)
{
    return true;
}

} // namespace gridforge::grid

#endif
