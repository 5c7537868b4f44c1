#include "support/consoles.h"
#include "support/network_layers.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kReadBoth = "Read GIS Branch == 1d_branches_t.mif\nRead GIS XS == 1d_cut_t.mif\n";
const std::string kHeading = "\"Chainage\",\"Z\"\r\n";

// The network lines of the drawn network. In order of chainage the sections of Main are 4 (snapped to vertex 1), 1, 2
// and 6 (both to vertex 3), 7 and 8 (both in the segment to vertex 4) and 5 (to the last vertex).
const std::string kDrawnLines =
    writtenPline({0, 10, 5, 10}, kChannelPen) + writtenPline({5, 10, 10, 10, 20, 10}, kChannelPen) +
    writtenPline({20, 10}, kChannelPen) + writtenPline({20, 10, 25, 10}, kChannelPen) +
    writtenPline({25, 10, 35, 10}, kChannelPen) + writtenPline({35, 10, 40, 10, 50, 10}, kChannelPen) +
    writtenPline({30, 30, 30, 20, 30, 10}, kChannelPen) + writtenPline({30, 10, 31, 10}, kConnectorPen);

// Main's loss of 0.6 is shared by its six lines. Trib's loss is below 0 and so each line has it in full. Its one section
// lies inside, but the test looks at the second place of a list of one, so Trib stays whole.
std::string drawnRecords(const std::string& exitLoss = "0.000")
{
    std::string records;
    for (const char* id : {"Main_00000", "Main_00005", "Main_00020", "Main_00020", "Main_00025", "Main_00050"}) {
        // The line from 35 to the end is named after the section at its end, 50, the last in order.
        records += nwkRecord(id, "S", "T", "0.030", "0.100", exitLoss);
    }
    return records + nwkRecord("Trib", "S", "F", "1.000", "0.200", exitLoss) +
           nwkRecord("", "X", "F", "0.000", "0.000", exitLoss);
}

const std::string kDrawnSectionObjects =
    writtenPline({5, 6, 5, 10, 5, 14}) + writtenPline({20, 6, 20, 10, 20, 14}) + writtenPline({10, 6, 10, 10, 10, 14}) +
    writtenPline({0, 6, 0, 10, 0, 14}) + writtenPline({50, 6, 50, 10, 50, 14}) + writtenPline({18, 8, 20, 10, 22, 12}) +
    writtenPline({25, 14, 25, 10, 25, 6}) + writtenPline({28, 25, 30, 25, 32, 25}) + writtenPline({55, 20, 58, 20});

std::string drawnSectionRecords(const std::string& type = "", const std::string& flags = "")
{
    return xsRecord("csv\\Main_5.000.csv", type, flags, "0.000") +
           xsRecord("csv\\Main_20.000.csv", type, flags, "0.000") +
           xsRecord("csv\\Main_10.000.csv", type, flags, "0.000") +
           xsRecord("csv\\Main_0.000.csv", type, flags, "0.000") +
           xsRecord("csv\\Main_50.000.csv", type, flags, "0.000") + xsRecord("twin.csv", type, flags, "0.000") +
           xsRecord("csv\\Main_25.000.csv", type, flags, "0.000") +
           xsRecord("csv\\Trib_5.000.csv", type, flags, "1.000") + xsRecord("apart.CSV", type, flags, "-1.000");
}

