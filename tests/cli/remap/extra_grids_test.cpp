#include "cli/remap/remap_grids.h"
#include "support/consoles.h"

#include <chrono>

namespace gridforge::test {
namespace {

using namespace std::chrono_literals;

// What the hazard of the coarse cells 1 to 9 gives on the fine ones.
Cells hazardOnFineCells(double middle = 5)
{
    const double n = kNull;
    const double m = middle;
    return {{n, n, n, n, n, n}, {n, 1, 2, 2, 3, n}, {n, 4, m, m, 6, n},
            {n, 4, m, m, 6, n}, {n, 7, 8, 8, 9, n}, {n, n, n, n, n, n}};
}

const Cells kHazard = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};

TEST(RemapExtraGrids, TakeTheNearestCoarseCellWhereThereIsADepth)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc more/haz.asc");
    run.give("wl.asc", coarseGrid(planeLevels()));
    Cells ground = flatGround(0);
    ground[1][1] = 100;  // dry
    ground[4][4] = 19.5; // a depth of 0
    run.give("dem.asc", ascGrid(ground));
    run.give("more/haz.asc", coarseGrid(kHazard));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"   Number of grids to remap without interporation:  1", "   more/haz.asc"});
    EXPECT_CONSOLE_HOLDS(run, {"",
                               "Processing: more/haz.asc",
                               openedInput("more/haz.asc"),
                               openedUnit(1001),
                               "External Grid Info: 3 rows by 3 columns with 2. cell size.",
                               "Checking grid extent matches water level grid...",
                               "    OK.",
                               "Reading grid data",
                               "Reading ASCII grid...",
                               "",
                               closedUnit(1001),
                               "Using wet/dry flags of water level grid...",
                               "Extending output grid extent to match water level extent.",
                               "Total rows: 3",
                               "Processing row:",
                               "   Done.",
                               "Assinging nearest grid results to DEM grid locations - Row:",
                               openedOutput("more/haz_remap.asc", 1001),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1001),
                               kFinished});
    Cells expected = hazardOnFineCells();
    expected[1][1] = kNull;
    EXPECT_GRID(run, "more/haz_remap.asc", expected);
}

TEST(RemapExtraGrids, NullCellsWithinTheExtentTakeTheNearestValue)
{
    // The middle is null: of its four neighbours the southern one is listed first.
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    givePlane(run);
    Cells hazard = kHazard;
    hazard[1][1] = kNull;
    run.give("haz.asc", coarseGrid(hazard));
    run.start();
    EXPECT_GRID(run, "haz_remap.asc", hazardOnFineCells(8));
}

TEST(RemapExtraGrids, AreTestedAgainstTheNullOfTheWaterLevels)
{
    // The hazard's own null of -1 is a value like others.
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    givePlane(run);
    Cells hazard = kHazard;
    hazard[1][1] = -1;
    run.give("haz.asc", ascGrid(hazard, {.cellsize = 2, .null = -1}));
    run.start();
    EXPECT_GRID(run, "haz_remap.asc", hazardOnFineCells(-1));
    EXPECT_EQ(run.grid("haz_remap.asc").null, kNull);
}

TEST(RemapExtraGrids, LevelsAndDepthsAreSkippedByTheirNames)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc x_h_max.asc x_D_max.asc old_H_runs/haz.asc x_hd.asc both_d_h_x.asc");
    givePlane(run);
    for (const char* name : {"x_h_max.asc", "x_D_max.asc", "old_H_runs/haz.asc", "x_hd.asc", "both_d_h_x.asc"}) {
        run.give(name, coarseGrid(kHazard));
    }
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"   Number of grids to remap without interporation:  5", "   x_h_max.asc"});
    EXPECT_CONSOLE_HOLDS(run, {"", "Skipping water level gird: x_h_max.asc", "Skipping water depth gird: x_D_max.asc",
                               "Skipping water level gird: old_H_runs/haz.asc", "Processing: x_hd.asc"});
    EXPECT_CONSOLE_HOLDS(run, {"Skipping water level gird: both_d_h_x.asc", kFinished});
    EXPECT_GRID(run, "x_hd_remap.asc", hazardOnFineCells());
    run.expectFile("wl_remap_h.asc");
    run.expectFile("wl_remap_d.asc");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapExtraGrids, MayHaveAnotherFormatAndAreWrittenInThatOfTheRun)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.flt");
    givePlane(run);
    run.give("haz.flt", fltCells(kHazard));
    run.give("haz.hdr", hdr(kHazard, {.cellsize = 2}));
    run.start();
    EXPECT_GRID(run, "haz_remap.asc", hazardOnFineCells());
    EXPECT_FALSE(run.has("haz_remap.flt"));
}

TEST(RemapExtraGrids, AllTakeOnePointBehindAnIdwRunWithMore)
{
    ToolRun run("-remap -idw_npt2 -bd3 -wl wl.asc -dem dem.asc a.asc b.asc");
    givePlane(run);
    Cells hazard = kHazard;
    hazard[1][1] = kNull;
    run.give("a.asc", coarseGrid(hazard));
    run.give("b.asc", coarseGrid(hazard));
    run.start();
    // All levels are wet and high, so nothing is cut but the outer half cells.
    EXPECT_GRID(run, "a_remap.asc", hazardOnFineCells(8));
    EXPECT_GRID(run, "b_remap.asc", hazardOnFineCells(8));
}

TEST(RemapExtraGrids, APositiveNullCutsNothing)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    run.give("wl.asc", ascGrid(planeLevels(), {.cellsize = 2, .null = 1}));
    run.give("dem.asc", ascGrid(flatGround(100))); // all dry
    Cells hazard = kHazard;
    hazard[0][0] = 1.5;
    run.give("haz.asc", coarseGrid(hazard));
    run.start();
    Cells expected = hazardOnFineCells();
    expected[1][1] = 1.5;
    for (auto& line : expected) {
        for (double& cell : line) {
            cell = cell == kNull ? 1 : cell;
        }
    }
    EXPECT_GRID(run, "haz_remap.asc", expected);
}

TEST(RemapExtraGrids, AGridWithoutAValueMakesTheSearchEndless)
{
    ToolRun run("-b -remap -wl wl.asc -dem dem.asc haz.asc");
    givePlane(run);
    run.give("haz.asc", coarseGrid(Cells(3, std::vector<double>(3, kNull))));
    EXPECT_TRUE(run.stillRunsAfter(700ms));
    EXPECT_CONSOLE_HOLDS(run, {"Processing row:",
                               "WARNING - Fewer wet cells within reach than IDW points, the search does not end. "
                               "Press Ctrl+C to stop."});
    EXPECT_FALSE(run.has("haz_remap.asc"));
}

TEST(RemapExtraGrids, WriteRowNumbers)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    run.give("wl.asc", ascGrid(Cells(21, {5, 5}), {.cellsize = 10}));
    run.give("dem.asc", ascGrid(Cells(210, {1})));
    run.give("haz.asc", ascGrid(Cells(21, {3, 3}), {.cellsize = 10}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Total rows: 21", "Processing row:      10      20", "   Done.",
                               "Assinging nearest grid results to DEM grid locations - Row:     100     200"});
}

} // namespace
} // namespace gridforge::test
