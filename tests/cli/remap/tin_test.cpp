#include "cli/remap/remap_grids.h"

#include "support/consoles.h"

namespace gridforge::test {
namespace {

TEST(RemapTinCli, PutsThePlaneOnTheTerrain)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid(planeLevels()));
    Cells ground = flatGround(10);
    ground[1][1] = 46.5; // at the level: a depth of 0
    ground[1][2] = 47.6; // above it
    run.give("dem.asc", ascGrid(ground));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run, joined({startOf({"wl.asc"}),
                     {"Processing -remap option.", "   Water Level Grid: wl.asc", "   High Res DEM:     dem.asc",
                      "   Number of grids to remap without interporation:  0", openedInput("wl.asc"), openedUnit(1001),
                      "External Grid Info: 3 rows by 3 columns with 2. cell size.",
                      "Allocating 0Kb memory for storing water levels...", "Reading WL data"},
                     ascCells(),
                     {"Allocating 0Kb memory for mod wet/dry flags",
                      "Adding freeboard and setting wet/dry flags for modelled grid...", "   Done.",
                      "Allocating 0Kb memory for maximum extent flags", "Allocating 0Kb memory for working array...",
                      "Setting extent flags for tin interporation 3.",
                      "Found            9 wet cells in input grid and added            0 buffered cells.",
                      "Reading DEM header..."},
                     headerOf("dem.asc", "6 rows by 6 columns"),
                     {"Allocating 0Kb memory for storing DEM.", "Reading DEM data"},
                     ascCells(),
                     {"Allocating 0Kb memory for processing", kFormatOfInputs, "Extending flood extent by one cell.",
                      "Total rows: 3", "Processing row:", "   Done.", "Beginning TIN interpolation.", "Total rows: 6",
                      "Processing row:", "Calculating depths based on interpolated levels - Row:"},
                     writtenAsc("wl_remap_h"),
                     writtenAsc("wl_remap_d"),
                     {""},
                     normalEnd()}));
    Cells levels = planeOnFineCells();
    Cells depths = planeOnFineCells(-10);
    depths[1][1] = 0;
    levels[1][2] = kNull;
    depths[1][2] = kNull;
    for (auto& line : depths) {
        for (double& depth : line) {
            depth = depth == kNull - 10 ? kNull : depth;
        }
    }
    EXPECT_GRID(run, "wl_remap_h.asc", levels);
    EXPECT_GRID(run, "wl_remap_d.asc", depths);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapTinCli, WritesRowNumbersEveryTenCoarseAndEveryHundredFineRows)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", ascGrid(Cells(21, {5, 5}), {.cellsize = 10}));
    run.give("dem.asc", ascGrid(Cells(210, {1})));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Extending flood extent by one cell.", "Total rows: 21",
                               "Processing row:      10      20", "   Done.", "Beginning TIN interpolation.",
                               "Total rows: 210", "Processing row:     100     200",
                               "Calculating depths based on interpolated levels - Row:     100     200"});
}