void expectTables(ToolRun& run)
{
    for (const char* name :
         {"csv/Main_5.000.csv", "csv/Main_20.000.csv", "csv/Main_10.000.csv", "csv/Main_0.000.csv",
          "csv/Main_50.000.csv", "csv/Main_25.000.csv", "csv/Trib_5.000.csv", "twin.csv", "apart.CSV"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
}

TEST(NbcCli, BuildsTheDrawnNetwork)
{
    ToolRun run("-nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Set XS dx == 4\nRead Grid Z == dem.asc\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_EQ(objectsOf(run, "1d_nwk_t.mif"), kDrawnLines);
    std::string records = drawnRecords();
    EXPECT_EQ(run.read("1d_nwk_t.mid"), records);
    EXPECT_EQ(objectsOf(run, "1d_xs_t.mif"), kDrawnSectionObjects);
    EXPECT_EQ(run.read("1d_xs_t.mid"), drawnSectionRecords());
    // 8 long, above 4: 8 / 4 = 2 points between the ends, 8 / 3 apart, in rows 6, 9, 11 and 14 of column 5.
    EXPECT_EQ(run.read("csv/Main_5.000.csv"),
              kHeading + "0.000,6.050\r\n2.667,9.050\r\n5.333,11.050\r\n8.000,14.050\r\n");
    // Two segments of 4, not above 4: their ends, the inner vertex twice.
    EXPECT_EQ(run.read("csv/Main_20.000.csv"),
              kHeading + "0.000,6.200\r\n4.000,10.200\r\n4.000,10.200\r\n8.000,14.200\r\n");
    EXPECT_EQ(run.read("csv/Main_10.000.csv"),
              kHeading + "0.000,6.100\r\n4.000,10.100\r\n4.000,10.100\r\n8.000,14.100\r\n");
    // Column 0 is off the grid.
    EXPECT_EQ(run.read("csv/Main_0.000.csv"),
              kHeading + "0.000,-9999.000\r\n4.000,-9999.000\r\n4.000,-9999.000\r\n8.000,-9999.000\r\n");
    EXPECT_EQ(run.read("csv/Main_50.000.csv"),
              kHeading + "0.000,6.500\r\n4.000,10.500\r\n4.000,10.500\r\n8.000,14.500\r\n");
    // Each half is the square root of 8 long, 2.828.
    EXPECT_EQ(run.read("twin.csv"), kHeading + "0.000,8.180\r\n2.828,10.200\r\n2.828,10.200\r\n5.657,12.220\r\n");
    EXPECT_EQ(run.read("csv/Main_25.000.csv"),
              kHeading + "0.000,14.250\r\n2.667,11.250\r\n5.333,9.250\r\n8.000,6.250\r\n");
    // Its own distance of 1 puts 4 points in, at 28.8, 29.6, 30.4 and 31.2: columns 29, 30, 30 and 31.
    EXPECT_EQ(run.read("csv/Trib_5.000.csv"), kHeading + "0.000,25.280\r\n0.800,25.290\r\n1.600,25.300\r\n"
                                                         "2.400,25.300\r\n3.200,25.310\r\n4.000,25.320\r\n");
    // A distance below 0: the vertices alone.
    EXPECT_EQ(run.read("apart.CSV"), kHeading + "0.000,20.550\r\n3.000,20.580\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NbcCli, TellsItsRunOnTheConsole)
{
    ToolRun run("-nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Set XS dx == 4\nRead Grid Z == dem.asc\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, joined({{"Processing .nbc File... ", "Initialising cross-section array...", "   Done.",
                                       "Initialising branches...", "   Done.", "Opening input .nbc file: net.nbc",
                                       openedInput("net.nbc"), openedUnit(1001), "Getting Projection...",
                                       openedInput("1d_branches_t.mif"), openedUnit(1002),
                                       "Using 1d_branches_t.mif for setting projection.",
                                       "mif Projection: CoordSys NonEarth Units \"m\" Bounds (0, 0) (100, 100)",
                                       closedUnit(1002), "Getting Branches from 1d_branches_t.mif"},
                                      openedMif("1d_branches_t", 1, 1002),
                                      {("4 MIF Fields: Name [#/Type]: Name [1/Char(30)]  n [2/Float]  UCS [3/Char(1)]  "
                                        "Form_Loss [4/Float]  "),
                                       "Searching for Lines and Polylines...", "Polyline 1 with name \"Main\"",
                                       "WARNING - Branch Roughness less than or equal to 0 setting to 1.",
                                       "Polyline 2 with name \"Trib\"", "Polyline 1 is an \"x\" connector."},
                                      closedMif("1d_branches_t", 1, 1002),
                                      {"Extracting distances for branches...", "    Done.", "Extracting extents...",
                                       "    Done.", "Projection check not yet implemented.",
                                       "Opening cross-section file 1d_cut_t.mif", "Opening GIS Layer: 1d_cut_t.mif"}}));
    EXPECT_CONSOLE_HOLDS(
        run, {"Less than 12 attributes, expecting cut lines with the following attribute:",
              "    Name - Optional name for output file",
              "    Distance - Optional distance along the line for sampling from grids",
              "    Split_TF - True / False for splitting branch, set to false for centre sections",
              "    Extract_TF- True / False for extracting section, set to false to skip",
              "    Extraction_Method - min, max or average",
              ("    Buffer_Method - Optional method for extracting values from grid: point {default}, buffer and "
               "perpendicular"),
              "    Buffer_Dist - Distance for use with buffer or perpendicular options.",
              "Loading cross-sections from 1d_cut_t.mif", "Searching for Lines and Polylines...",
              "Found 10 cross-sections.", "Closing GIS Layer 1 [1d_cut_t.mif]...", closedUnit(1002), closedUnit(1003),
              "nbc>> - Read default xs vertex spacing of 4.", "Inserting additional vertices along sections...",
              "   Done", "Proccessing elevation grid.", "Loading grid data...", openedInput("dem.asc"),
              openedUnit(1002), "External Grid Info: 30 rows by 60 columns with 1. cell size.",
              "Allocating 7Kb memory for storing elevation grid...", "Reading ASCII grid...", "", closedUnit(1002),
              "Finished reading grid.", "Extracting sections from grid...", "   Done",
              // 4 + 4 + 4 + 4 + 4 + 4 + 6 + 2 points are on the grid, the 4 of section 4 are not.
              "Updated 32 vertices.", "Deallocating grid memory...", "   Done", "Finished processing grid.",
              closedUnit(1001), "Determining if cross-sections snap or intersect branches...",
              "Check - Not splitting section", "    Done.", "Writing 1, 1d_xs files.", "Opening GIS Layer: 1d_xs_t.mif",
              "GIS Layer assigned ID of 1", openedOutput("1d_xs_t.mif", 1001), openedOutput("1d_xs_t.mid", 1002),
              "Closing GIS Layer 1 [1d_xs_t.mif]...", closedUnit(1001), closedUnit(1002),
              "Finished writing 1d_xs files.", openedOutput("csv\\Main_5.000.csv", 1001),
              "Writing cross-section data to: csv\\Main_5.000.csv", closedUnit(1001)});
    EXPECT_CONSOLE_HOLDS(
        run, joined({{"Writing cross-section data to: apart.CSV", closedUnit(1001),
                      "Allocating memory for storing 1d_nwk data...", "    Done.",
                      "Allocating memory for storing 1d_nwk coordinates...", "    Done.",
                      "Splitting branch data into network...", "    Finished splitting branch data into network.",
                      "Writing \"X\" connectors.", "    Finished writing connectors", "Writing 1 1d_nwk files."},
                     createdMif("1d_nwk_t", 1, 1001),
                     closedMif("1d_nwk_t"),
                     {"Finished writing 1d_nwk file."},
                     normalEnd()}));
}

TEST(NbcCli, HeadersNameTheColumnsWithTheirWidths)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Branch Bendiness == On\n");
    run.start();
    EXPECT_THAT(run.read("1d_nwk_t.mif"),
                HasSubstr("CoordSys NonEarth Units \"m\" Bounds (0, 0) (100, 100)\r\nColumns 23\r\n  ID Char(12)\r\n"
                          "  Type Char(4)\r\n  Ignore Char(1)\r\n  UCS Char(1)\r\n  Len_or_ANA Float\r\n"
                          "  n_or_n_F Float\r\n  US_Invert Float\r\n  DS_Invert Float\r\n  Form_Loss Float\r\n"
                          "  pBlockage Float\r\n  Inlet_Type Char(12)\r\n  Conn_1D_2D Char(4)\r\n  Conn_No Integer\r\n"
                          "  Width_or_Dia Float\r\n  Height_or_WF Float\r\n  Number_of Integer\r\n"
                          "  Height_Cont Float\r\n  Width_Cont Float\r\n  Entry_Loss Float\r\n  Exit_Loss Float\r\n"
                          "  Actual_Len Float\r\n  Min_Len Float\r\n  Sinuosity_Index Float\r\nData\r\n"));
    EXPECT_THAT(run.read("1d_xs_t.mif"),
                HasSubstr("Columns 12\r\n  Source Char(250)\r\n  Type Char(2)\r\n  Flags Char(8)\r\n"
                          "  Column_1 Char(20)\r\n  Column_2 Char(20)\r\n  Column_3 Char(20)\r\n"
                          "  Column_4 Char(20)\r\n  Column_5 Char(20)\r\n  Column_6 Char(20)\r\n"
                          "  Z_Increment Float\r\n  Z_Maximum Float\r\n  Skew Float\r\nData\r\n"));
}

// --- Commands --------------------------------------------------------------------------------------------------------

TEST(NbcCli, UnknownCommandsCommentsAndBareValuesDoNothing)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc",
             "! a comment\nPaint it == blue\n== no command\n\nno value\nREAD mi branch==1d_branches_t.mif # x\n"
             "\tread mi XS   ==   1d_cut_t.mif\n");
    run.start();
    EXPECT_EQ(objectsOf(run, "1d_nwk_t.mif"), kDrawnLines);
    EXPECT_FALSE(run.says("WARNING"));
    EXPECT_TRUE(run.reachedEnd());
    expectTables(run);
    // Without "Set XS dx" there are no points; the first row stands all the same.
    EXPECT_EQ(run.read("twin.csv"), kHeading + "0.000,0.000\r\n");
}

