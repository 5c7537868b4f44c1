#include "netcdf/layout_cells.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using testing::ElementsAre;

TEST(TurnCells, TheWestColumnComesFirstFromTheSouth)
{
    const std::vector<float> rows{31, 32, 21, 22, 11, 12}; // row from the south, column
    std::vector<float> turned(6);
    netcdf::turnCells(rows, 2, turned.data(), 3);
    EXPECT_THAT(turned, ElementsAre(11, 21, 31, 12, 22, 32));
}

TEST(TurnCells, ColumnsMayStandApart)
{
    const std::vector<float> rows{21, 22, 11, 12};
    std::vector<float> turned(5, -1);
    netcdf::turnCells(rows, 2, turned.data(), 3);
    EXPECT_THAT(turned, ElementsAre(11, 21, -1, 12, 22));
}

TEST(TurnCells, AgreesWithThePlainOrder)
{
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        const std::size_t nrows = 1 + random() % 60;
        const std::size_t ncols = 1 + random() % 60;
        std::vector<float> rows(nrows * ncols);
        std::vector<float> plain(nrows * ncols);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = static_cast<float>(i);
            plain[i % ncols * nrows + (nrows - 1 - i / ncols)] = rows[i];
        }
        std::vector<float> turned(rows.size());
        netcdf::turnCells(rows, ncols, turned.data(), nrows);
        ASSERT_EQ(turned, plain) << nrows << " by " << ncols;
    }
}

} // namespace
} // namespace gridforge
