#include "support/consoles.h"
#include "support/network_layers.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr double n = kNull;

TEST(XsCli, BuildsTheDrawnNetworkAndItsSections)
{
    ToolRun run("-xs 1d_cut_t.mif -branch 1d_branches_t.mif dem.asc");
    giveDrawnNetwork(run);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {"Processing -xs option... ", "Getting Projection..."});
    EXPECT_CONSOLE_HOLDS(run,
                         joined({{"Found 10 cross-sections."},
                                 closedMif("1d_cut_t"),
                                 {"Initialising branches...", "   Done.", "Getting Branches from 1d_branches_t.mif"}}));
    EXPECT_CONSOLE_HOLDS(
        run,
        {"Extracting extents...", "    Done.", "Determining if cross-sections snap or intersect branches...",
         "Check - Not splitting section", "    Done.", "Allocating memory for storing 1d_nwk data...", "    Done.",
         "Allocating memory for storing 1d_nwk coordinates...", "    Done.", "Splitting branch data into network...",
         "    Finished splitting branch data into network.", "Writing \"X\" connectors.",
         "    Finished writing connectors", "Writing 1d_nwk file.", "Opening GIS Layer: 1d_nwk_t.mif"});
    EXPECT_CONSOLE_HOLDS(run,
                         {"Finished writing 1d_nwk file.", "Writing 1d_xs file.", "Opening GIS Layer: 1d_xs_t.mif"});
    EXPECT_CONSOLE_HOLDS(run, {"Finished writing 1d_xs file.",
                               "Loading header information from 1st elevation grid...",
                               openedInput("dem.asc"),
                               openedUnit(1001),
                               "External Grid Info: 30 rows by 60 columns with 1. cell size.",
                               closedUnit(1001),
                               "Inserting additional vertices along sections...",
                               "   Done",
                               "Loading elevation grid data...",
                               openedInput("dem.asc"),
                               openedUnit(1001),
                               "External Grid Info: 30 rows by 60 columns with 1. cell size.",
                               "Allocating 7Kb memory for storing elevation grid...",
                               "Reading ASCII grid...",
                               "",
                               closedUnit(1001),
                               "Finished reading grid.",
                               "Extracting sections from grid...",
                               "   Done",
                               "Deallocating grid memory...",
                               "   Done",
                               openedOutput("csv\\Main_5.000.csv", 1001),
                               "Writing cross-section data to: csv\\Main_5.000.csv",
                               closedUnit(1001)});
    EXPECT_THAT(run.read("1d_nwk_t.mid"),
                HasSubstr(nwkRecord("Main_00050", "S", "T", "0.030", "0.100") +
                          nwkRecord("Trib", "S", "F", "1.000", "0.200") + nwkRecord("", "X", "F", "0.000", "0.000")));
    EXPECT_THAT(objectsOf(run, "1d_nwk_t.mif"),
                HasSubstr(writtenPline({5, 10, 10, 10, 20, 10}, kChannelPen) + writtenPline({20, 10}, kChannelPen)));
    EXPECT_THAT(run.read("1d_xs_t.mid"), HasSubstr(xsRecord("csv\\Main_50.000.csv", "XZ", "", "0.000") +
                                                   xsRecord("twin.csv", "XZ", "", "0.000")));
    // The cells are 1 apart: 4 / 1 = 4 points go into each half, a fifth of 4 apart, in rows 6, 7, 8, 8 and 9.
    EXPECT_EQ(run.read("csv/Main_20.000.csv"),
              "\"Chainage\",\"Z\"\r\n0.000,6.200\r\n0.800,7.200\r\n1.600,8.200\r\n2.400,8.200\r\n3.200,9.200\r\n"
              "4.000,10.200\r\n4.000,10.200\r\n4.800,11.200\r\n5.600,12.200\r\n6.400,12.200\r\n7.200,13.200\r\n"
              "8.000,14.200\r\n");
    EXPECT_EQ(run.read("apart.CSV"), "\"Chainage\",\"Z\"\r\n0.000,20.550\r\n3.000,20.580\r\n");
    for (const char* name : {"csv/Main_5.000.csv", "csv/Main_10.000.csv", "csv/Main_0.000.csv", "csv/Main_50.000.csv",
                             "csv/Main_25.000.csv", "csv/Trib_5.000.csv", "twin.csv", "1d_xs_t.mif"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

void giveTwoSections(ToolRun& run)
{
    giveLayer(run, "1d_xs_a", kCutColumns, "Line 2 1 4 1\nPline 2\n2 2\n4 2\n",
              "\"a\",1,\"T\",\"T\",\"Max\",\"Perp\",9\n\"b.csv\",-1,\"T\",\"T\",\"\",\"\",0\n");
}

TEST(XsCli, LaterGridsOverwriteEarlierOnesButNotWithNulls)
{
    ToolRun run("-b -xs 1d_xs_a.mif one.asc two.asc");
    giveTwoSections(run);
    run.give("one.asc", ascGrid({{21, 22, 23, n, 25}, {11, n, 13, 14, 15}}));
    // Its own corner, cell size and null: (1, 1) is at x from 1 to 3, y from 0 to 2, and found at x 3, y 2.
    run.give("two.asc", ascGrid({{500, 7}}, {.xll = 1, .cellsize = 2, .null = 7}));
    run.start();
    // Points at 2, 2.667, 3.333 and 4: columns 2, 3, 3 and 4. In the second grid x 2 and 2.667 are 0.5 and 0.83 cells
    // off, so column 1, y 1 is half a cell off, so row 1; x 3.333 and 4 are 1.17 and 1.5: columns 1 and 2.
    EXPECT_EQ(run.read("a.csv"),
              "\"Chainage\",\"Z\"\r\n0.000,500.000\r\n0.667,500.000\r\n1.333,500.000\r\n2.000,14.000\r\n");
    EXPECT_EQ(run.read("b.csv"), "\"Chainage\",\"Z\"\r\n0.000,500.000\r\n2.000,-9999.000\r\n");
    // -xs knows the point method only, whatever the layer says; its layer takes the place of the input.
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "XZ", "", "1.000") + xsRecord("b.csv", "XZ", "", "-1.000"));
    EXPECT_THAT(run.console(), Not(HasSubstr("1d_nwk")));
}