TEST(NbcCli, SetsElevationsAndMaterials)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Set XS dx == 4\nSet XS Z == 12.5\nSet XS Mat == 2.5\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"nbc>> - Setting elevations for all 10 sections to 12.5", "   Done.",
                               "nbc>> - Setting material value for all 10 sections to 2.5", "   Done."});
    // Rounded, halves away from zero.
    EXPECT_EQ(run.read("apart.CSV"), "\"Chainage\",\"Z\",\"Mat\"\r\n0.000,12.500,3\r\n3.000,12.500,3\r\n");
    EXPECT_EQ(run.read("1d_xs_t.mid"), drawnSectionRecords("", "M"));
}

TEST(NbcCli, ReadsMaterialsByThePointMethodAlways)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_xs_a", kCutColumns, "Line 4 5 8 5\n", "\"a\",-1,\"T\",\"T\",\"Max\",\"Perp\",4\n");
    run.give("dem.asc", ascGrid(sectionTerrain(10, 10)));
    run.give("mat.asc", ascGrid({{1, 2, 3, 4, 5, 6, 7, 8, 9, 10},
                                 {11, 12, 13, 14, 15, 16, 17, 18, 19, 20},
                                 {21, 22, 23, 24, 25, 26, 27, kNull, 29, 30}},
                                {.yll = 4}));
    run.give("net.nbc",
             "Read GIS XS == 1d_xs_a.mif\nSet XS dx == 1\nRead Grid Z == dem.asc\nRead Grid Mat == mat.asc\n");
    run.start();
    EXPECT_TRUE(run.says("Proccessing materials grid."));
    EXPECT_TRUE(run.says("Updated 1 vertices.")) << run.console();
    // Across a line to the east: three steps to each side of y = 5, up to row 8. The material of (8, 5) is null.
    EXPECT_EQ(run.read("a.csv"), "\"Chainage\",\"Z\",\"Mat\"\r\n0.000,8.040,24\r\n4.000,8.080,-9999\r\n");
}

TEST(NbcCli, WritesTheCheckLayerBesideTheControlFile)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, "Line 4 5 8 5\nLine 4 6 8 6\n",
              "\"a\",-1,\"T\",\"T\",\"\",\"\",0\n\"b\",-1,\"T\",\"F\",\"\",\"\",0\n");
    run.give("dem.asc", ascGrid(sectionTerrain(10, 10)));
    run.give("net.nbc", "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 1\nRead Grid Z == dem.asc\nSet XS Mat == -1.5\n"
                        "Write Check == On\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Writing GIS check file.", "Opening GIS Layer: net.nbc_check.mif"});
    EXPECT_TRUE(run.says("Finished writing check file."));
    EXPECT_THAT(run.read("net.nbc_check.mif"),
                HasSubstr("Columns 3\r\n  Source Char(250)\r\n  Z Float\r\n  Mat Integer\r\nData"));
    // Sections that are not extracted too, without elevation or extension.
    EXPECT_EQ(objectsOf(run, "net.nbc_check.mif"), "Point         4.000000        5.000000\r\n"
                                                   "Point         8.000000        5.000000\r\n"
                                                   "Point         4.000000        6.000000\r\n"
                                                   "Point         8.000000        6.000000\r\n");
    EXPECT_EQ(run.read("net.nbc_check.mid"),
              "\"a.csv\",5.040,-2\r\n\"a.csv\",5.080,-2\r\n\"b\",-9999.000,-2\r\n\"b\",-9999.000,-2\r\n");
}

