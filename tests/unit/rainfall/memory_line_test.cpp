#include "rainfall/memory_line.h"

#include "support/child_run.h"

#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

TEST(MethodMemory, IsToldInWrapping32Bits)
{
    const ScratchFolder folder;
    const ChildRun run = runInChild(folder, [] {
        GridHeader grid;
        grid.nrows = 20000;
        grid.ncols = 15000; // 3e8 cells
        rainfall::sayMethodMemory(grid, 4);
        rainfall::sayMethodMemory(grid, 8);
        rainfall::sayMethodMemory(grid, 20);
    });
    EXPECT_EQ(run.console, "Memory required: 1200000kB\n"
                           "Memory required: -1894967kB\n"  // 2.4e9 - 2^32 = -1894967296
                           "Memory required: 1705032kB\n"); // 6e9 - 2^32 = 1705032704
}

} // namespace
} // namespace gridforge::test
