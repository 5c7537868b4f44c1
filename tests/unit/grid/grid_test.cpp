#include "grid/grid.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

using test::kExits;

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

TEST(GridKilobytes, WrapAt32Bits)
{
    EXPECT_EQ(grid::gridKilobytes(10, 24), 0);             // 960 bytes
    EXPECT_EQ(grid::gridKilobytes(10, 25), 1);             // 1000 bytes
    EXPECT_EQ(grid::gridKilobytes(10000, 50000), 2000000); // 2.0e9 bytes still fit
    // 4 * 30000 * 20000 = 2400000000, which wraps to 2400000000 - 4294967296 = -1894967296
    EXPECT_EQ(grid::gridKilobytes(30000, 20000), -1894967);
}

TEST(AllocateGrid, SaysWhatItTakesAndEndsWithoutMemory)
{
    const test::ScratchFolder folder;
    const auto run = test::runInChild(folder, [] {
        GridHeader header;
        header.nrows = 50;
        header.ncols = 60;
        Grid grid;
        grid::allocateGrid(grid, header, "external grid...");
        say(grid.nrows(), 'x', grid.ncols());
        header.nrows = 2147483647;
        header.ncols = 2147483647;
        grid::allocateGrid(grid, header, "too much...");
    });
    EXPECT_TRUE(run.ended);
    // 2147483647^2 * 4 is 4 modulo 2^32.
    EXPECT_EQ(run.console, "Allocating 12Kb memory for external grid...\n50x60\n"
                           "Allocating 0Kb memory for too much...\n"
                           "ERROR - Could not allocate enough memory (RAM).\n" +
                               kExits);
}

TEST(AllocateGrid, AnArrayOfTheSameSizeIsClearedAndKept)
{
    const test::ScratchFolder folder;
    const auto run = test::runInChild(folder, [] {
        GridHeader header;
        header.nrows = 2;
        header.ncols = 3;
        Grid grid;
        grid::allocateGrid(grid, header, "a...");
        const float* const cells = grid.cells().data();
        grid(2, 3) = 5;
        grid::allocateGrid(grid, header, "a...");
        say(cells == grid.cells().data() ? "kept " : "other ", grid(2, 3) == 0 ? "zero" : "not zero");
        header.nrows = 3;
        header.ncols = 2; // as many cells in another shape
        grid::allocateGrid(grid, header, "a...");
        say(grid.nrows(), 'x', grid.ncols());
    });
    const std::string line = "Allocating 0Kb memory for a...\n";
    EXPECT_EQ(run.console, line + line + "kept zero\n" + line + "3x2\n");
}

TEST(GridHeader, TellsTheCentresOfCells)
{
    GridHeader header;
    header.xll = 100;
    header.yll = 10;
    header.cellsize8 = 4;
    EXPECT_EQ(header.x(1), 102);
    EXPECT_EQ(header.x(3), 110);
    EXPECT_EQ(header.y(2), 16);
}

} // namespace
} // namespace gridforge