TEST(NbcCli, QuotesInSourcesAreDoubledInTheCheckLayer)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, "Line 4 5 8 5\n",
              R"("a""b",-1,"T","F","","",0)"
              "\n");
    run.give("dem.asc", ascGrid(sectionTerrain(10, 10)));
    run.give("net.nbc", "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 1\nWrite Check == On\n");
    run.start();
    EXPECT_EQ(run.read("net.nbc_check.mid"), R"("a""b",-9999.000)"
                                             "\r\n"
                                             R"("a""b",-9999.000)"
                                             "\r\n");
}

TEST(NbcCli, SwitchesHearOnlyTheirWord)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Write XS == no\nWrite NWK == no\nWrite Check == yes\nBranch Bendiness == yes\n");
    run.start();
    EXPECT_TRUE(run.has("1d_xs_t.mif"));
    EXPECT_FALSE(run.has("net.nbc_check.mif"));
    EXPECT_THAT(run.read("1d_nwk_t.mif"), HasSubstr("Columns 20\r\n"));
}

TEST(NbcCli, SwitchesStayAsTheirWordLeftThem)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Branch Bendiness == On\nBranch Bendiness == Off\nWrite Check == On\n"
                                    "Write Check == Off\nWrite XS == Off\nWrite XS == On\n");
    run.start();
    EXPECT_THAT(run.read("1d_nwk_t.mif"), HasSubstr("Columns 23\r\n"));
    EXPECT_TRUE(run.has("net.nbc_check.mif"));
    EXPECT_FALSE(run.has("1d_xs_t.mif"));
    ToolRun without("-b -nbc net.nbc");
    giveDrawnNetwork(without);
    without.give("net.nbc", kReadBoth + "Write NWK == Off\nWrite NWK == On\n");
    without.start();
    EXPECT_TRUE(without.has("1d_xs_t.mif"));
    EXPECT_FALSE(without.has("1d_nwk_t.mif"));
}

TEST(NbcCli, WithoutSectionsOnlyTheirNamesAreSettled)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Set XS dx == 100\nWrite XS == off\nWrite NWK == \"OFF\"\nWrite Check == on\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Writing 1, 1d_xs files.", "Finished writing 1d_xs files.", "Writing GIS check file."});
    EXPECT_THAT(run.read("net.nbc_check.mid"), HasSubstr("\"csv\\Main_5.000.csv\",-9999.000\r\n"));
    EXPECT_TRUE(run.has("net.nbc_check.mif"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NbcCli, FlcPerUnitLengthStandsInTheExitLossAsItIs)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "FLC per Unit Length == 0.25\nSet XS Buffer Distance == 7\n");
    run.start();
    EXPECT_EQ(run.read("1d_nwk_t.mid"), drawnRecords("0.250"));
}

TEST(NbcCli, FlcPerUnitLengthOf0LeavesTheExitLoss)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "FLC per Unit Length == -1\n");
    run.start();
    EXPECT_EQ(run.read("1d_nwk_t.mid"), drawnRecords());
}

TEST(NbcCli, BendinessAddsLengthsAndDividesAClosedLineByZero)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({0, 0, 3, 0, 3, 4}) + pline({0, 0, 5, 0, 5, 5, 0, 0}),
              "\"bent\",1,\"T\",0\n\"ring\",1,\"T\",0\n");
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\nBranch Bendiness == on\n");
    run.start();
    // 3 + 4 along, 5 between the ends. Around: 5 + 5 + the square root of 50.
    EXPECT_THAT(run.read("1d_nwk_a.mid"), HasSubstr(",0.000,7.000,5.000,1.400\r\n"));
    EXPECT_THAT(run.read("1d_nwk_a.mid"), HasSubstr(",0.000,17.071,0.000,Infinity\r\n"));
}

TEST(NbcCli, FlagsOfBranchesAreFForFAndN)
{
    ToolRun run("-b -nbc net.nbc");
    std::string objects;
    std::string records;
    std::string expected;
    for (const char* flag : {"F", "N", "f", "n", "T", "Y", "", "False", "no"}) {
        objects += "Line 0 0 1 1\n";
        records += "\"a\",1,\"" + std::string(flag) + "\",0\n";
        const bool isF = *flag != '\0' && std::string_view("FNfn").find(*flag) != std::string_view::npos;
        expected += nwkRecord("a", "S", isF ? "F" : "T", "1.000", "0.000");
    }
    giveLayer(run, "1d_br_a", kBranchColumns, objects, records);
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\n");
    run.start();
    // The flag is one character wide: of a word the first letter counts.
    EXPECT_EQ(run.read("1d_nwk_a.mid"), expected);
}

// --- Values of layers at their limits --------------------------------------------------------------------------------

TEST(NbcCli, ARoughnessOfATenThousandthStays)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({0, 0, 3, 0}) + pline({0, 1, 3, 1}),
              "\"least\",0.0001,\"T\",0\n\"less\",0.00009,\"T\",0\n");
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Polyline 1 with name \"least\"",
                               "WARNING - Branch Roughness less than or equal to 0 setting to 1.",
                               "Polyline 2 with name \"less\""});
    EXPECT_EQ(run.read("1d_nwk_a.mid"),
              nwkRecord("least", "S", "T", "0.000", "0.000") + nwkRecord("less", "S", "T", "1.000", "0.000"));
}

TEST(NbcCli, FlagsAndTypesAreCutToTheirWidths)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kTypedColumns,
              pline({0, 0, 3, 0}) + pline({0, 1, 3, 1}) + pline({0, 2, 3, 2}) + pline({0, 3, 3, 3}),
              "\"a\",1,\"False\",0,\"CIRCLE\"\n\"b\",1,\"No\",0,\"\"\n\"c\",1,\"True\",0,\"S\"\n"
              "\"d\",1,\"\",0,\"SP\"\n");
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\n");
    run.start();
    EXPECT_EQ(run.read("1d_nwk_a.mid"),
              nwkRecord("a", "CIRC", "F", "1.000", "0.000") + nwkRecord("b", "S", "F", "1.000", "0.000") +
                  nwkRecord("c", "S", "T", "1.000", "0.000") + nwkRecord("d", "SP", "T", "1.000", "0.000"));
}

