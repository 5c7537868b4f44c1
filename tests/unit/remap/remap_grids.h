// Cells of the tool from little tables and from the plain arrays, and back.
#pragma once

#include "plane/cell_array.h"
#include "remap/cell_state.h"
#include "remap/extent_flags.h"
#include "support/plain_remap.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace gridforge::test {

template <typename Value>
using Table = std::vector<std::vector<Value>>;

// A table as a map shows it: the north row first.
template <typename Value>
CellArray<Value> cellsFrom(const Table<Value>& table)
{
    CellArray<Value> cells;
    EXPECT_TRUE(
        cells.allocate(static_cast<std::int32_t>(table.size()), static_cast<std::int32_t>(table.front().size())));
    auto at = cells.cells().begin();
    for (const auto& line : table) {
        at = std::copy(line.begin(), line.end(), at);
    }
    return cells;
}

inline Grid gridOf(const Table<float>& table)
{
    return cellsFrom(table);
}

inline remap::CellFlags flagsOf(const Table<std::uint8_t>& table)
{
    return cellsFrom(table);
}

template <typename Value>
CellArray<Value> sameCells(std::int32_t nrows, std::int32_t ncols, Value value)
{
    CellArray<Value> cells;
    EXPECT_TRUE(cells.allocate(nrows, ncols));
    std::ranges::fill(cells.cells(), value);
    return cells;
}

template <typename Value>
Table<Value> tableOf(const CellArray<Value>& cells)
{
    Table<Value> table;
    for (std::int32_t row = cells.nrows(); row >= 1; --row) {
        table.emplace_back(cells.row(row).begin(), cells.row(row).end());
    }
    return table;
}

template <typename Value>
Table<Value> tableOf(const plain::Array<Value>& array)
{
    Table<Value> table;
    for (int r = array.nrows; r >= 1; --r) {
        table.emplace_back();
        for (int c = 1; c <= array.ncols; ++c) {
            table.back().push_back(array(r, c));
        }
    }
    return table;
}

template <typename Value>
CellArray<Value> cellsOf(const plain::Array<Value>& array)
{
    return cellsFrom(tableOf(array));
}

// Cells set with the given share.
inline plain::Flags randomFlags(std::mt19937& random, int nrows, int ncols, double share)
{
    plain::Flags flags(nrows, ncols);
    std::bernoulli_distribution set(share);
    for (std::uint8_t& flag : flags.values) {
        flag = set(random) ? 1 : 0;
    }
    return flags;
}

inline plain::Reals randomReals(std::mt19937& random, int nrows, int ncols, float low, float high)
{
    plain::Reals reals(nrows, ncols);
    std::uniform_real_distribution<float> value(low, high);
    for (float& real : reals.values) {
        real = value(random);
    }
    return reals;
}

inline int randomBetween(std::mt19937& random, int low, int high)
{
    return std::uniform_int_distribution<int>(low, high)(random);
}

inline double randomReal(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

} // namespace gridforge::test