TEST(RemapTinCli, LevelsEndOneCellPastTheWetEdgeButOnlyWetCornersWet)
{
    // The east column is dry: it takes the level 5 of its neighbours, and cells nearer to it stay dry.
    ToolRun run("-remap -wl wl.asc -dem dem.asc -flt -b");
    run.give("wl.asc", coarseGrid({{5, 5, kNull}, {5, 5, kNull}}));
    run.give("dem.asc", ascGrid(Cells(4, {1, 1, 1, 1, 1, 1})));
    run.start();
    EXPECT_TRUE(run.says("Found            4 wet cells in input grid and added            2 buffered cells."));
    EXPECT_TRUE(run.says("Using output format .flt as specified."));
    const double n = kNull;
    EXPECT_GRID(run, "wl_remap_h.flt",
                {{n, n, n, n, n, n}, {n, 5, 5, 5, n, n}, {n, 5, 5, 5, n, n}, {n, n, n, n, n, n}});
    EXPECT_GRID(run, "wl_remap_d.flt",
                {{n, n, n, n, n, n}, {n, 4, 4, 4, n, n}, {n, 4, 4, 4, n, n}, {n, n, n, n, n, n}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapTinCli, FreeboardAheadOfRemapRaisesTheTin)
{
    ToolRun run("-fb0.5 -remap -wl wl.asc -dem dem.asc");
    givePlane(run);
    run.start();
    EXPECT_TRUE(run.says("CHECK - Free boarding specified, use IDW interporation."));
    EXPECT_CONSOLE_HOLDS(
        run, {"   Number of grids to remap without interporation:  0", "Adding user specified freeboard of: 0.5"});
    EXPECT_TRUE(run.says("Beginning TIN interpolation."));
    EXPECT_GRID(run, "wl_remap_h.asc", [] {
        Cells cells = planeOnFineCells(0.5);
        for (auto& line : cells) {
            for (double& cell : line) {
                cell = cell < 0 ? kNull : cell;
            }
        }
        return cells;
    }());
}

TEST(RemapTinCli, AFreeboardOfAThousandthIsAppliedButNotAnnounced)
{
    ToolRun run("-fb0.001 -remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{5, 5}, {5, 5}}));
    run.give("dem.asc", ascGrid({{0, 0}, {0, 0}}, {.xll = 1, .yll = 1}));
    run.start();
    EXPECT_EQ(run.console().find("Adding user"), std::string::npos);
    EXPECT_GRID(run, "wl_remap_h.asc", {{5.001, 5.001}, {5.001, 5.001}});
}

TEST(RemapTinCli, WithFreeboardAWetCornerStandsAboveNullAndFreeboard)
{
    // With a null of 0 a level of 1 is wet; raised by 2 it is 3, above 0 + 2 + 0.1. A level of 0.05 is wet too, but
    // raised to 2.05 it wets nothing.
    ToolRun run("-fb2 -remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", ascGrid({{0.05, 0.05}, {1, 1}}, {.cellsize = 2, .null = 0}));
    run.give("dem.asc", ascGrid({{-1, -1}, {-1, -1}}, {.xll = 1, .yll = 1}));
    run.start();
    EXPECT_TRUE(run.says("Found            4 wet cells in input grid and added            0 buffered cells."));
    EXPECT_GRID(run, "wl_remap_h.asc", {{0, 0}, {2.763, 2.763}}); // 3 - 0.25 * 0.95 to three decimals
}

TEST(RemapTinCli, ExtentAndBufferHaveNoInfluence)
{
    ToolRun run("-bd1 -remap -wl wl.asc -dem dem.asc -ext nowhere.asc");
    givePlane(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"   High Res DEM:     dem.asc", "   Max Extent Grid:  nowhere.asc",
                               "   Number of grids to remap without interporation:  0"});
    EXPECT_TRUE(run.says("Setting extent flags for tin interporation 3."));
    EXPECT_GRID(run, "wl_remap_h.asc", planeOnFineCells());
}

TEST(RemapTinCli, WithoutAWetCellEverythingIsNull)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{kNull, kNull}, {kNull, kNull + 0.0098}})); // at most a hundredth above null
    run.give("dem.asc", ascGrid(Cells(4, {1, 1, 1, 1})));
    run.start();
    EXPECT_TRUE(run.says("Found            0 wet cells in input grid and added            0 buffered cells."));
    EXPECT_GRID(run, "wl_remap_h.asc", Cells(4, std::vector<double>(4, kNull)));
    EXPECT_GRID(run, "wl_remap_d.asc", Cells(4, std::vector<double>(4, kNull)));
}

TEST(RemapTinCli, TerrainElsewhereStaysNull)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid(planeLevels()));
    run.give("dem.asc", ascGrid({{1, 1}, {1, 1}}, {.xll = 500, .yll = -500}));
    run.start();
    const WrittenGrid levels = run.grid("wl_remap_h.asc");
    EXPECT_EQ(levels.xll, 500);
    EXPECT_EQ(levels.yll, -500);
    EXPECT_GRID(run, "wl_remap_h.asc", {{kNull, kNull}, {kNull, kNull}});
    EXPECT_GRID(run, "wl_remap_d.asc", {{kNull, kNull}, {kNull, kNull}});
}

TEST(RemapTinCli, NullGroundStandsAsVeryLowGround)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid({{5, 5}, {5, 5}}));
    run.give("dem.asc", ascGrid({{-99, 1}}, {.xll = 1, .yll = 1, .null = -99}));
    run.start();
    EXPECT_GRID(run, "wl_remap_d.asc", {{104, 4}});
    EXPECT_EQ(run.grid("wl_remap_d.asc").null, kNull); // of the water levels, not of the terrain
}

TEST(RemapTinCli, TheProjectionIsThatOfTheGridReadLast)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    givePlane(run);
    run.give("haz.asc", coarseGrid(planeLevels()));
    run.give("wl.prj", "PROJCS[\"wl\"]\n");
    run.give("dem.prj", "PROJCS[\"dem\"]\n");
    run.start();
    EXPECT_EQ(run.read("wl_remap_h.prj"), "PROJCS[\"dem\"]\r\n");
    EXPECT_EQ(run.read("wl_remap_d.prj"), "PROJCS[\"dem\"]\r\n");
    EXPECT_FALSE(run.has("haz_remap.prj"));
}

TEST(RemapTinCli, OutputsLieBesideTheWaterLevelsAndDoNotTakeTheNameGiven)
{
    ToolRun run("-remap -wl run1/wl.v2.asc -dem dem.asc -out named.flt");
    run.give("run1/wl.v2.asc", coarseGrid(planeLevels()));
    run.give("dem.asc", ascGrid(flatGround(0)));
    run.start();
    EXPECT_GRID(run, "run1/wl.v2_remap_h.flt", planeOnFineCells()); // but its format
    EXPECT_GRID(run, "run1/wl.v2_remap_d.flt", planeOnFineCells());
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapTinCli, DecimalsAreThoseOfTheFlag)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc -decimal1");
    givePlane(run);
    run.start();
    EXPECT_NE(run.read("wl_remap_h.asc").find(" -9999.0    16.5    17.5"), std::string::npos);
}

} // namespace
} // namespace gridforge::test