TEST(NbcCli, OfTwoCommandsInALineTheFirstOfTheTableCounts)
{
    ToolRun run("-b -nbc net.nbc");
    giveDrawnNetwork(run);
    run.give("net.nbc", kReadBoth + "Output XS or Write XS == Off\n");
    run.start();
    EXPECT_TRUE(run.says("Writing 1, 1d_xs files."));
    EXPECT_FALSE(run.has("1d_xs_t.mif"));
    EXPECT_TRUE(run.reachedEnd());
}

TEST(NbcCli, ElevenAttributesAreCutLines)
{
    std::vector<std::string> columns = kTabColumns;
    columns.pop_back();
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_tab_a", columns, "Line 1 5 3 5\n", "\"a\",-1,\"T\",\"T\",\"\",\"\",0,8,9,10,11\n");
    run.give("net.nbc", "Read GIS XS == 1d_tab_a.mif\n");
    run.start();
    EXPECT_TRUE(run.says("Less than 12 attributes, expecting cut lines with the following attribute:"));
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "", "", "-1.000"));
}

TEST(NbcCli, LongNamesOfBranchesAndSourcesAreCut)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({0, 0, 9, 0}), "\"" + std::string(260, 'n') + "\",1,\"T\",0\n");
    giveLayer(run, "1d_cut_a", kCutColumns, "Line 4 2 4 -2\n", "\"\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("csv/.keep", "");
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\n");
    run.start();
    EXPECT_TRUE(run.says("Polyline 1 with name \"" + std::string(250, 'n') + "\""));
    // No room is left for chainage and extension.
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("csv\\" + std::string(246, 'n'), "", "", "-1.000"));
    EXPECT_TRUE(run.has("csv/" + std::string(246, 'n')));
}

TEST(NbcCli, ChainagesOfATableAddUpInDoublePrecision)
{
    // Single precision knows no whole number between 16777216 and 16777218.
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_cut_a", kCutColumns, pline({0, 1, 16777216, 1, 16777217, 1}),
              "\"a\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("net.nbc", "Read GIS XS == 1d_cut_a.mif\nSet XS dx == 1\nSet XS Z == 2\n");
    run.start();
    EXPECT_EQ(run.read("a.csv"), kHeading + "0.000,2.000\r\n16777216.000,2.000\r\n16777217.000,2.000\r\n");
}

// --- Several layers --------------------------------------------------------------------------------------------------

