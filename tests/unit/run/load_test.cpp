#include "run/load.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/memory_run.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::kExits;
using test::MemoryRun;

// A grid of one row.
std::string ascOf(const std::string& corner, const std::string& null, const std::string& cells)
{
    return "ncols 2\nnrows 1\nxllcorner " + corner + "\nyllcorner 0\ncellsize 1\nNODATA_value " + null + "\n" + cells +
           "\n";
}

std::string opened(const std::string& name)
{
    return "Trying to open file " + name + "...OK.\nOpened File Unit:1001\n" +
           "External Grid Info: 1 rows by 2 columns with 1. cell size.\n";
}

const std::string kCellsRead = "Reading ASCII grid...\n\n...Closed File Unit:1001\n";

TEST(LoadGrid, SaysNothingOfItsOwn)
{
    const MemoryRun run;
    giveMemoryFile("a.asc", ascOf("0", "-1", "5 6"));
    Grid cells;
    ASSERT_TRUE(cells.allocate(1, 2));
    const run::LoadedGrid loaded = run::loadGrid("a.asc", {}, cells);
    EXPECT_EQ(MemoryRun::console(), opened("a.asc") + kCellsRead);
    EXPECT_EQ(loaded.header.null, -1.0F);
    EXPECT_EQ(loaded.format, grid::Format::asc);
    EXPECT_EQ(cells(1, 2), 6.0F);
}

TEST(LoadGrid, GoesThroughItsStepsInOrder)
{
    const MemoryRun run;
    giveMemoryFile("a.asc", ascOf("0", "-1", "5 6"));
    giveMemoryFile("a.prj", "PROJCS[]\n");
    GridHeader first;
    first.ncols = 2;
    first.nrows = 1;
    first.xll = 0.009; // within the tolerance
    first.yll = 0;
    first.cellsize8 = 1;
    Grid cells;
    const auto prepare = [&](const GridHeader& header) { say("columns ", header.ncols, " of ", cells.ncols()); };
    const run::LoadSteps steps{.opening = "opening",
                               .match = &first,
                               .matching = "matching",
                               .matched = "matched",
                               .purpose = "these cells",
                               .prepare = prepare,
                               .reading = "reading",
                               .done = "done"};
    const run::LoadedGrid loaded = run::loadGrid("a.asc", steps, cells);
    EXPECT_EQ(MemoryRun::console(),
              "opening\n"
              "Trying to open file a.prj...OK.\nOpened File Unit:1001\n"
              "Using a.prj for setting projection.\nshp Projection: PROJCS[]\n...Closed File Unit:1001\n" +
                  opened("a.asc") +
                  "matching\nmatched\nAllocating 0Kb memory for these cells\ncolumns 2 of 2\nreading\n" + kCellsRead +
                  "done\n");
    EXPECT_EQ(loaded.header.xll, 0.0);
    EXPECT_EQ(loaded.projectionText, "PROJCS[]");
    EXPECT_EQ(cells(1, 1), 5.0F);
}

TEST(LoadGrid, AnotherLatticeEndsTheRun)
{
    const test::ScratchFolder folder;
    folder.give("a.asc", ascOf("0.02", "-1", "5 6"));
    const test::ChildRun run = test::runInChild(folder, [] {
        GridHeader first;
        first.ncols = 2;
        first.nrows = 1;
        first.xll = 0;
        first.yll = 0;
        first.cellsize8 = 1;
        Grid cells;
        run::loadGrid("a.asc", {.match = &first, .matching = "matching", .matched = "not reached"}, cells);
    });
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.console, opened("a.asc") +
                               "matching\n"
                               "ERROR - x coordinates of input grids do not match. xll = 0. and 0.02\n"
                               "ERROR - dimensions of grids do not match (see above for details).\n" +
                               kExits);
}

TEST(LoadEach, GivesEachInputOfOneLattice)
{
    const MemoryRun run;
    giveMemoryFile("a.asc", ascOf("0", "-1", "5 6"));
    giveMemoryFile("b.asc", ascOf("0", "-2", "7 8"));
    giveMemoryFile("b.prj", "PROJCS[b]\n");
    run::InputFileList inputs;
    inputs.add("a.asc");
    inputs.add("b.asc");
    Grid cells;
    std::vector<float> found;
    const run::LoadedGrid loaded = run::loadEach(
        inputs, "these cells", [](const GridHeader& header) { say("null ", static_cast<std::int32_t>(header.null)); },
        cells,
        [&](std::int32_t i, const GridHeader& header) {
            found.insert(found.end(), {static_cast<float>(i), header.null, cells(1, 1), cells(1, 2)});
        });
    EXPECT_EQ(MemoryRun::console(),
              opened("a.asc") + "Allocating 0Kb memory for these cells\nnull -1\nProcessing: a.asc\n" + kCellsRead +
                  "Processing: b.asc\nTrying to open file b.prj...OK.\nOpened File Unit:1001\n"
                  "Using b.prj for setting projection.\nshp Projection: PROJCS[b]\n...Closed File Unit:1001\n" +
                  opened("b.asc") + kCellsRead);
    EXPECT_EQ(found, (std::vector<float>{1, -1, 5, 6, 2, -2, 7, 8}));
    EXPECT_EQ(loaded.header.null, -1.0F);
    EXPECT_EQ(loaded.projectionText, "PROJCS[b]");
}

} // namespace
} // namespace gridforge
