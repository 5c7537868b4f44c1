// Grids with every odd number among their cells, given to a run, and the cells that it wrote, by their bits.
#pragma once

#include "support/odd_cells.h"
#include "support/tool_run.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {

using Values = std::vector<float>;

constexpr std::size_t kOddRows = 41;
constexpr std::size_t kOddColumns = 53; // vectors of eight and a rest

inline std::string bytesOf(const Values& values)
{
    std::string bytes(values.size() * sizeof(float), '\0');
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}

inline Values valuesOf(std::string_view bytes)
{
    Values values(bytes.size() / sizeof(float));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(float));
    return values;
}

// The cells of a grid of kOddRows by kOddColumns, the north row first as in files; another `seed`, other cells.
inline Values oddGrid(float null, std::uint32_t seed)
{
    return oddCells(kOddRows * kOddColumns, null, seed);
}

inline void giveOddGrid(ToolRun& run, const std::string& base, float null, std::uint32_t seed)
{
    run.give(base + ".flt", bytesOf(oddGrid(null, seed)));
    run.give(base + ".hdr", hdr(kOddColumns, kOddRows, {.null = static_cast<double>(null)}));
}

inline void expectSameBits(const Values& found, const Values& expected)
{
    const std::vector<std::uint32_t> foundBits = bitsOf(found);
    const std::vector<std::uint32_t> expectedBits = bitsOf(expected);
    ASSERT_EQ(foundBits.size(), expectedBits.size());
    for (std::size_t i = 0; i < foundBits.size(); ++i) {
        EXPECT_EQ(foundBits[i], expectedBits[i]) << "cell " << i << ": " << found[i] << " in place of " << expected[i];
    }
}

} // namespace gridforge::test