void giveTwoOfEach(ToolRun& run)
{
    giveLayer(run, "1d_branches_a", kTypedColumns, pline({0, 10, 10, 10}) + pline({0, 12, 10, 12}),
              "\"a\",1,\"T\",0,\"C\"\n\"b\",1,\"T\",0,\"\"\n");
    giveLayer(run, "in/reach", kTypedColumns, pline({0, 20, 10, 20}) + pline({0, 22, 10, 22}) + pline({0, 23, 1, 23}),
              "\"c\",1,\"T\",0,\"B\"\n\"d\",1,\"T\",0,\"S\"\n\"x\",1,\"T\",0,\"\"\n");
    giveLayer(run, "1d_tab_a", kTabColumns, "Line 1 5 3 5\n",
              "\"one\",\"CS\",\"RN\",\"H\",\"W\",\"n, m\",\"\",\"\",\"six\",-1,40.25,9\n");
    giveLayer(run, "in/cuts", kCutColumns, "Line 1 6 3 6\n", "\"sub/two\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("in/sub/.keep", "");
    run.give("o/sub/.keep", "");
}

const std::string kReadFour = "Read GIS Branch == 1d_branches_a.mif\nRead GIS Branch == in/reach.mif\n"
                              "Read GIS XS == 1d_tab_a.mif\nRead GIS XS == in/cuts.mif\nSet XS dx == 1\n";

TEST(NbcCli, WritesALayerForEachInputLayer)
{
    ToolRun run("-b -nbc net.nbc");
    giveTwoOfEach(run);
    run.give("net.nbc", kReadFour);
    run.start();
    EXPECT_TRUE(run.says("More than four attributes - assuming 5th attribute is channel type."));
    EXPECT_TRUE(run.says("  This cahouls be a character attribute with a maximum of 4 characters."));
    EXPECT_TRUE(run.says("Found 12 or more attributes, expecting GIS layer to be in 1d_tab format."));
    EXPECT_TRUE(run.says("Polyline 3 with name \"c\""));
    EXPECT_TRUE(run.says("Found 1 cross-sections."));
    EXPECT_TRUE(run.says("Found 2 cross-sections."));
    EXPECT_TRUE(run.says("Writing 2, 1d_xs files."));
    EXPECT_TRUE(run.says("Writing 2 1d_nwk files."));
    // Types other than S and X keep the pen they find, which is none at the start of a layer.
    EXPECT_EQ(objectsOf(run, "1d_nwk_a.mif"),
              writtenPline({0, 10, 10, 10}) + writtenPline({0, 12, 10, 12}, kChannelPen));
    EXPECT_EQ(run.read("1d_nwk_a.mid"),
              nwkRecord("a", "C", "T", "1.000", "0.000") + nwkRecord("b", "S", "T", "1.000", "0.000"));
    // A name that is put in front of has no extension; .mif and .mid come with the kind of layer.
    EXPECT_EQ(objectsOf(run, "in/1d_nwkreach.mif"), writtenPline({0, 20, 10, 20}) +
                                                        writtenPline({0, 22, 10, 22}, kChannelPen) +
                                                        writtenPline({0, 23, 1, 23}, kConnectorPen));
    EXPECT_EQ(run.read("in/1d_nwkreach.mid"), nwkRecord("c", "B", "T", "1.000", "0.000") +
                                                  nwkRecord("d", "S", "T", "1.000", "0.000") +
                                                  nwkRecord("", "X", "F", "0.000", "0.000"));
    EXPECT_EQ(run.read("1d_xs_a.mid"), "\"one.csv\",\"CS\",\"RN\",\"H\",\"W\",\"n, m\",\"\",\"\",\"six\",-1.000,40.250,"
                                       "0.000\r\n");
    EXPECT_EQ(objectsOf(run, "1d_xs_a.mif"), writtenPline({1, 5, 3, 5}));
    EXPECT_EQ(run.read("in/1d_xscuts.mid"), xsRecord("sub/two.csv", "", "", "-1.000"));
    EXPECT_EQ(objectsOf(run, "in/1d_xscuts.mif"), writtenPline({1, 6, 3, 6}));
    // Tables lie beside their layers.
    EXPECT_TRUE(run.has("one.csv"));
    EXPECT_TRUE(run.has("in/sub/two.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NbcCli, SourcesThatEndInTheExtensionStay)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_tab_a", kTabColumns, "Line 1 5 3 5\nLine 1 6 3 6\n",
              "\"a.csv\",\"XZ\",,,,,,,,0,0,0\n\"b.CsV\",\"XZ\",,,,,,,,0,0,0\n");
    run.give("net.nbc", "Read GIS XS == 1d_tab_a.mif\n");
    run.start();
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("a.csv", "XZ", "", "0.000") + xsRecord("b.CsV", "XZ", "", "0.000"));
    EXPECT_TRUE(run.has("a.csv"));
    EXPECT_TRUE(run.has("b.CsV"));
}

TEST(NbcCli, OneOutputLayerTakesAll)
{
    ToolRun run("-b -nbc net.nbc");
    giveTwoOfEach(run);
    run.give("net.nbc", kReadFour + "Output Nwk == o/all_nwk.mif\nOutput XS == o/all_xs.mif\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using user-specfied output file: o/all_nwk.mif", "Writing 1 1d_nwk files."});
    EXPECT_TRUE(run.says("Using user-specified output file: o/all_xs.mif"));
    EXPECT_THAT(run.console(), Not(HasSubstr("1d_xs files.\nOpening")));
    // The pen of "b" stays for "c", of type B.
    EXPECT_EQ(objectsOf(run, "o/all_nwk.mif"),
              writtenPline({0, 10, 10, 10}) + writtenPline({0, 12, 10, 12}, kChannelPen) +
                  writtenPline({0, 20, 10, 20}, kChannelPen) + writtenPline({0, 22, 10, 22}, kChannelPen) +
                  writtenPline({0, 23, 1, 23}, kConnectorPen));
    EXPECT_THAT(run.read("o/all_nwk.mid"), HasSubstr("\"d\",\"S\""));
    EXPECT_EQ(objectsOf(run, "o/all_xs.mif"), writtenPline({1, 5, 3, 5}) + writtenPline({1, 6, 3, 6}));
    EXPECT_THAT(run.read("o/all_xs.mid"), HasSubstr("\"sub/two.csv\""));
    // Tables lie beside the one layer.
    EXPECT_TRUE(run.has("o/one.csv"));
    EXPECT_TRUE(run.has("o/sub/two.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

// --- Splitting -------------------------------------------------------------------------------------------------------

std::string crossingsAt(const std::vector<double>& places)
{
    std::string objects;
    for (const double x : places) {
        objects += "Line " + shortNumber(x) + " 6 " + shortNumber(x) + " 14\n";
    }
    return objects;
}

std::string namedRecords(std::size_t count)
{
    std::string records;
    for (std::size_t i = 1; i <= count; ++i) {
        records += "\"s" + std::to_string(i) + "\",-1,\"T\",\"T\",\"\",\"\",0\n";
    }
    return records;
}

// IDs and vertices of the network lines of one branch along y = 10.
void runBranch(ToolRun& run, const std::string& name, const std::vector<double>& xy, const std::string& sections,
               std::size_t sectionCount)
{
    giveLayer(run, "1d_br_a", kBranchColumns, pline(xy), "\"" + name + "\",1,\"T\",0.6\n");
    giveLayer(run, "1d_cut_a", kCutColumns, sections, namedRecords(sectionCount));
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\n");
    run.start();
}

TEST(NbcCli, ASectionAtTheStartLeavesABranchWhole)
{
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "b", {0, 10, 10, 10, 20, 10}, pline({0, 6, 0, 10, 0, 14}), 1);
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("b", "S", "T", "1.000", "0.600"));
}

TEST(NbcCli, TwoSectionsSplitByThePlacesThatTheirVertexNumbersPick)
{
    // Vertex numbers 2 and 2 pick the second place, at 15: inside, so it is split. The last section is at place 2 and the
    // branch has 3 vertices: its end is there.
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "b", {0, 10, 20, 10, 40, 10}, crossingsAt({5, 15}), 2);
    EXPECT_EQ(objectsOf(run, "1d_nwk_a.mif"), writtenPline({0, 10, 5, 10}, kChannelPen) +
                                                  writtenPline({5, 10, 15, 10}, kChannelPen) +
                                                  writtenPline({15, 10, 20, 10, 40, 10}, kChannelPen));
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("b_0", "S", "T", "1.000", "0.200") +
                                            nwkRecord("b_00005", "S", "T", "1.000", "0.200") +
                                            nwkRecord("b_00015", "S", "T", "1.000", "0.200"));
}

TEST(NbcCli, TwoSectionsInTheMiddleStayUnseenPastTheList)
{
    // Both lie in the third segment, at vertex number 4: the list has no fourth place.
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "b", {0, 10, 10, 10, 20, 10, 40, 10}, crossingsAt({25, 30}), 2);
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("b", "S", "T", "1.000", "0.600"));
}

