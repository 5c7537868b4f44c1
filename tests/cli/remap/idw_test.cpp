#include "cli/remap/remap_grids.h"

#include "support/consoles.h"
#include "support/paths.h"
#include <chrono>

namespace gridforge::test {
namespace {

using namespace std::chrono_literals;

// One wet coarse cell of 2 in a row of four, and terrain of two rows with a wall in column 6 and a hump in the south of
// column 4.
void giveStrip(ToolRun& run)
{
    run.give("wl.asc", coarseGrid({{kNull, 5, kNull, kNull}}));
    run.give("dem.asc", ascGrid({{1, 1, 1, 1, 1, 9, 1, 1}, {1, 1, 1, 6, 1, 9, 1, 1}}));
}

const Cells kStripLevels = {{5, 5, 5, 5, 5, kNull, kNull, kNull}, {5, 5, 5, kNull, 5, kNull, kNull, kNull}};
const Cells kStripDepths = {{4, 4, 4, 4, 4, kNull, kNull, kNull}, {4, 4, 4, kNull, 4, kNull, kNull, kNull}};

TEST(RemapIdwCli, GrowsToTheWall)
{
    ToolRun run("-remap -idw_npt1 -bd4 -wl wl.asc -dem dem.asc");
    giveStrip(run);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run,
        joined(
            {{kBanner, "CHECK - Buffer distance specified, use IDW interporation.", kWildcards, "Input File  1: wl.asc",
              "   File  1: wl.asc", "Processing -remap option.", "   Water Level Grid: wl.asc",
              "   High Res DEM:     dem.asc", "   Number of grids to remap without interporation:  0",
              openedInput("wl.asc"), openedUnit(1001), "External Grid Info: 1 rows by 4 columns with 2. cell size.",
              "Allocating 0Kb memory for storing water levels...", "Reading WL data"},
             ascCells(),
             {"Allocating 0Kb memory for mod wet/dry flags",
              "Adding freeboard and setting wet/dry flags for modelled grid...", "   Done.",
              "Allocating 0Kb memory for maximum extent flags", "Allocating 0Kb memory for working array...",
              "Setting maximum extent flags based on buffer distance of 4.",
              "Found            1 wet cells in input grid and added            3 buffered cells.",
              "Reading DEM header..."},
             headerOf("dem.asc", "2 rows by 8 columns"),
             {"Allocating 0Kb memory for storing DEM.", "Reading DEM data"},
             ascCells(),
             {"Allocating 0Kb memory for processing", kFormatOfInputs,
              "Using specified number of points for IDW interpolation of 1",
              "Beginning IDW interpolation, this may take a while.", "Total rows: 1", "Processing row:", "   Done."},
             writtenAsc("wl_h_IDW"),
             {"Interpolating IDW results to DEM - Row:", "Extending extent outward, maximum number of iterations: 5",
              "Iteration 1 extra wet cells 4", "Iteration 2 extra wet cells 2", "Iteration 3 extra wet cells 0"},
             writtenAsc("wl_remap_h"),
             {"Calculating depths based on interpolated levels - Row:"},
             writtenAsc("wl_remap_d"),
             {""},
             normalEnd()}));
    EXPECT_GRID(run, "wl_h_IDW.asc", {{5, 5, 5, 5}});
    EXPECT_EQ(run.grid("wl_h_IDW.asc").cellsize, 2);
    EXPECT_GRID(run, "wl_remap_h.asc", kStripLevels);
    EXPECT_GRID(run, "wl_remap_d.asc", kStripDepths);
    EXPECT_NO_OTHER_FILES(run);
}

// Every cell starts in the state whose number is the null, and -1 is that of dry cells.
TEST(RemapIdwCli, WithANullOfMinus1NoCellBecomesWetByGrowth)
{
    ToolRun run("-remap -idw_npt1 -bd4 -wl wl.asc -dem dem.asc");
    giveStrip(run);
    run.give("wl.asc", ascGrid({{-1, 5, -1, -1}}, {.cellsize = 2, .null = -1}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 1 extra wet cells 0"});
    EXPECT_GRID(run, "wl_remap_h.asc", {{-1, -1, 5, 5, -1, -1, -1, -1}, {-1, -1, 5, -1, -1, -1, -1, -1}});
}

TEST(RemapIdwCli, TheBufferLimitsTheIterations)
{
    // 20 over cells of 5 is 4, and one more. The level stands above the ground everywhere.
    ToolRun run("-remap -idw_npt1 -bd20 -wl wl.asc -dem dem.asc");
    Cells levels(1, std::vector<double>(40, kNull));
    levels[0][30] = 5;
    run.give("wl.asc", ascGrid(levels, {.cellsize = 5}));
    run.give("dem.asc", ascGrid(Cells(1, std::vector<double>(40, 1)), {.cellsize = 5}));
    run.start();
    EXPECT_TRUE(run.says("Extending extent outward, maximum number of iterations: 5"));
    // The four cells to the east in one sweep, to the west one a sweep; levels reach 20 to either side.
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 1 extra wet cells 5", "Iteration 2 extra wet cells 1",
                               "Iteration 3 extra wet cells 1", "Iteration 4 extra wet cells 1",
                               "Iteration 5 extra wet cells 0"});
    Cells expected(1, std::vector<double>(40, kNull));
    for (std::size_t c = 26; c <= 34; ++c) {
        expected[0][c] = 5;
    }
    EXPECT_GRID(run, "wl_remap_h.asc", expected);
}

TEST(RemapIdwCli, TheLimitOfTheBufferHoldsWithAnExtentGridToo)
{
    // The extent grid sets the flags, all of them; the buffer still allows 4 / 1 + 1 iterations.
    ToolRun run("-remap -idw_npt1 -bd4 -wl wl.asc -dem dem.asc -ext ext.asc");
    const double n = kNull;
    run.give("wl.asc", ascGrid({{n, n, n, n, n, n, n, n, n, n, 5, n}}));
    run.give("ext.asc", ascGrid(Cells(1, std::vector<double>(12, 1))));
    run.give("dem.asc", ascGrid(Cells(1, std::vector<double>(12, 1))));
    run.start();
    EXPECT_GRID(run, "wl_h_IDW.asc", Cells(1, std::vector<double>(12, 5)));
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 5 extra wet cells 1", openedOutput("wl_remap_h.asc", 1001)});
    EXPECT_GRID(run, "wl_remap_h.asc", {{n, n, n, n, n, 5, 5, 5, 5, 5, 5, 5}});
}

TEST(RemapIdwCli, NoPointsMeansTwelve)
{
    for (const char* points : {"-idw_npt0", "-idw_npt-3", "-fb0"}) {
        ToolRun run({"-remap", points, "-bd3", "-wl", "wl.asc", "-dem", "dem.asc"});
        givePlane(run);
        run.start();
        EXPECT_TRUE(run.says("Max number of points for IDW interpolation not specified, defaulting to 12"));
    }
}

TEST(RemapIdwCli, WritesRowNumbers)
{
    ToolRun run("-remap -idw_npt1 -bd30 -wl wl.asc -dem dem.asc");
    run.give("wl.asc", ascGrid(Cells(21, {5, 5}), {.cellsize = 10}));
    run.give("dem.asc", ascGrid(Cells(210, {1})));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Total rows: 21", "Processing row:      10      20", "   Done."});
    EXPECT_TRUE(run.says("Interpolating IDW results to DEM - Row:     100     200"));
    EXPECT_TRUE(run.says("Calculating depths based on interpolated levels - Row:     100     200"));
}

TEST(RemapIdwCli, TheExtentGridBoundsTheLevels)
{
    // The extent's own null is -1; its cell of -1 + 0.0099 is not part of it.
    ToolRun run("-remap -idw_npt1 -wl wl.asc -dem dem.asc -ext ext.asc");
    run.give("wl.asc", coarseGrid({{kNull, 5, kNull, kNull}}));
    run.give("dem.asc", ascGrid({{1, 1, 1, 1, 1, 1, 1, 1}}));
    run.give("ext.asc", ascGrid({{-1, -1, 0, -0.9901}}, {.cellsize = 2, .null = -1}));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Checking water level and maximum extent grids match...", "    Done.", "Reading max extent data"});
    EXPECT_CONSOLE_HOLDS(
        run, {"Setting maximum extent flags based on maximum modelled grid...", "   Done.", "Reading DEM header..."});
    EXPECT_TRUE(run.says("Extending extent outward, maximum number of iterations: 1000"));
    EXPECT_GRID(run, "wl_h_IDW.asc", {{kNull, 5, 5, kNull}}); // a wet cell keeps its level outside the extent too
    EXPECT_GRID(run, "wl_remap_h.asc", {{kNull, kNull, 5, 5, 5, 5, kNull, kNull}});
}

const std::string kUnlimited =
    "WARNING - Maximum extent not limited by buffer distance or specified extent, processing may be slow.";

TEST(RemapIdwCli, WithoutALimitItWaitsForEnterInBatchModeToo)
{
    ToolRun run(
        {"-c", "mkfifo in && exec <>in && exec '" + toolPath() + "' -b -remap -idw_npt1 -wl wl.asc -dem dem.asc"});
    run.program("/bin/sh");
    giveStrip(run);
    EXPECT_TRUE(run.stillRunsAfter(500ms));
    EXPECT_CONSOLE_HOLDS(run, {kUnlimited, kEnter});
    EXPECT_FALSE(run.says("Reading DEM header..."));
}

TEST(RemapIdwCli, WithoutALimitItGoesOnAfterEnter)
{
    ToolRun run("-b -remap -idw_npt1 -wl wl.asc -dem dem.asc");
    giveStrip(run);
    run.type("");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {kUnlimited, kEnter, "Reading DEM header..."});
    EXPECT_GRID(run, "wl_remap_h.asc", kStripLevels);
}

