#include "support/consoles.h"
#include "support/tool_run.h"

namespace gridforge::test {
namespace {

TEST(MaxMinCli, KeepsTheHigherValueOfEachCellAndItsSource)
{
    ToolRun run("-max d/a.asc d/b.asc");
    run.give("d/a.asc", ascGrid({{121, 122, kNull}, {111, 112, 113}}));
    run.give("d/b.asc", ascGrid({{221, 102, 223}, {211, 112, kNull}}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run, joined({startOf({"d/a.asc", "d/b.asc"}),
                     {"Processing \"-max\" option."},
                     headerOf("d/a.asc", "2 rows by 3 columns"),
                     {"Allocating 0Kb memory for external grid...",
                      "Allocating 0Kb memory for storing maximum / minimum values data...",
                      "Allocating 0Kb memory for storing maximums / minimum source data...", "Processing: d/a.asc"},
                     ascCells(),
                     {"Comparing maximums...", "   Done.", "Processing: d/b.asc"},
                     headerOf("d/b.asc", "2 rows by 3 columns"),
                     ascCells(),
                     {"Comparing maximums...", "   Done.", kFormatOfInputs,
                      "Writing maximum / minimum values to: d/a(maxmax)"},
                     writtenAsc("d/a(maxmax)"),
                     {"Writing maximum / minimum source file to: d/a(maxmax)_src"},
                     writtenAsc("d/a(maxmax)_src"),
                     {"Writing legend for source file to: d/a(maxmax)_src_legend.csv",
                      openedOutput("d/a(maxmax)_src_legend.csv", 1001), closedUnit(1001)},
                     normalEnd()}));
    EXPECT_GRID(run, "d/a(maxmax).asc", {{221, 122, 223}, {211, 112, 113}});
    EXPECT_GRID(run, "d/a(maxmax)_src.asc", {{2, 1, 2}, {2, 1, 1}}); // of equal values the earliest stays
    EXPECT_NE(run.read("d/a(maxmax)_src.asc").find("  2.000  1.000  2.000\r\n"), std::string::npos);
    EXPECT_EQ(run.read("d/a(maxmax)_src_legend.csv"),
              "\"Value in Grid\",\"Source Grid File\"\r\n1,d/a.asc\r\n2,d/b.asc\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MaxMinCli, KeepsTheLowerValueOfEachCellAndItsSource)
{
    ToolRun run("-min a.asc b.asc");
    run.give("a.asc", ascGrid({{1, kNull, 3, kNull}}));
    run.give("b.asc", ascGrid({{0, 5, 3, kNull}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing \"-min\" option."});
    EXPECT_TRUE(run.says("Comparing minimums..."));
    EXPECT_GRID(run, "a(minmin).asc", {{0, 5, 3, kNull}});
    EXPECT_GRID(run, "a(minmin)_src.asc", {{2, 2, 1, kNull}});
    EXPECT_EQ(run.read("a(minmin)_src_legend.csv"), "\"Value in Grid\",\"Source Grid File\"\r\n1,a.asc\r\n2,b.asc\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MaxMinCli, ASingleInputIsItsOwnExtreme)
{
    ToolRun run("-max a.asc");
    run.give("a.asc", ascGrid({{1, kNull}}));
    run.start();
    EXPECT_GRID(run, "a(maxmax).asc", {{1, kNull}});
    EXPECT_GRID(run, "a(maxmax)_src.asc", {{1, kNull}});
}

TEST(MaxMinCli, AValueBelowTheNullNeverIsAMaximum)
{
    ToolRun run("-max a.asc");
    run.give("a.asc", ascGrid({{-10000, -9998}}));
    run.start();
    EXPECT_GRID(run, "a(maxmax).asc", {{kNull, -9998}});
    EXPECT_GRID(run, "a(maxmax)_src.asc", {{kNull, 1}});
}

TEST(MaxMinCli, AMinimumSeesAnEmptyCellByTheNullOfTheGridBeingRead)
{
    // The first grid's null fills the kept cells; the second grid, whose null is -1, does not see them as empty.
    ToolRun run("-min a.asc b.asc");
    run.give("a.asc", ascGrid({{kNull, kNull, 4}}));
    run.give("b.asc", ascGrid({{5, -10000, -1}}, {.null = -1}));
    run.start();
    EXPECT_GRID(run, "a(minmin).asc", {{kNull, -10000, 4}});
    EXPECT_GRID(run, "a(minmin)_src.asc", {{kNull, 2, 1}});
}

TEST(MaxMinCli, SrcGivesTheExtremeOnly)
{
    ToolRun run("-max -src a.asc b.asc");
    run.give("a.asc", ascGrid({{1, 4}}));
    run.give("b.asc", ascGrid({{2, 3}}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing \"-max\" option.", "Supressing source grid following \"-src\" option."});
    EXPECT_CONSOLE_HOLDS(run,
                         {"Allocating 0Kb memory for storing maximum / minimum values data...", "Processing: a.asc"});
    EXPECT_GRID(run, "a(maxmax).asc", {{2, 4}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MaxMinCli, OutNamesAllThreeOutputs)
{
    ToolRun run("-out x.asc -max a.flt");
    run.give("a.flt", fltCells({{1, 4}}));
    run.give("a.hdr", hdr(2, 1));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using output file name specified with -out switch: \"x\"",
                               "Using output format .asc as specified.", "Writing maximum / minimum values to: x"});
    EXPECT_GRID(run, "x.asc", {{1, 4}});
    EXPECT_GRID(run, "x_src.asc", {{1, 1}});
    EXPECT_TRUE(run.has("x_src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MaxMinCli, FltGivesBinaryGridsAndATextLegend)
{
    ToolRun run("-flt -max a.asc");
    run.give("a.asc", ascGrid({{1, 4}}));
    run.start();
    EXPECT_TRUE(run.says("Using output format .flt as specified."));
    EXPECT_GRID(run, "a(maxmax).flt", {{1, 4}});
    EXPECT_GRID(run, "a(maxmax)_src.flt", {{1, 1}});
    EXPECT_TRUE(run.has("a(maxmax).hdr") && run.has("a(maxmax)_src.hdr") && run.has("a(maxmax)_src_legend.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(MaxMinCli, TheLastGridReadDecidesTheProjection)
{
    ToolRun run("-max a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}));
    run.give("b.asc", ascGrid({{2}}));
    run.give("b.prj", "PROJCS[\"b\"]\n");
    run.start();
    EXPECT_EQ(run.read("a(maxmax).prj"), "PROJCS[\"b\"]\r\n");
    EXPECT_EQ(run.read("a(maxmax)_src.prj"), "PROJCS[\"b\"]\r\n");

    ToolRun none("-max a.asc b.asc");
    none.give("a.asc", ascGrid({{1}}));
    none.give("a.prj", "PROJCS[\"a\"]\n");
    none.give("b.asc", ascGrid({{2}}));
    none.start();
    EXPECT_FALSE(none.has("a(maxmax).prj"));
}

// --- Grids that do not fit -------------------------------------------------------------------------------------------

struct OtherGrid {
    Cells cells;
    GridOptions options;
    std::vector<std::string> messages;
};

TEST(MaxMinCli, EachGridIsComparedWithTheFirst)
{
    for (const bool binary : {false, true}) {
        ToolRun run(binary ? "-b -max a.flt b.flt c.flt -out m.asc" : "-b -max a.asc b.asc c.asc -out m.asc");
        double xll = 0;
        for (const std::string base : {"a", "b", "c"}) {
            if (binary) {
                giveFlt(run, base, {{1, 2}}, {.xll = xll});
            } else {
                run.give(base + ".asc", ascGrid({{1, 2}}, {.xll = xll}));
            }
            xll += 0.0078125; // within the tolerance of the grid before
        }
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"ERROR - x coordinates of input grids do not match. xll = 0. and 0.015625"});
        EXPECT_FALSE(run.has("m.asc"));
    }
}

TEST(MaxMinCli, GridsOfAnotherLatticeAreRefusedByEachDifference)
{
    const std::string closing = "ERROR - dimensions of grids do not match (see above for details).";
    const std::vector<OtherGrid> others = {
        {{{1, 2}}, {}, {"ERROR - number of rows for input grids do not match. Rows = 2 and 1", closing}},
        {{{1}, {2}}, {}, {"ERROR - number of columns for input grids do not match. Columns = 2 and 1", closing}},
        {{{1, 2}, {3, 4}},
         {.xll = 0.5},
         {"ERROR - x coordinates of input grids do not match. xll = 0. and 0.5", closing}},
        {{{1, 2}, {3, 4}},
         {.yll = -2},
         {"ERROR - y coordinates of input grids do not match. yll = 0. and -2.", closing}},
        {{{1, 2}, {3, 4}},
         {.cellsize = 2.5},
         {"ERROR - cell size of input grids do not match. cell sizes = 1. and 2.5", closing}},
        {{{1}},
         {},
         {"ERROR - number of rows for input grids do not match. Rows = 2 and 1",
          "ERROR - number of columns for input grids do not match. Columns = 2 and 1", closing}},
    };
    for (const OtherGrid& other : others) {
        ToolRun run("-max a.asc b.asc");
        run.give("a.asc", ascGrid({{1, 2}, {3, 4}}));
        run.give("b.asc", ascGrid(other.cells, other.options));
        run.start();
        EXPECT_CONSOLE_HOLDS(run, other.messages);
        EXPECT_TRUE(run.says(kClose));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(MaxMinCli, SmallDifferencesOfTheCornerPass)
{
    ToolRun run("-max a.asc b.asc");
    run.give("a.asc", ascGrid({{1}}, {.xll = 10}));
    run.give("b.asc", ascGrid({{2}}, {.xll = 10.005}));
    run.start();
    EXPECT_EQ(run.grid("a(maxmax).asc").xll, 10);
}

TEST(MaxMinCli, InputsAndMemoryOfManyGridsAreThoseOfOne)
{
    std::vector<std::string> arguments = {"-b", "-max", "g*.asc"};
    ToolRun run(arguments);
    for (int i = 10; i < 60; ++i) {
        run.give("g" + std::to_string(i) + ".asc", ascGrid({{static_cast<double>(i % 7), static_cast<double>(-i)}}));
    }
    run.start();
    // 13 is the first with the remainder 6, and the fourth in the list; -10 is the first of the falling values.
    EXPECT_GRID(run, "g10(maxmax).asc", {{6, -10}});
    EXPECT_GRID(run, "g10(maxmax)_src.asc", {{4, 1}});
    EXPECT_FALSE(run.says(kEnter));
}

} // namespace
} // namespace gridforge::test