TEST(NbcCli, ALastSectionListedAtThePlaceOfTheVertexCountLosesTheEnd)
{
    // Three vertices, and the section of the highest chainage is the third of the list.
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "b", {0, 10, 20, 10, 40, 10}, crossingsAt({5, 15, 30}), 3);
    EXPECT_EQ(objectsOf(run, "1d_nwk_a.mif"), writtenPline({0, 10, 5, 10}, kChannelPen) +
                                                  writtenPline({5, 10, 15, 10}, kChannelPen) +
                                                  writtenPline({15, 10, 20, 10, 30, 10}, kChannelPen));
}

TEST(NbcCli, SectionsSnappedToTheStartAloneCanLeaveNoLine)
{
    // None of the three ends a line, and the third place is the vertex count.
    ToolRun run("-b -nbc net.nbc");
    const std::string atStart = pline({0, 6, 0, 10, 0, 14});
    runBranch(run, "b", {0, 10, 20, 10, 40, 10}, atStart + atStart + atStart, 3);
    EXPECT_EQ(objectsOf(run, "1d_nwk_a.mif"), "");
    EXPECT_EQ(run.read("1d_nwk_a.mid"), "");
}

TEST(NbcCli, TheDrawingOfThePageHolds)
{
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "Main", {0, 10, 10, 10, 20, 10, 30, 10, 40, 10, 50, 10},
              pline({0, 6, 0, 10, 0, 14}) + crossingsAt({5}) + pline({20, 6, 20, 10, 20, 14}) + crossingsAt({25}) +
                  pline({50, 6, 50, 10, 50, 14}),
              5);
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("Main_00000", "S", "T", "1.000", "0.150") +
                                            nwkRecord("Main_00005", "S", "T", "1.000", "0.150") +
                                            nwkRecord("Main_00020", "S", "T", "1.000", "0.150") +
                                            nwkRecord("Main_00050", "S", "T", "1.000", "0.150"));
    EXPECT_EQ(objectsOf(run, "1d_nwk_a.mif"), writtenPline({0, 10, 5, 10}, kChannelPen) +
                                                  writtenPline({5, 10, 10, 10, 20, 10}, kChannelPen) +
                                                  writtenPline({20, 10, 25, 10}, kChannelPen) +
                                                  writtenPline({25, 10, 30, 10, 40, 10, 50, 10}, kChannelPen));
}

TEST(NbcCli, LongNamesLoseTheTailOfTheId)
{
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "ABCDEFGHIJ", {0, 10, 20, 10, 40, 10}, crossingsAt({5, 15}), 2);
    EXPECT_EQ(run.read("1d_nwk_a.mid"), nwkRecord("ABCDEFGHIJ_0", "S", "T", "1.000", "0.200") +
                                            nwkRecord("ABCDEFGHIJ_0", "S", "T", "1.000", "0.200") +
                                            nwkRecord("ABCDEFGHIJ_0", "S", "T", "1.000", "0.200"));
}

TEST(NbcCli, ASectionSnapsToOneBranchAndCrossesAnother)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({5, 20, 5, 10}) + pline({0, 10, 20, 10}),
              "\"down\",1,\"T\",0\n\"along\",1,\"T\",0\n");
    giveLayer(run, "1d_cut_a", kCutColumns, pline({5, 6, 5, 10, 5, 14}), "\"\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("csv/.keep", "");
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\nRead GIS XS == 1d_cut_a.mif\n");
    run.start();
    // The last meeting names the table and stands among the vertices.
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("csv\\along_5.000.csv", "", "", "-1.000"));
    EXPECT_EQ(objectsOf(run, "1d_xs_a.mif"), writtenPline({5, 6, 5, 10, 5, 10, 5, 14}));
}

TEST(NbcCli, TakesTheOldWordsForItsLayersInAnyCase)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({0, 10, 20, 10}), "\"along\",1,\"T\",0\n");
    giveLayer(run, "1d_cut_a", kCutColumns, pline({5, 6, 5, 14}), "\"\",-1,\"T\",\"T\",\"\",\"\",0\n");
    run.give("csv/.keep", "");
    run.give("net.nbc", "Read MI Branch == 1d_br_a.mif\nread mi xs == 1d_cut_a.mif\n");
    run.start();
    EXPECT_EQ(run.read("1d_xs_a.mid"), xsRecord("csv\\along_5.000.csv", "", "", "-1.000"));
    EXPECT_TRUE(run.has("1d_nwk_a.mif"));
}

TEST(NbcCli, OnlyTheFirstSegmentOfASectionCrosses)
{
    // The second segment meets the branch between its vertices, which nobody looks at.
    ToolRun run("-b -nbc net.nbc");
    runBranch(run, "b", {0, 10, 20, 10}, pline({5, 2, 5, 6, 5, 14}) + pline({8, 10, 8, 12, 8, 14}), 2);
    EXPECT_EQ(objectsOf(run, "1d_xs_a.mif"), writtenPline({5, 2, 5, 6, 5, 14}) + writtenPline({8, 10, 8, 12, 8, 14}));
}

// --- Form losses of regions ------------------------------------------------------------------------------------------

void runFlc(ToolRun& run, const std::string& regions, const std::string& values)
{
    giveLayer(run, "1d_br_a", kBranchColumns,
              pline({10, 10, 20, 10}) + pline({10, 20, 20, 20}) + pline({10, 30, 20, 30}),
              "\"a\",1,\"T\",0.2\n\"b\",1,\"T\",0\n\"c\",1,\"T\",0\n");
    giveLayer(run, "flc", {"FLC Float"}, regions, values);
    run.give("net.nbc", "Read GIS Branch == 1d_br_a.mif\nRead MI FLC == flc.mif\n");
    run.start();
}