const std::string kEndless =
    "WARNING - Fewer wet cells within reach than IDW points, the search does not end. Press Ctrl+C to stop.";

TEST(RemapIdwCli, TooFewWetCellsMakeTheSearchEndless)
{
    ToolRun run("-b -remap -idw_npt2 -bd4 -wl wl.asc -dem dem.asc");
    giveStrip(run);
    EXPECT_TRUE(run.stillRunsAfter(700ms));
    EXPECT_CONSOLE_HOLDS(run, {"Processing row:", kEndless});
    EXPECT_LT(run.processorSeconds(), 0.5); // it waits, it does not spin
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapIdwCli, AWetCellOnTheOutermostColumnIsFoundInTheFirstWindowOnly)
{
    ToolRun run("-b -remap -idw_npt1 -bd4 -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{5, kNull, kNull, kNull}}));
    run.give("dem.asc", ascGrid({{1, 1, 1, 1, 1, 1, 1, 1}}));
    EXPECT_TRUE(run.stillRunsAfter(500ms)); // the cell two columns away has it in no window
    EXPECT_TRUE(run.says(kEndless));

    ToolRun near("-b -remap -idw_npt1 -bd2 -wl wl.asc -dem dem.asc");
    near.give("wl.asc", coarseGrid({{5, kNull, kNull, kNull}}));
    near.give("dem.asc", ascGrid({{1, 1, 1, 1, 1, 1, 1, 1}}));
    near.start();
    EXPECT_GRID(near, "wl_h_IDW.asc", {{5, 5, kNull, kNull}});
}

TEST(RemapIdwCli, WithoutACellToExtendToFewWetCellsDoNoHarm)
{
    ToolRun run("-remap -idw_npt5 -bd1 -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{kNull, 5, kNull}})); // a buffer of 1 reaches no cell of 2
    run.give("dem.asc", ascGrid({{1, 1, 1, 1, 1, 1}}));
    run.start();
    EXPECT_GRID(run, "wl_remap_h.asc", {{kNull, kNull, 5, 5, kNull, kNull}});
}

TEST(RemapIdwCli, ReportsEveryHundredthIteration)
{
    // Growth to the west takes one iteration a cell: from column 149 of 150.
    ToolRun run("-remap -idw_npt1 -wl wl.asc -dem dem.asc -ext ext.asc");
    const auto line = [](double value) { return Cells(1, std::vector<double>(150, value)); };
    Cells levels = line(kNull);
    levels[0][148] = 5;
    run.give("wl.asc", ascGrid(levels));
    run.give("ext.asc", ascGrid(line(1)));
    run.give("dem.asc", ascGrid(line(2)));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 1 extra wet cells 2", "Iteration 2 extra wet cells 1"});
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 99 extra wet cells 1", openedOutput("wl_d2_iter100.asc", 1001),
                               "Writing ASC grid...", "Finished writing ASC grid.", closedUnit(1001),
                               "Iteration 100 extra wet cells 1", "Iteration 101 extra wet cells 1"});
    EXPECT_CONSOLE_HOLDS(run, {"Iteration 148 extra wet cells 1", "Iteration 149 extra wet cells 0",
                               openedOutput("wl_remap_h.asc", 1001)});
    Cells report = line(5); // levels, in spite of the name
    std::fill(report[0].begin(), report[0].begin() + 48, kNull);
    EXPECT_GRID(run, "wl_d2_iter100.asc", report);
    EXPECT_GRID(run, "wl_remap_h.asc", line(5));
    EXPECT_GRID(run, "wl_remap_d.asc", line(3));
    run.expectFile("wl_h_IDW.asc");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapIdwCli, ASeedOverNullGroundStaysWetAndGrowthDoesNotReachNullGround)
{
    ToolRun run("-remap -idw_npt1 -bd4 -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{kNull, 5, kNull}}));
    run.give("dem.asc", ascGrid({{1, -99, -99, 1, -99, 1}}, {.null = -99}));
    run.start();
    EXPECT_GRID(run, "wl_remap_d.asc", {{kNull, kNull, 104, 4, kNull, kNull}});
}

} // namespace
} // namespace gridforge::test
