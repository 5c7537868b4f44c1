#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(CutoffCli, KeepsTheCellsThatReachIt)
{
    ToolRun run("-cd0.5 depth.asc");
    run.give("depth.asc", ascGrid({{0.5, 0.4, 2}, {kNull, -3, 0}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"depth.asc"}),
                                {"Processing cutoff option."},
                                headerOf("depth.asc", "2 rows by 3 columns"),
                                {"Allocating 0Kb memory for storing grid 1...",
                                 "Allocating 0Kb memory for storing output grid...", "Reading: depth.asc"},
                                ascCells(),
                                {"Processing Row:", "   Done.", kFormatOfInputs, "Writing output to: depth_cd0.5"},
                                writtenAsc("depth_cd0.5"),
                                normalEnd()}));
    EXPECT_GRID(run, "depth_cd0.5.asc", {{0.5, kNull, 2}, {kNull, kNull, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, FiltersASecondGrid)
{
    ToolRun run("-cd0.1 d/depth.asc e/level.flt");
    run.give("d/depth.asc", ascGrid({{0.1, 0.05, 3, 4}}));
    run.give("e/level.flt", fltCells({{41, 42, 43, -1}}));
    run.give("e/level.hdr", hdr(4, 1, {.null = -1, .lineEnd = "\n"}));
    run.start();
    EXPECT_CONSOLE(run,
                   joined({startOf({"d/depth.asc", "e/level.flt"}),
                           {"Processing cutoff option.",
                            "More than one input file specified, using \"d/depth.asc\" for setting cutoff depth / "
                            "threshold."},
                           headerOf("d/depth.asc", "1 rows by 4 columns"),
                           {"Allocating 0Kb memory for storing grid 1...",
                            "Allocating 0Kb memory for storing output grid...", "Reading: d/depth.asc"},
                           ascCells(),
                           {"Allocating 0Kb memory for storing grid 2..."},
                           headerOf("e/level.hdr", "1 rows by 4 columns"),
                           {"Reading: e/level.flt"},
                           fltCellsOf("e/level.flt"),
                           {"Processing Row:", "   Done.", kFormatOfInputs, "Writing output to: e/level_filtered0.1"},
                           writtenAsc("e/level_filtered0.1"),
                           normalEnd()}));
    // The null of the second grid is none of the output's, so its cell comes out as the first's.
    EXPECT_GRID(run, "e/level_filtered0.1.asc", {{41, kNull, 43, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, AWholeCutoffPutsTwoPointsInTheName)
{
    ToolRun run("-cd2 depth.asc");
    run.give("depth.asc", ascGrid({{2, 1}}));
    run.start();
    EXPECT_GRID(run, "depth_cd2..asc", {{2, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, AtZeroOnlyNegativeCellsGo)
{
    ToolRun run("-cd0 a.asc");
    run.give("a.asc", ascGrid({{0, -0.001, 5}}));
    run.start();
    EXPECT_GRID(run, "a_cd0..asc", {{0, kNull, 5}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, BelowTheNullTheGridStays)
{
    ToolRun run("-cd-10000 a.asc");
    run.give("a.asc", ascGrid({{kNull, -5, 7}}));
    run.start();
    EXPECT_GRID(run, "a_cd-10000..asc", {{kNull, -5, 7}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, AThirdInputNamesTheOutputExtensionIncluded)
{
    ToolRun run("-cd1 a.asc b.asc c.asc -out lost");
    run.give("a.asc", ascGrid({{1, 0}}));
    run.give("b.asc", ascGrid({{8, 9}}));
    run.give("c.asc", ascGrid({{5, 5}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"More than one input file specified, using \"a.asc\" for setting cutoff depth / threshold.",
                          "   Using third filename as output: \"c.asc\"."});
    EXPECT_CONSOLE_HOLDS(run,
                         {"Using specified output file name: \"c.asc\"", kFormatOfInputs, "Writing output to: c.asc"});
    EXPECT_GRID(run, "c.asc.asc", {{8, kNull}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, AThirdNameThatDoesNotExistEndsTheRun)
{
    ToolRun run("-cd1 a.asc b.asc c.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{8}}));
    run.start();
    EXPECT_TRUE(run.says("ERROR - No valid file found for input: c.asc"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, MoreThanThreeInputsAreRefused)
{
    ToolRun run("-cd1 g?.asc");
    for (const char* name : {"g1.asc", "g2.asc", "g3.asc", "g4.asc"}) {
        run.give(name, ascGrid({{1}}));
    }
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, joined({{"Processing cutoff option.",
                      "More than one input file specified, using \"g1.asc\" for setting cutoff depth / threshold."},
                     errorEnd("ERROR - More than three files specified with the cutoff depth option.")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, OutAndFormatAreTaken)
{
    ToolRun run("-cd1 a.asc -out r.flt");
    run.give("a.asc", ascGrid({{1, 0}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Using specified output file name: \"r\"",
                                       "Using output format .flt as specified.", "Writing output to: r"},
                                      writtenFlt("r"),
                                      normalEnd()}));
    EXPECT_GRID(run, "r.flt", {{1, kNull}});
    EXPECT_TRUE(run.has("r.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, ASecondGridOfAnotherSizeEndsTheRun)
{
    ToolRun run("-cd1 a.asc b.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.give("b.asc", ascGrid({{1}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"ERROR - number of columns for input grids do not match. Columns = 2 and 1"},
                                      errorEnd("ERROR - dimensions of grids do not match (see above for details).")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, WithCountTheCountRuns)
{
    ToolRun run("-count -cd1 a.asc");
    run.give("a.asc", ascGrid({{1, 2}}));
    run.start();
    EXPECT_FALSE(run.says("Processing cutoff option."));
    EXPECT_TRUE(run.has("a_count.txt"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CutoffCli, TheProjectionIsTheLastGrids)
{
    ToolRun run("-cd1 a.asc b.asc");
    run.give("a.asc", ascGrid({{5}}));
    run.give("b.asc", ascGrid({{3}}));
    run.give("b.prj", "PROJCS[\"second\"]\n");
    run.start();
    EXPECT_EQ(run.read("b_filtered1..prj"), "PROJCS[\"second\"]\r\n");
}

} // namespace
} // namespace gridforge::test