std::string threeLosses(const std::string& a, const std::string& b, const std::string& c)
{
    return nwkRecord("a", "S", "T", "1.000", a) + nwkRecord("b", "S", "T", "1.000", b) +
           nwkRecord("c", "S", "T", "1.000", c);
}

TEST(NbcCli, SharesTheLossOfARegionOverItsLines)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, "Point 1 1\n" + rectangle(5, 5, 15, 25), "9\n0.5\n");
    EXPECT_CONSOLE_HOLDS(run, {"Opening FLC file flc.mif", "Opening GIS Layer: flc.mif"});
    EXPECT_CONSOLE_HOLDS(run, {"Loading FLC polygons from from flc.mif", "Searching for region objects...",
                               "Region 1 with 6 nodes...", "Closing GIS Layer 1 [flc.mif]..."});
    EXPECT_EQ(run.read("1d_nwk_a.mid"), threeLosses("0.450", "0.250", "0.000"));
}

TEST(NbcCli, GivesALossBelow0ToEachLineInFull)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(5, 5, 15, 25), "-0.5\n");
    EXPECT_EQ(run.read("1d_nwk_a.mid"), threeLosses("0.700", "0.500", "0.000"));
}

TEST(NbcCli, LossesOfOverlappingRegionsAdd)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(5, 5, 15, 25) + rectangle(5, 15, 15, 35), "0.5\n-1\n");
    EXPECT_EQ(run.read("1d_nwk_a.mid"), threeLosses("0.450", "1.250", "1.000"));
}

TEST(NbcCli, WarnsOfARegionInWhichNoLineStarts)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(15.5, 5, 18, 12.25), "1\n");
    EXPECT_CONSOLE_HOLDS(run, {"Region 1 with 6 nodes...", "WARNING - No network lines start within region object.",
                               "  XY of first polygon vertex is: 15.5, 5."});
    EXPECT_EQ(run.read("1d_nwk_a.mid"), threeLosses("0.200", "0.000", "0.000"));
}

TEST(NbcCli, ARegionWithoutAValueEndsTheRunAfterItsWarning)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(15.5, 5, 18, 12.25), "0\n");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("WARNING - No network lines start within region object.",
                                       "  XY of first polygon vertex is: 15.5, 5.",
                                       "ERROR - No FLC value specified on region."));
    EXPECT_FALSE(run.has("1d_nwk_a.mif"));
}

TEST(NbcCli, ALossOfATenThousandthIsNone)
{
    for (const std::string value : {"0.0001", "-0.0001"}) {
        ToolRun run("-b -nbc net.nbc");
        runFlc(run, rectangle(5, 5, 15, 25), value + "\n");
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Region 1 with 6 nodes...", "ERROR - No FLC value specified on region."));
    }
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(5, 5, 15, 15), "-0.00051\n");
    EXPECT_EQ(run.read("1d_nwk_a.mid"), threeLosses("0.201", "0.000", "0.000"));
}

TEST(NbcCli, ConnectorsTakeTheirShareOfALoss)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({10, 12, 11, 12}) + pline({10, 10, 20, 10}),
              "\"x\",1,\"T\",7\n\"a\",1,\"T\",0\n");
    giveLayer(run, "flc", {"FLC Float"}, rectangle(5, 5, 15, 15), "0.5\n");
    run.give("net.nbc", "Read GIS FLC == flc.mif\nRead GIS Branch == 1d_br_a.mif\n");
    run.start();
    EXPECT_EQ(run.read("1d_nwk_a.mid"),
              nwkRecord("a", "S", "T", "1.000", "0.250") + nwkRecord("", "X", "F", "0.000", "0.250"));
    // The projection is that of the branches: regions give none.
    EXPECT_TRUE(run.says("Using 1d_br_a.mif for setting projection."));
    EXPECT_FALSE(run.says("Projection check not yet implemented."));
}

TEST(NbcCli, RegionsOfEachFileAreCountedAnew)
{
    ToolRun run("-b -nbc net.nbc");
    giveLayer(run, "1d_br_a", kBranchColumns, pline({10, 10, 20, 10}) + pline({10, 20, 20, 20}),
              "\"a\",1,\"T\",0\n\"b\",1,\"T\",0\n");
    giveLayer(run, "one", {"FLC Float"}, rectangle(5, 5, 15, 15) + rectangle(5, 15, 15, 25), "0.5\n0.25\n");
    giveLayer(run, "two", {"FLC Float"}, rectangle(5, 5, 15, 25), "1\n");
    run.give("net.nbc", "Read GIS FLC == one.mif\nRead GIS Branch == 1d_br_a.mif\nRead GIS FLC == two.mif\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Region 1 with 6 nodes...", "Region 2 with 6 nodes...", "Closing GIS Layer 1 [one.mif]..."});
    EXPECT_CONSOLE_HOLDS(run, {"Region 1 with 6 nodes...", "Closing GIS Layer 1 [two.mif]..."});
    EXPECT_EQ(run.read("1d_nwk_a.mid"),
              nwkRecord("a", "S", "T", "1.000", "1.000") + nwkRecord("b", "S", "T", "1.000", "0.750"));
}

TEST(NbcCli, ARegionOfTwoRingsEndsTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    const std::string ring = "  4\n1 1\n2 1\n2 2\n1 1\n";
    runFlc(run, "Region  2\n" + ring + ring, "1\n");
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."));
}

TEST(NbcCli, AnUnreadableLossEndsTheRun)
{
    ToolRun run("-b -nbc net.nbc");
    runFlc(run, rectangle(5, 5, 15, 25), "high\n");
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Reading following line in 1d_FLC file:", "high"));
}

} // namespace
} // namespace gridforge::test
