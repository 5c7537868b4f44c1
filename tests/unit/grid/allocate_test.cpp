#include "grid/allocate.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace gridforge {
namespace {

using test::kExits;

TEST(GridKilobytes, WrapAt32Bits)
{
    EXPECT_EQ(grid::gridKilobytes(10, 24), 0);             // 960 bytes
    EXPECT_EQ(grid::gridKilobytes(10, 25), 1);             // 1000 bytes
    EXPECT_EQ(grid::gridKilobytes(10000, 50000), 2000000); // 2.0e9 bytes still fit
    // 4 * 30000 * 20000 = 2400000000, which wraps to 2400000000 - 4294967296 = -1894967296
    EXPECT_EQ(grid::gridKilobytes(30000, 20000), -1894967);
}

GridHeader headerOf(std::int32_t nrows, std::int32_t ncols)
{
    GridHeader header;
    header.nrows = nrows;
    header.ncols = ncols;
    return header;
}

TEST(AllocateGrid, SaysWhatItTakesAndEndsWithoutMemory)
{
    const test::ScratchFolder folder;
    const auto run = test::runInChild(folder, [] {
        Grid grid;
        grid::allocateGrid(grid, headerOf(50, 60), "external grid...");
        say(grid.nrows(), 'x', grid.ncols());
        grid::allocateGrid(grid, headerOf(2147483647, 2147483647), "too much...");
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
        Grid grid;
        grid::allocateGrid(grid, headerOf(2, 3), "a...");
        const float* const cells = grid.cells().data();
        grid(2, 3) = 5;
        grid::allocateGrid(grid, headerOf(2, 3), "a...");
        say(cells == grid.cells().data() ? "kept " : "other ", grid(2, 3) == 0 ? "zero" : "not zero");
        grid::allocateGrid(grid, headerOf(3, 2), "a..."); // as many cells in another shape
        say(grid.nrows(), 'x', grid.ncols());
    });
    const std::string line = "Allocating 0Kb memory for a...\n";
    EXPECT_EQ(run.console, line + line + "kept zero\n" + line + "3x2\n");
}

} // namespace
} // namespace gridforge
