#include "plane/cell_array.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

TEST(Grid, RowOneIsTheLastLineOfTheFile)
{
    Grid grid;
    ASSERT_TRUE(grid.allocate(3, 2));
    std::ranges::copy(std::to_array<float>({31, 32, 21, 22, 11, 12}), grid.cells().begin());
    for (std::int32_t row = 1; row <= 3; ++row) {
        for (std::int32_t column = 1; column <= 2; ++column) {
            EXPECT_EQ(grid(row, column), static_cast<float>(10 * row + column));
            EXPECT_EQ(grid.row(row)[static_cast<std::size_t>(column - 1)], grid(row, column));
        }
    }
}

TEST(Grid, StartsAtZeroWhateverItsSize)
{
    for (const std::int32_t size : {1, 100, 2000}) {
        Grid grid;
        ASSERT_TRUE(grid.allocate(size, size));
        EXPECT_TRUE(std::ranges::all_of(grid.cells(), [](float cell) { return cell == 0.0F; }));
        grid.release();
        EXPECT_TRUE(grid.cells().empty());
    }
}

TEST(Grid, MemoryThatCannotBeHadIsToldNotTaken)
{
    Grid grid;
    EXPECT_FALSE(grid.allocate(2147483647, 2147483647));
    EXPECT_TRUE(grid.cells().empty());
}

} // namespace
} // namespace gridforge
