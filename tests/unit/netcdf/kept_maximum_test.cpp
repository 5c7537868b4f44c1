#include "netcdf/kept_maximum.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/environment.h"
#include "support/refusing_system.h"
#include "support/scratch_folder.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace gridforge {
namespace {

GridHeader latticeOf(std::int32_t nrows, std::int32_t ncols)
{
    GridHeader lattice;
    lattice.nrows = nrows;
    lattice.ncols = ncols;
    lattice.null = -1;
    return lattice;
}

TEST(KeptMaximum, IsThatOfAllGridsWhereverItWaits)
{
    const test::ScratchFolder folder;
    for (const char* memory : {"1", "1000000"}) {
        for (const char* piece : {"1", "7", "1000"}) {
            const test::Environment environment(
                {{"GRIDFORGE_MEMORY", memory}, {"GRIDFORGE_PIECE", piece}, {"GRIDFORGE_THREADS", "3"}});
            netcdf::KeptMaximum maximum;
            ASSERT_TRUE(maximum.start(latticeOf(5, 20), folder.path().string()));
            std::vector<float> kept(100);
            ASSERT_TRUE(maximum.cells().get(0, kept));
            EXPECT_THAT(kept, testing::Each(-1));
            for (int grid = 0; grid < 3; ++grid) {
                std::vector<float> cells(100, -1);
                for (std::size_t i = 0; i < cells.size(); ++i) {
                    cells[i] = i % 4 == 3 ? -1 : static_cast<float>((i + static_cast<std::size_t>(grid)) % 3);
                }
                grid::CellStore laid;
                ASSERT_TRUE(laid.take(100, folder.path().string()));
                ASSERT_TRUE(laid.put(0, cells));
                ASSERT_EQ(maximum.raise(laid), run::Way::ahead);
            }
            ASSERT_TRUE(maximum.cells().get(0, kept));
            for (std::size_t i = 0; i < kept.size(); ++i) { // over three grids each cell that is not null is 0, 1 and 2
                EXPECT_EQ(kept[i], i % 4 == 3 ? -1 : 2) << i;
            }
        }
    }
}

TEST(KeptMaximum, CellsThatCannotBeReadBackAreReported)
{
    const test::Environment inFiles({{"GRIDFORGE_MEMORY", "1"}});
    const test::ScratchFolder folder;
    const test::ChildRun run = test::runInChild(folder, [] {
        netcdf::KeptMaximum maximum;
        EXPECT_TRUE(maximum.start(latticeOf(5, 20), "."));
        grid::CellStore laid;
        EXPECT_TRUE(laid.take(100, "."));
        EXPECT_TRUE(laid.put(0, std::vector<float>(100)));
        for (const int good : {0, 1, 2}) { // the kept cells, those of the grid
            test::refuseReadsAfter(good);
            say(maximum.raise(laid) == run::Way::ahead ? "raised" : "not raised");
        }
    });
    EXPECT_EQ(run.console, "not raised\nnot raised\nraised\n");
}

TEST(KeptMaximum, RoomThatCannotBeHadIsReported)
{
    const test::Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    netcdf::KeptMaximum maximum;
    EXPECT_FALSE(maximum.start(latticeOf(5, 20), "."));
}

} // namespace
} // namespace gridforge
