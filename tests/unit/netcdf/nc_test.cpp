#include "netcdf/nc.h"

#include "grid/cell_store.h"
#include "host/console.h"
#include "run/cells_ahead.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/process_limits.h"
#include "support/refusing_system.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::kExits;

TEST(RunNc, CellsThatFindNoRoomToWaitEndTheRun)
{
    if (!test::canLimitMemory()) {
        GTEST_SKIP() << "the sanitizer has taken its memory already";
    }
    const test::ScratchFolder folder;
    folder.give("a.flt", "");
    folder.give("a.hdr", "ncols 4000\nnrows 5000\nxllcorner 0\nyllcorner 0\ncellsize 1\nbyteorder LSBFIRST\n");
    const test::ChildRun run = test::runInChild(folder, [] {
        run::InputFileList inputs;
        inputs.add("a.flt");
        const test::Environment environment({{"GRIDFORGE_SCRATCH", "/nowhere"}});
        test::limitMemory(120); // enough for a grid of 80 MB and the library, not for another
        netcdf::runNc({}, {}, inputs);
    });
    EXPECT_TRUE(run.ended);
    EXPECT_THAT(run.console, testing::EndsWith("Allocating 80000Kb memory for external grid...\n"
                                               "ERROR - Could not allocate enough memory (RAM).\n" +
                                               kExits));
}

// A grid that finds no room ahead of its story may find it later; where there is still none the run ends.
TEST(RunNc, ARefusedRoomForCellsIsNeverLost)
{
    const test::Environment environment(
        {{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "."}, {"GRIDFORGE_THREADS", "1"}});
    const auto run = [](const test::ScratchFolder& folder, int good) {
        folder.give("a.asc", test::ascGrid({{21, 22}, {11, 12}}));
        folder.give("b.asc", test::ascGrid({{21, 32}, {31, 12}}));
        return test::runInChild(folder, [good] {
            run::InputFileList inputs;
            inputs.add("a.asc");
            inputs.add("b.asc");
            test::refuseOneUnnamedFileAfter(good);
            const std::size_t before = run::waysGone(run::Way::noRoom);
            netcdf::runNc({}, {}, inputs);
            say("no room: ", run::waysGone(run::Way::noRoom) - before);
        });
    };
    const test::ScratchFolder whole;
    EXPECT_FALSE(run(whole, -1).ended);
    int noRoom = 0;
    int ended = 0;
    for (int good = 0; good < 10; ++good) {
        const test::ScratchFolder folder;
        const test::ChildRun made = run(folder, good);
        if (made.ended) {
            ++ended;
            EXPECT_TRUE(made.console.ends_with("ERROR - Could not allocate enough memory (RAM).\n" + kExits)) << good;
        } else {
            noRoom += made.console.ends_with("no room: 1\n") ? 1 : 0;
            EXPECT_TRUE(folder.read("a.nc") == whole.read("a.nc")) << good << " files";
        }
    }
    EXPECT_EQ(ended, 1); // the maximum has no other way
    EXPECT_GT(noRoom, 1);
}

// Cells of grids that are read ahead and step by step, and those of the maximum.
TEST(RunNc, EachRefusalOfCellsThatWaitInFilesEndsTheRun)
{
    const test::Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_THREADS", "1"}});
    for (auto* const refuseAfter : {test::refuseReadsAfter, test::refuseWritesAfter}) {
        int good = 0; // calls before the first refusal
        for (bool ended = true; ended && good < 100; ++good) {
            const test::ScratchFolder folder;
            folder.give("a.asc", "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n21\n22\n11 12\n");
            folder.give("b.asc", test::ascGrid({{21, 22}, {11, 12}}));
            const test::ChildRun run = test::runInChild(folder, [&] {
                run::InputFileList inputs;
                inputs.add("a.asc");
                inputs.add("b.asc");
                refuseAfter(good);
                netcdf::runNc({}, {}, inputs);
            });
            ended = run.ended;
            EXPECT_TRUE(!ended || run.console.ends_with("ERROR - Could not allocate enough memory (RAM).\n" + kExits))
                << good << " good calls\n"
                << run.console;
        }
        EXPECT_GT(good, 5);
        EXPECT_LT(good, 100);
    }
}

// A call that is refused while all others go well must not leave a file that looks whole: the run ends, or reads the grid again.
TEST(RunNc, ASingleRefusalIsNeverLost)
{
    const test::Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_THREADS", "1"}});
    const auto run = [](const test::ScratchFolder& folder, void (*refuseAfter)(int), int good) {
        folder.give("a.asc", "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n21\n22\n11 12\n");
        folder.give("b.asc", test::ascGrid({{21, 32}, {31, 12}}));
        return test::runInChild(folder, [&] {
            run::InputFileList inputs;
            inputs.add("a.asc");
            inputs.add("b.asc");
            refuseAfter(good);
            netcdf::runNc({}, {}, inputs);
        });
    };
    const test::ScratchFolder whole;
    EXPECT_FALSE(run(whole, test::refuseOneReadAfter, -1).ended);
    for (auto* const refuseAfter : {test::refuseOneReadAfter, test::refuseOneWriteAfter}) {
        int ended = 0;
        for (int good = 0; good < 30; ++good) {
            const test::ScratchFolder folder;
            if (run(folder, refuseAfter, good).ended) {
                ++ended;
            } else {
                EXPECT_TRUE(folder.read("a.nc") == whole.read("a.nc")) << good << " good calls";
            }
        }
        EXPECT_GT(ended, 3);
        EXPECT_LT(ended, 30);
    }
}

