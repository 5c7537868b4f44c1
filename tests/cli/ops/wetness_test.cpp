#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(FloodExtentCli, MarksTheWetCells)
{
    ToolRun run("-fe a.asc");
    run.give("a.asc", ascGrid({{0.00005, -0.5, kNull}, {0, 2, 0.0001}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run,
        joined(
            {startOf({"a.asc"}),
             {"Loading grid data..."},
             headerOf("a.asc", "2 rows by 3 columns"),
             {"Allocating 0Kb memory for storing input grid...", "Allocating 0Kb memory for storing output grid..."},
             ascCells(),
             {"Creating flood extent.", "Processing Row:", kFormatOfInputs, "Writing transformed values to: a_extent"},
             writtenAsc("a_extent"),
             normalEnd()}));
    EXPECT_GRID(run, "a_extent.asc", {{kNull, 1, kNull}, {kNull, 1, 1}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(FloodExtentCli, TakesTheFirstInputOnlyAndTheNameAndFormatGiven)
{
    ToolRun run("-fe a.asc b.asc -out e -flt");
    run.give("a.asc", ascGrid({{2}}));
    run.give("b.asc", ascGrid({{2, 3}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using output file name specified with -out switch: \"e\"",
                               "Using output format .flt as specified.", "Writing transformed values to: e"});
    EXPECT_GRID(run, "e.flt", {{1}});
    EXPECT_TRUE(run.has("e.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CountCli, CountsWhatIsNotNull)
{
    ToolRun run("-count d/a.asc -out ignored");
    run.give("d/a.asc", ascGrid({{0, kNull, -1}, {5, kNull, 0.1}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(
        run, joined({{"   File  1: d/a.asc", "Loading grid data..."},
                     headerOf("d/a.asc", "2 rows by 3 columns"),
                     {"Allocating 0Kb memory for storing input grid..."},
                     ascCells(),
                     {"Counting number of wet cells.", "Processing Row:", "Number of wet cells:              4"},
                     writtenTable("d/a_count.txt"),
                     normalEnd()}));
    EXPECT_EQ(run.read("d/a_count.txt"), "Input grid file: d/a\r\nNumber of wet cells:              4\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CountCli, WithACutoffCountsWhatIsAboveIt)
{
    ToolRun run("-count depths.asc -cd0.1");
    run.give("depths.asc", ascGrid({{0.1, 0.11, kNull, 7}}));
    run.start();
    EXPECT_EQ(run.read("depths_count.txt"), "Input grid file: depths\r\nNumber of wet cells:              2\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CountCli, ACountOfNoneIsWrittenToo)
{
    ToolRun run("-count a.asc");
    run.give("a.asc", ascGrid({{kNull}}));
    run.start();
    EXPECT_EQ(run.read("a_count.txt"), "Input grid file: a\r\nNumber of wet cells:              0\r\n");
}

TEST(FuzzyCli, GivesTheFractionOfGrids)
{
    ToolRun run("-fuzzy a.flt b.asc");
    run.give("a.flt", fltCells({{1, kNull, 0, kNull}}));
    run.give("a.hdr", hdr(4, 1));
    run.give("b.asc", ascGrid({{1, 2, kNull, kNull}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"a.flt", "b.asc"}),
                                {"Loading header info..."},
                                headerOf("a.hdr", "1 rows by 4 columns"),
                                {"Allocating 0Kb memory for storing input grid...",
                                 "Allocating 0Kb memory for storing output grid...", "Processing: a.flt"},
                                fltCellsOf("a.flt"),
                                {"Processing row:", "   Done.", "Processing: b.asc"},
                                headerOf("b.asc", "1 rows by 4 columns"),
                                ascCells(),
                                {"Processing row:", "   Done.", "Scaling by number of files...",
                                 "Processing row:", kFormatOfInputs, "Writing fuzzy values to: a_fuzzy"},
                                writtenFlt("a_fuzzy"),
                                normalEnd()}));
    EXPECT_GRID(run, "a_fuzzy.flt", {{1, 0.5, 0.5, kNull}});
    EXPECT_TRUE(run.has("a_fuzzy.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(FuzzyCli, FourGridsGiveQuarters)
{
    ToolRun run("-fuzzy a.flt b.flt c.flt d.flt");
    run.give("a.flt", fltCells({{1, 1, 1, 1, kNull}}));
    run.give("b.flt", fltCells({{kNull, 1, 1, 1, kNull}}));
    run.give("c.flt", fltCells({{kNull, kNull, 1, 1, kNull}}));
    run.give("d.flt", fltCells({{kNull, kNull, kNull, 1, kNull}}));
    for (const char* name : {"a.hdr", "b.hdr", "c.hdr", "d.hdr"}) {
        run.give(name, hdr(5, 1));
    }
    run.start();
    EXPECT_GRID(run, "a_fuzzy.flt", {{0.25, 0.5, 0.75, 1, kNull}});
}

TEST(FuzzyCli, TheFirstGridsNullCountsForAll)
{
    ToolRun run("-fuzzy a.asc b.asc");
    run.give("a.asc", ascGrid({{kNull, kNull}}));
    run.give("b.asc", ascGrid({{-1, -9999}}, {.null = -1, .lineEnd = "\n"}));
    run.start();
    EXPECT_GRID(run, "a_fuzzy.asc", {{0.5, kNull}}); // -1 is the second grid's null, and counts as active
}

TEST(FuzzyCli, ASingleGridIsOneWhereActive)
{
    ToolRun run("-fuzzy a.asc");
    run.give("a.asc", ascGrid({{3, kNull}}));
    run.start();
    EXPECT_GRID(run, "a_fuzzy.asc", {{1, kNull}});
}

TEST(FuzzyCli, AGridOfAnotherSizeEndsTheRun)
{
    ToolRun run("-fuzzy a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{1}, {2}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"ERROR - number of rows for input grids do not match. Rows = 1 and 2"},
                                      errorEnd("ERROR - dimensions of grids do not match (see above for details).")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(FuzzyCli, TheLastGridsProjectionIsWritten)
{
    ToolRun run("-fuzzy a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{1}}));
    run.give("a.prj", "PROJCS[\"first\"]\n");
    run.start();
    EXPECT_GRID(run, "a_fuzzy.asc", {{1}});
    EXPECT_NO_OTHER_FILES(run); // the last grid has none
}

} // namespace
} // namespace gridforge::test