TEST(XsCli, MaterialsAreTruncatedAndDefaultToTheNumberGiven)
{
    ToolRun run("-b -xs 1d_xs_a.mif -mat land.flt -mat more.asc -default_n-3.9 one.asc");
    giveTwoSections(run);
    run.give("one.asc", ascGrid({{21, 22, 23, 24, 25}, {11, 12, 13, 14, 15}}));
    run.give("land.flt", fltCells({{n, 2.9}}));
    run.give("land.hdr", hdr(2, 1, {.xll = 1}));
    run.give("more.asc", ascGrid({{8.99}}, {.xll = 3}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Allocating 0Kb memory for storing materials grid..."});
    // Of row 1 columns 2 to 4, the first material grid has null at 2 and 2.9 at 3, the second 8.99 at 4.
    EXPECT_EQ(run.read("a.csv"), "\"Chainage\",\"Z\",\"Mat\"\r\n0.000,12.000,-3\r\n0.667,13.000,2\r\n1.333,13.000,2\r\n"
                                 "2.000,14.000,8\r\n");
    EXPECT_EQ(run.read("b.csv"), "\"Chainage\",\"Z\",\"Mat\"\r\n0.000,22.000,-3\r\n2.000,24.000,-3\r\n");
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "XZ", "M", "1.000") + xsRecord("b.csv", "XZ", "M", "-1.000"));
}

TEST(XsCli, TypesOf1dTabLayersGiveWayButTheirFlagsOnlyToMaterials)
{
    for (const bool materials : {false, true}) {
        ToolRun run(materials ? "-b -xs 1d_tab_a.mif -mat one.asc one.asc" : "-b -xs 1d_tab_a.mif one.asc");
        giveLayer(run, "1d_tab_a", kTabColumns, "Line 2 1 4 1\n", "\"a.csv\",\"CS\",\"RN\",,,,,,,-1,0,0\n");
        run.give("one.asc", ascGrid({{21, 22, 23, 24, 25}, {11, 12, 13, 14, 15}}));
        run.start();
        EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "XZ", materials ? "M" : "RN", "-1.000"));
        EXPECT_EQ(run.read("a.csv"), materials ? "\"Chainage\",\"Z\",\"Mat\"\r\n0.000,12.000,12\r\n2.000,14.000,14\r\n"
                                               : "\"Chainage\",\"Z\"\r\n0.000,12.000\r\n2.000,14.000\r\n");
    }
}

TEST(XsCli, LayersKeepTheTailOfTheirNames)
{
    struct Names {
        const char* sections;
        const char* branches;
        const char* xs;
        const char* nwk;
    };
    for (const Names& names : {Names{"1d_tab_q.mif", "1d_br_q.mif", "1d_xs_q.mif", "1d_nwk_q.mif"},
                               Names{"in/1d_cutq.mif", "in/1d_branches.mif", "in/1d_xsq.mif", "in/1d_nwk.mif"},
                               Names{"1D_cut.mif", "1d_Branches.mif", "1d_xs1D_cut.mif", "1d_nwk1d_Branches.mif"}}) {
        ToolRun run({"-b", "-xs", names.sections, "-branch", names.branches, "one.asc"});
        const auto base = [](const std::string& name) { return name.substr(0, name.size() - 4); };
        giveLayer(run, base(names.sections), kCutColumns, "Line 2 1 4 1\n", "\"a\",-1,\"T\",\"T\",\"\",\"\",0\n");
        giveLayer(run, base(names.branches), kBranchColumns, "Line 1 1 1 5\n", "\"b\",1,\"T\",0\n");
        run.give("one.asc", ascGrid({{21, 22, 23, 24, 25}, {11, 12, 13, 14, 15}}));
        run.start();
        EXPECT_TRUE(run.has(names.xs)) << names.xs << run.console();
        EXPECT_TRUE(run.has(names.nwk)) << names.nwk;
        // The table's name stands as it is: in the current folder.
        EXPECT_TRUE(run.has("a.csv"));
    }
}

TEST(XsCli, BinaryGridsGiveTheSpacingToo)
{
    ToolRun run("-b -xs 1d_cut_a.mif one.flt");
    giveLayer(run, "1d_cut_a", kCutColumns, "Line 2 2 8 2\n", "\"a\",0,\"T\",\"T\",\"\",\"\",0\n");
    run.give("one.flt", fltCells({{1, 2, 3, 4}}));
    run.give("one.hdr", hdr(4, 1, {.cellsize = 2}));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Loading header information from 1st elevation grid...", openedInput("one.hdr"),
                               openedUnit(1001), "External Grid Info: 1 rows by 4 columns with 2. cell size.",
                               closedUnit(1001)});
    // 6 / 2 = 3 points between, 1.5 apart, at 2, 3.5, 5, 6.5 and 8: columns 1, 1.75, 2.5, 3.25 and 4, rounded.
    EXPECT_EQ(run.read("a.csv"),
              "\"Chainage\",\"Z\"\r\n0.000,1.000\r\n1.500,2.000\r\n3.000,3.000\r\n4.500,3.000\r\n6.000,4.000\r\n");
}

} // namespace
} // namespace gridforge::test