// All cells of a binary grid are read before its story, also one past a whole number of pieces: the grid goes step by step then.
TEST(RunNc, ABinaryGridIsReadOnceBeforeItsStory)
{
    const test::Environment environment({{"GRIDFORGE_PIECE", "24"}, {"GRIDFORGE_THREADS", "1"}});
    const test::Cells cells(1, std::vector<double>(25, 2.5));
    const auto run = [&cells](const test::ScratchFolder& folder, int good) {
        folder.give("a.flt", test::fltCells(cells));
        folder.give("a.hdr", test::hdr(cells));
        return test::runInChild(folder, [&] {
            run::InputFileList inputs;
            inputs.add("a.flt");
            test::refuseReadsAfter(good);
            netcdf::runNc({}, {.part = true}, inputs);
        });
    };
    const test::ScratchFolder whole;
    EXPECT_FALSE(run(whole, 1000).ended);
    for (const int good : {0, 1}) {
        const test::ScratchFolder folder;
        EXPECT_FALSE(run(folder, good).ended) << good << " good reads";
        EXPECT_TRUE(folder.read("a.nc") == whole.read("a.nc")) << good << " good reads";
    }
}

// --- Ways of the grids -----------------------------------------------------------------------------------------------

const test::Cells kFirst{{121, 122, 123}, {111, 112, 113}};
const test::Cells kSecond{{221, 222, 223}, {211, 212, 213}};

// How many grids went ahead, were odd inputs, of another lattice, odd texts.
std::string waysOf(const test::ScratchFolder& folder, const std::vector<std::string>& names)
{
    const auto counts = [] {
        return std::array{run::waysGone(run::Way::ahead), run::waysGone(run::Way::oddInput),
                          run::waysGone(run::Way::otherLattice), run::waysGone(run::Way::oddText)};
    };
    const test::ChildRun run = test::runInChild(folder, [&] {
        run::InputFileList inputs;
        for (const std::string& name : names) {
            inputs.add(name);
        }
        const auto before = counts();
        netcdf::runNc({}, {}, inputs);
        const auto after = counts();
        say("ways: ", after[0] - before[0], ' ', after[1] - before[1], ' ', after[2] - before[2], ' ',
            after[3] - before[3]);
    });
    EXPECT_FALSE(run.ended) << run.console;
    return run.console.substr(std::min(run.console.size(), run.console.rfind("ways: ")));
}

TEST(RunNc, OrdinaryGridsAreReadAheadOfTheirStory)
{
    const test::ScratchFolder folder;
    folder.give("a.flt", test::fltCells(kFirst));
    folder.give("a.hdr", test::hdr(kFirst));
    folder.give("b.asc", test::ascGrid(kSecond));
    folder.give("c.asc", test::ascGrid(kFirst));
    EXPECT_EQ(waysOf(folder, {"a.flt", "b.asc", "c.asc"}), "ways: 3 0 0 0\n");
}

// How many times cells found no room in memory, of two binary grids.
std::string filesOf(bool part)
{
    const test::ScratchFolder folder;
    const test::Cells cells(3, std::vector<double>(100, 2.5));
    for (const char* const name : {"a", "b"}) {
        folder.give(std::string(name) + ".flt", test::fltCells(cells));
        folder.give(std::string(name) + ".hdr", test::hdr(cells));
    }
    const test::ChildRun run = test::runInChild(folder, [&] {
        const test::Environment environment({{"GRIDFORGE_MEMORY", "1"}});
        run::InputFileList inputs;
        inputs.add("a.flt");
        inputs.add("b.flt");
        const std::size_t before = grid::filesOfCells();
        netcdf::runNc({}, {.part = part}, inputs);
        say("files: ", grid::filesOfCells() - before);
    });
    EXPECT_FALSE(run.ended) << run.console;
    return run.console.substr(std::min(run.console.size(), run.console.rfind("files: ")));
}

TEST(RunNc, ByRowsOnlyTheMaximumOfBinaryGridsWaits)
{
    EXPECT_EQ(filesOf(false), "files: 3\n");
    EXPECT_EQ(filesOf(true), "files: 1\n");
}

TEST(RunNc, AnOddGridAmongThemIsReadStepByStep)
{
    const test::ScratchFolder folder;
    folder.give("a.asc", test::ascGrid(kFirst));
    folder.give("b.asc", "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\n221 222\n223\n211 212 213\n");
    folder.give("c.asc", test::ascGrid(kFirst));
    EXPECT_EQ(waysOf(folder, {"a.asc", "b.asc", "c.asc"}), "ways: 2 0 0 1\n");
}

TEST(RunNc, AGridThatIsTheOutputIsReadStepByStep)
{
    const test::ScratchFolder folder;
    folder.give("a.flt", test::fltCells(kFirst));
    folder.give("a.hdr", test::hdr(kFirst));
    folder.give("b.hdr", test::hdr(kFirst));
    std::filesystem::create_symlink("a.nc", folder.path() / "b.flt");
    EXPECT_EQ(waysOf(folder, {"a.flt", "b.flt"}), "ways: 1 1 0 0\n");
}

} // namespace
} // namespace gridforge
