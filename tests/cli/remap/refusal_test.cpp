// What a remap refuses, and in which words.
#include "cli/remap/remap_grids.h"
#include "support/consoles.h"

#include <chrono>

namespace gridforge::test {
namespace {

TEST(RemapRefusals, TheWaterLevelGridIsRequiredButTheReadFails)
{
    ToolRun run("-remap -dem dem.asc a.asc");
    givePlane(run);
    run.give("a.asc", coarseGrid(planeLevels()));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing -remap option.", "ERROR - Water level grid is required.",
                               "   High Res DEM:     dem.asc", "   Number of grids to remap without interporation:  1",
                               "   a.asc", "Empty filename specified.  Bailing out.  Please contact SUPPORT_CONTACT."});
    EXPECT_EQ(run.status(), 0);
    EXPECT_NO_OTHER_FILES(run);
}

// The name behind -wl takes the first place in the list, and a place without a name is left.
TEST(RemapRefusals, AGridNamedBeforeTheWaterLevelsEndsTheRun)
{
    ToolRun run("-remap a.asc -wl wl.asc -dem dem.asc");
    givePlane(run);
    run.give("a.asc", coarseGrid(planeLevels()));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Input File  1: wl.asc", "   File  1: wl.asc",
                                       "Input File  2: ", "ERROR - No valid file found for input: "));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapRefusals, TheTerrainIsRequired)
{
    ToolRun run("-remap -wl wl.asc");
    givePlane(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("   Water Level Grid: wl.asc", "ERROR - DEM grid is required."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapRefusals, ANegativeFreeboardEndsAtOnce)
{
    ToolRun run("-remap -fb-0.1 -wl wl.asc -dem dem.asc");
    givePlane(run);
    run.start();
    EXPECT_CONSOLE(run, {kBanner, "CHECK - Free boarding specified, use IDW interporation.",
                         "ERROR - Freeboard can not be less than 0."});
}

TEST(RemapRefusals, ABufferOfNothingEndsAtOnce)
{
    for (const char* buffer : {"-bd0", "-bd0.001", "-bd-5"}) {
        ToolRun run({"-remap", buffer, "-wl", "wl.asc", "-dem", "dem.asc"});
        givePlane(run);
        run.start();
        EXPECT_CONSOLE(run, {kBanner, "CHECK - Buffer distance specified, use IDW interporation.",
                             "ERROR - Buffer distance can not be less than or equal to 0."});
    }
}

TEST(RemapRefusals, TheExtentGridMustMatch)
{
    ToolRun run("-remap -idw_npt1 -wl wl.asc -dem dem.asc -ext ext.asc");
    givePlane(run);
    run.give("ext.asc", ascGrid({{1, 1, 1}, {1, 1, 1}}, {.cellsize = 2}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Checking water level and maximum extent grids match...",
                               "ERROR - number of rows for input grids do not match. Rows = 3 and 2",
                               "ERROR - dimensions of grids do not match (see above for details)."});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapRefusals, AnExtraGridMustMatch)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc haz.asc");
    givePlane(run);
    run.give("haz.asc", ascGrid(planeLevels(), {.xll = 0.02, .cellsize = 2}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Checking grid extent matches water level grid...",
                               "ERROR - x coordinates of input grids do not match. xll = 0. and 0.02",
                               "ERROR - dimensions of grids do not match (see above for details)."});
    run.expectFile("wl_remap_h.asc");
    run.expectFile("wl_remap_d.asc");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RemapRefusals, AGridTooLargeForTheMemory)
{
    const std::string huge = "ncols 2147483647\nnrows 2147483647\nxllcorner 0\nyllcorner 0\ncellsize 2\n1\n";
    ToolRun coarse("-remap -wl wl.asc -dem dem.asc");
    givePlane(coarse);
    coarse.give("wl.asc", huge);
    coarse.start();
    // (2^31 - 1)^2 * 4 is 4 at 32 bits.
    EXPECT_CONSOLE_HOLDS(coarse, {"Allocating 0Kb memory for storing water levels...",
                                  "ERROR - Could not allocate enough memory (RAM)."});

    ToolRun fine("-remap -wl wl.asc -dem dem.asc");
    givePlane(fine);
    fine.give("dem.asc", huge);
    fine.start();
    EXPECT_CONSOLE_HOLDS(fine,
                         {"Allocating 0Kb memory for storing DEM.", "ERROR - Could not allocate enough memory (RAM)."});
}

TEST(RemapRefusals, AShortTerrainIsNotTaken)
{
    ToolRun run("-remap -wl wl.asc -dem dem.asc");
    run.give("wl.asc", coarseGrid(planeLevels()));
    run.give("dem.asc", ascGrid({{1, 1}, {1}}));
    run.start();
    EXPECT_TRUE(run.says("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."));
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
