#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::vector<std::string> kTwoColumns = {"Obs Float", "Mark Char(20)"};
const std::vector<std::string> kThreeColumns = {"Obs Float", "Mark Char(20)", "Model Float"};

// A search sees cell (row, column) at its north-east corner, (column, row).
void giveMarks(ToolRun& run, const std::string& objects, const std::string& records,
               const std::vector<std::string>& columns = kTwoColumns)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
    run.give("p.mif", mifHeader(columns) + objects);
    run.give("p.mid", records);
}

constexpr std::string_view kHeading = "\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\"\r\n";

TEST(CpCli, TakesTheNearestCellOfEachPoint)
{
    ToolRun run("-cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Point 4.3 4.4\nPoint 6 5.25\n", "40.5,\"left bank\"\n57,bridge\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"dem.asc"}),
                                {"Processing calibration points.", "Using search distance of 4.",
                                 "   Use -cpsd<distance> input argument to modify."},
                                projectionOf("p"),
                                openedMif("p"),
                                {"2 MIF Fields: Name [#/Type]: Obs [1/Float]  Mark [2/Char(20)]  ",
                                 "Writing summary data to: p.csv", openedOutput("p.csv", 1003)},
                                createdMif("p_Res", 2, 1004),
                                createdMif("p_Cn", 3, 1006),
                                {"Loading grid data..."},
                                headerOf("dem.asc", "9 rows by 9 columns", 1008),
                                {"Allocating 0Kb memory for storing input grid...", "Reading data..."},
                                ascCells(1008),
                                {"   Done.", "Searching for Points..."},
                                closedMif("p"),
                                closedMif("p_Res", 2, 1004),
                                closedMif("p_Cn", 3, 1006),
                                {closedUnit(1003)},
                                normalEnd()}));
    // The corner (4, 4) is 0.3 and 0.4 away: 0.5. The corner (6, 5) is 0.25 away.
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"left bank\",   40.500,   44.000,    3.500,    0.500\r\n"
                                                         "\"bridge\",   57.000,   56.000,   -1.000,    0.250\r\n");
    EXPECT_EQ(run.read("p_Res.mif"), "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\n"
                                     "CoordSys NonEarth Units \"m\"\r\nColumns 5\r\n  Obs Float\r\n  Mark Char(20)\r\n"
                                     "  Modelled Float\r\n  Difference Float\r\n  Distance Float\r\nData\r\n\r\n"
                                     "Point         4.300000        4.400000\r\n"
                                     "Point         6.000000        5.250000\r\n");
    EXPECT_EQ(run.read("p_Res.mid"), "   40.500,\"left bank\",   44.000,    3.500,    0.500\r\n"
                                     "   57.000,\"bridge\",   56.000,   -1.000,    0.250\r\n");
    EXPECT_EQ(run.read("p_Cn.mif"), "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\n"
                                    "CoordSys NonEarth Units \"m\"\r\nColumns 2\r\n  distance Float\r\n"
                                    "  cp_type Char(20)\r\nData\r\n\r\n"
                                    "Line         4.000000        4.000000        4.300000        4.400000\r\n"
                                    "Pen (1,59,0)\r\n"
                                    "Line         6.000000        5.000000        6.000000        5.250000\r\n"
                                    "Pen (1,59,0)\r\n");
    EXPECT_EQ(run.read("p_Cn.mid"), "    0.500,\"Closest\"\r\n    0.250,\"Closest\"\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, ACircleOverTheEdgeGivesNoValueAndALineFromAnEarlierPlace)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Point 1.5 5\nPoint 4.3 4.4\nPoint 5 8.5\n", "1,a\n2,b\n3,c\n");
    run.start();
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"a\",    1.000,99999.000,99999.000,99999.000\r\n"
                                                         "\"b\",    2.000,   44.000,   42.000,    0.500\r\n"
                                                         "\"c\",    3.000,99999.000,99999.000,99999.000\r\n");
    EXPECT_EQ(mifObjects(run.read("p_Cn.mif")),
              "Line         0.000000        0.000000        1.500000        5.000000\r\n"
              "Pen (1,59,0)\r\n"
              "Line         4.000000        4.000000        4.300000        4.400000\r\n"
              "Pen (1,59,0)\r\n"
              "Line         4.000000        4.000000        5.000000        8.500000\r\n"
              "Pen (1,59,0)\r\n");
    EXPECT_EQ(run.read("p_Cn.mid"), "99999.000,\"Closest\"\r\n    0.500,\"Closest\"\r\n99999.000,\"Closest\"\r\n");
}

// Of a grid from 0 to 9 with cells of 1: a whole cell is free in the west and south, the other edges may be touched.
TEST(CpCli, ACircleNeedsACellInTheWestAndSouthAndMayTouchTheOtherEdges)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run,
              "Point 3 5\nPoint 2.99 5\nPoint 5 3\nPoint 5 2.99\nPoint 7 5\nPoint 7.01 5\nPoint 5 7\nPoint 5 7.01\n",
              "0,west\n0,w\n0,south\n0,s\n0,east\n0,e\n0,north\n0,n\n");
    run.start();
    const std::string none = ",    0.000,99999.000,99999.000,99999.000\r\n";
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) +                                                   //
                                     "\"west\",    0.000,   53.000,   53.000,    0.000\r\n\"w\"" + none +  //
                                     "\"south\",    0.000,   35.000,   35.000,    0.000\r\n\"s\"" + none + //
                                     "\"east\",    0.000,   57.000,   57.000,    0.000\r\n\"e\"" + none +  //
                                     "\"north\",    0.000,   75.000,   75.000,    0.000\r\n\"n\"" + none);
}

TEST(CpCli, TheDefaultSearchDistanceIs1000)
{
    ToolRun run("-b -cp p.mif dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "1,a\n");
    run.start();
    EXPECT_TRUE(run.says("Using search distance of 1000."));
    EXPECT_THAT(run.read("p.csv"), HasSubstr("99999.000,99999.000,99999.000"));
}

TEST(CpCli, TiesKeepTheCellMetFirstFromTheSouth)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Point 4.5 4.5\n", "40,a\n");
    run.start();
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"a\",   40.000,   44.000,    4.000,    0.707\r\n"));
}

TEST(CpCli, NullCellsAreNotFound)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Point 4.5 4.5\n", "40,a\n");
    Cells cells = rowColumnCells();
    cells[9 - 4][4 - 1] = kNull; // row 4, column 4
    cells[9 - 4][5 - 1] = kNull;
    run.give("dem.asc", ascGrid(cells));
    run.start();
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"a\",   40.000,   54.000,   14.000,    0.707\r\n"));
}

TEST(CpCli, AModelledValueOfTheLayerSuppressesTheSearch)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Point 4.3 4.4\nPoint 4.3 4.4\nPoint 1.5 5\n", "40,a,41.5\n40,b,99998.5\n40,c,99998.5\n",
              kThreeColumns);
    run.start();
    // 99998.5 is above the limit, so the grid is searched; without a cell the value itself stays.
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"a\",   40.000,   41.500,    1.500,   -1.000\r\n"
                                                         "\"b\",   40.000,   44.000,    4.000,    0.500\r\n"
                                                         "\"c\",   40.000,99998.500,99999.000,99999.000\r\n");
    EXPECT_EQ(run.read("p_Cn.mid"), "    0.500,\"Closest\"\r\n99999.000,\"Closest\"\r\n");
    EXPECT_THAT(run.read("p_Res.mif"), HasSubstr("Columns 5\r\n  Obs Float\r\n  Mark Char(20)\r\n  Modelled Float"));
}

TEST(CpCli, CpmmAddsTheLowestAndTheHighestCell)
{
    ToolRun run("-b -cp p.mif -cpsd4 -cpmm5 dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using search distance of 4.", "   Use -cpsd<distance> input argument to modify.",
                               "Extracting max/min with search disatnce of 5.", "Getting Projection..."});
    // Around (4.3, 4.4) within 2.5 by a polygon of 12 sides: row 2 holds the corner (4, 2), 2.4 south, where the vertices
    // at 240, 270 and 300 degrees lie 2.165, 2.5 and 2.165 south: at 2.4 the polygon is 0.3732 wide to each side. In row
    // 6, 1.6 north, it reaches from the vertex at 30 degrees (2.165, 1.25) to that at 60 (1.25, 2.165), so 1.815 to each
    // side: corners (3, 6) to (6, 6), and the highest is 66.
    EXPECT_EQ(run.read("p.csv"),
              "\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\",\"Minimum\",\"Maximum\"\r\n"
              "\"a\",   40.000,   44.000,    4.000,    2.419,   24.000,   66.000\r\n");
    EXPECT_EQ(run.read("p_Res.mid"), "   40.000,\"a\",   44.000,    4.000,    2.419,   24.000,   66.000\r\n");
    EXPECT_THAT(run.read("p_Res.mif"),
                HasSubstr("Columns 7\r\n  Obs Float\r\n  Mark Char(20)\r\n  Modelled Float\r\n  Difference Float\r\n"
                          "  Distance Float\r\n  CP_min Float\r\n  CP_max Float\r\nData\r\n"));
    EXPECT_EQ(mifObjects(run.read("p_Cn.mif")),
              "Line         4.000000        4.000000        4.300000        4.400000\r\n"
              "Pen (1,59,0)\r\n"
              "Line         4.000000        2.000000        4.300000        4.400000\r\n"
              "Pen (1,59,0)\r\n"
              "Line         6.000000        6.000000        4.300000        4.400000\r\n"
              "Pen (1,59,0)\r\n");
    // (4, 2) is 0.3 and 2.4 away: 2.419. (6, 6) is 1.7 and 1.6 away: 2.335.
    EXPECT_EQ(run.read("p_Cn.mid"), "    0.500,\"Closest\"\r\n    2.419\"Min\"\r\n    2.335,\"Max\"\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, CpmmOffTheGridWritesStalePlaces)
{
    ToolRun run("-b -cp p.mif -cpsd4 -cpmm5 dem.asc");
    giveMarks(run, "Point 2.2 5\nPoint 4.3 4.4\nPoint 2.2 5\n", "40,a\n40,b\n40,c\n");
    run.start();
    // The window of 4 starts in column 0.2: nothing either. The distance of a maximum stays with its place.
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"a\",   40.000,99999.000,99999.000,99999.000,99999.000,*********\r\n"));
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"c\",   40.000,99999.000,99999.000,99999.000,99999.000,*********\r\n"));
    const std::string lines = mifObjects(run.read("p_Cn.mif"));
    EXPECT_THAT(lines, HasSubstr("Line         0.000000        0.000000        2.200000        5.000000\r\n"));
    EXPECT_THAT(lines, HasSubstr("Line         4.000000        2.000000        2.200000        5.000000\r\n"));
    EXPECT_THAT(lines, HasSubstr("Line         6.000000        6.000000        2.200000        5.000000\r\n"));
    EXPECT_EQ(run.read("p_Cn.mid"), "99999.000,\"Closest\"\r\n99999.000\"Min\"\r\n    0.000,\"Max\"\r\n"
                                    "    0.500,\"Closest\"\r\n    2.419\"Min\"\r\n    2.335,\"Max\"\r\n"
                                    "99999.000,\"Closest\"\r\n99999.000\"Min\"\r\n    2.335,\"Max\"\r\n");
}

TEST(CpCli, CpmmSearchesForAPointWithItsOwnValueToo)
{
    ToolRun run("-b -cp p.mif -cpsd4 -cpmm5 dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a,41.5\n", kThreeColumns);
    run.start();
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"a\",   40.000,   41.500,    1.500,    2.419,   24.000,   66.000\r\n"));
    EXPECT_EQ(run.read("p_Cn.mid"), "    2.419\"Min\"\r\n    2.335,\"Max\"\r\n");
}

TEST(CpCli, OtherObjectsArePassedOver)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "Line 1 1 2 2\nPoint 4.3 4.4\nPline 2\n1 1\n3 3\nMultiPoint 1\n5 5\n", "x\n40,a\ny\nz\n");
    run.start();
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"a\",   40.000,   44.000,    4.000,    0.500\r\n");
}

TEST(CpCli, ALayerWithoutPointsGivesEmptyOutputs)
{
    ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(run, "", "");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("p.csv"), kHeading);
    EXPECT_EQ(mifObjects(run.read("p_Res.mif")), "");
    EXPECT_EQ(run.read("p_Cn.mid"), "");
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(CpCli, OutNamesAllOutputs)
{
    ToolRun run("-b -cp p.mif -cpsd4 -out res.mif dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using specified output file: res.mif", "Writing summary data to: res.csv"});
    for (const char* name : {"res.mif", "res.mid", "res_Cn.mif", "res_Cn.mid", "res.csv"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, OutWithoutExtensionIsAMif)
{
    ToolRun run("-b -cp p.mif -cpsd4 -out res dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    run.start();
    EXPECT_TRUE(run.says("Opening GIS Layer: res"));
    for (const char* name : {"res.mif", "res.mid", "res_Cn.mif", "res_Cn.mid", "res.csv"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, OutputsLieBesideTheLayer)
{
    ToolRun run("-b -cp in\\p.mif -cpsd4 dem.asc");
    giveMarks(run, "", "");
    run.give("in/p.mif", mifHeader(kTwoColumns) + "Point 4.3 4.4\n");
    run.give("in/p.mid", "40,a\n");
    run.start();
    EXPECT_TRUE(run.says("Writing summary data to: in\\p.csv"));
    EXPECT_TRUE(run.has("in/p_Res.mif") && run.has("in/p_Cn.mif") && run.has("in/p.csv"));
}

// --- The config file -------------------------------------------------------------------------------------------------

TEST(CpCli, ConfigGivesASymbolByTheDifference)
{
    ToolRun run("-b -cp p.mif -cpsd4 -config c.csv dem.asc");
    // The nearest cell is 44 for each: differences 4, -1, 4.5, -1.5.
    giveMarks(run, "Point 4.3 4.4\nPoint 4.3 4.4\nPoint 4.3 4.4\nPoint 4.3 4.4\n", "40,a\n45,b\n39.5,c\n45.5,d\n");
    run.give("c.csv", "Up to,Shape,Colour,Size\n-1.0,35,255,12\n-1 36 65280 10\n4,34,0,8");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using search distance of 4.", "   Use -cpsd<distance> input argument to modify.",
                               "Reading calibration point config file: c.csv", "Maximum number of thrsholds: 100",
                               openedInput("c.csv"), openedUnit(1001), "Skipping first line: Up to,Shape,Colour,Size",
                               "Number of thresholds in CP file: 3", closedUnit(1001),
                               "   Finished reading config file.", "Getting Projection..."});
    EXPECT_CONSOLE_HOLDS(run,
                         {"Searching for Points...", "Warning above difference is above highest value in config file.",
                          "Closing GIS Layer 1 [p.mif]..."});
    EXPECT_EQ(mifObjects(run.read("p_Res.mif")), "Point         4.300000        4.400000\r\nSymbol (34,0,8)\r\n"
                                                 "Point         4.300000        4.400000\r\nSymbol (35,255,12)\r\n"
                                                 "Point         4.300000        4.400000\r\n"
                                                 "Point         4.300000        4.400000\r\nSymbol (35,255,12)\r\n");
}

// The last lines of a run over the config file `text`.
std::vector<std::string> configEnd(ToolRun& run, const std::string& text)
{
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    run.give("c.csv", text);
    run.start();
    EXPECT_FALSE(run.says("   Finished reading config file."));
    EXPECT_FALSE(run.reachedEnd());
    EXPECT_NO_OTHER_FILES(run);
    return run.consoleLines();
}

TEST(CpCli, AConfigLineThatCannotBeReadEndsTheRun)
{
    for (const std::string line : {"1,two,3,4", "1,2,3", "x,2,3,4", "1,2.5,3,4"}) {
        ToolRun run("-b -cp p.mif -config c.csv dem.asc");
        configEnd(run, "heading\n0,35,0,12\n" + line + "\n");
        EXPECT_CONSOLE_HOLDS(run, {"ERROR - Reading following line in classes file:", line});
    }
}

TEST(CpCli, ConfigTakes100ThresholdsAndNoMore)
{
    std::string text = "heading\n";
    for (int i = 0; i < 100; ++i) {
        text += std::to_string(i) + ",35,0,12\n";
    }
    ToolRun full("-b -cp p.mif -cpsd4 -config c.csv dem.asc");
    giveMarks(full, "Point 4.3 4.4\n", "40,a\n");
    full.give("c.csv", text);
    full.start();
    EXPECT_TRUE(full.says("Number of thresholds in CP file: 100"));
    EXPECT_TRUE(full.reachedEnd());

    ToolRun run("-b -cp p.mif -config c.csv dem.asc");
    configEnd(run, text + "not even a number\n");
    EXPECT_TRUE(run.says("ERROR - Number of lines in CP config file exceeds maximum."));
}

TEST(CpCli, ConfigNeedsTwoThresholds)
{
    for (const std::string text : {"heading\n1,35,0,12\n", "heading\n", ""}) {
        ToolRun run("-b -cp p.mif -config c.csv dem.asc");
        configEnd(run, text);
        EXPECT_CONSOLE_HOLDS(run, {closedUnit(1001), "ERROR - Less than two thresholds found."});
    }
}

TEST(CpCli, ConfigThresholdsMustNotFall)
{
    ToolRun run("-b -cp p.mif -config c.csv dem.asc");
    configEnd(run, "heading\n1,35,0,12\n0.5,35,0,12\n");
    EXPECT_TRUE(run.says("ERROR - Thresholds in CP config file not in increasing order."));
}

// The memory of a process opens like a file and refuses to be read at its start.
TEST(CpCli, AConfigFileThatTheSystemRefusesToReadEndsTheRun)
{
    ToolRun run("-b -cp p.mif -config c.csv dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    std::filesystem::create_symlink("/proc/self/mem", run.folder() / "c.csv");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Skipping first line: ", "ERROR - Reading following line in classes file:", ""));
}

// --- Shapefiles ------------------------------------------------------------------------------------------------------

// p.shp with these points, and p.dbf with these columns and records, each as wide as the columns together.
void giveShpMarks(ToolRun& run, const std::vector<std::string>& points, const std::vector<DbfColumn>& columns,
                  const std::vector<std::string>& records)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveShapefile(run, "p", 1, {.objects = points, .columns = columns, .values = records});
}

TEST(CpCli, AShapefileGivesShapefiles)
{
    ToolRun run("-b -cp p.shp -cpsd4 -config c.csv dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4), pointRecord(6, 5.25)}, {{"OBS", 'N', 6}, {"MARK", 'C', 7}},
                 {"  40.5left   ", "  57.0bridge "});
    run.give("c.csv", "heading\n0,1,2,3\n9,4,5,6\n"); // symbols have no place in a Shapefile
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"left\",   40.500,   44.000,    3.500,    0.500\r\n"
                                                         "\"bridge\",   57.000,   56.000,   -1.000,    0.250\r\n");
    EXPECT_THAT(tableOf(run.read("p_Res_P.dbf")),
                ElementsAre("OBS N 16", "MARK C 7", "Modelled N 16", "Difference N 16", "Distance N 16",
                            "           40.500left             44.000           3.500           0.500",
                            "           57.000bridge           56.000          -1.000           0.250"));
    EXPECT_THAT(tableOf(run.read("p_Cn_L.dbf")),
                ElementsAre("distance N 16", "cp_type C 20", "            0.500Closest             ",
                            "            0.250Closest             "));
    EXPECT_EQ(run.read("p_Res_P.shp").substr(100),
              big(1) + big(10) + pointRecord(4.3, 4.4) + big(2) + big(10) + pointRecord(6, 5.25));
    for (const char* name : {"p_Res_P.shx", "p_Res_P.prj", "p_Cn_L.shp", "p_Cn_L.shx", "p_Cn_L.prj"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, AShapefileOnABinaryGridGivesTheSame)
{
    ToolRun run("-b -cp p.shp -cpsd4 -cpmm2 dem.flt");
    giveShpMarks(run, {little(0), pointRecord(4.3, 4.4), pointRecord(6, 5.25)}, {{"OBS", 'N', 6}, {"MARK", 'C', 7}},
                 {"   1.0nothing", "  40.5left   ", "  57.0bridge "});
    run.give("dem.hdr", hdr(rowColumnCells()));
    run.give("dem.flt", fltCells(rowColumnCells()));
    run.start();
    ToolRun text("-b -cp p.shp -cpsd4 -cpmm2 dem.asc");
    giveShpMarks(text, {little(0), pointRecord(4.3, 4.4), pointRecord(6, 5.25)}, {{"OBS", 'N', 6}, {"MARK", 'C', 7}},
                 {"   1.0nothing", "  40.5left   ", "  57.0bridge "});
    text.start();
    EXPECT_THAT(run.read("p.csv"), testing::HasSubstr("\"left\",   40.500,   44.000,    3.500,"));
    for (const char* name : {"p.csv", "p_Res_P.shp", "p_Res_P.dbf", "p_Cn_L.shp", "p_Cn_L.dbf"}) {
        EXPECT_EQ(run.read(name), text.read(name)) << name;
    }
}

TEST(CpCli, ColumnsOfATableAreFloatsOrTexts)
{
    for (const auto& [type, kept] :
         {std::pair('N', "MARK N 16"), std::pair('F', "MARK N 16"), std::pair('C', "MARK C 8"),
          std::pair('D', "MARK C 8"), std::pair('L', "MARK C 8"), std::pair('I', "MARK C 8"),
          std::pair('n', "MARK C 8"), std::pair('f', "MARK C 8"), std::pair('c', "MARK C 8")}) {
        ToolRun run("-b -cp p.shp -cpsd4 dem.asc");
        giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'F', 4}, {"MARK", type, 8}}, {"  40      11"});
        run.start();
        const auto table = tableOf(run.read("p_Res_P.dbf"));
        ASSERT_GT(table.size(), 2U);
        EXPECT_EQ(table[0], "OBS N 16");
        EXPECT_EQ(table[1], kept);
    }
}

TEST(CpCli, ABlankLastNumberOfATableIs0)
{
    ToolRun run("-b -cp p.shp -cpsd4 dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 6}, {"MARK", 'C', 4}, {"MODEL", 'N', 6}},
                 {"  40.5a         "});
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"a\",   40.500,    0.000,  -40.500,   -1.000\r\n");
}

TEST(CpCli, ASmallNIsNoNumberColumnOfATable)
{
    for (const char type : {'n', 'f', 'I'}) {
        ToolRun run("-b -cp p.shp dem.asc");
        giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", type, 4}, {"MARK", 'C', 4}}, {"  40a   "});
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"ERROR - 1st GIS attribute is not a float type.", "   Attribute 1 type: Char"});
    }
}

TEST(CpCli, OnlyTextColumnsOfATableMayHoldBlanks)
{
    // The value of other columns ends at its first blank.
    for (const auto& [type, label] : {std::pair('C', "\"a b\""), std::pair('c', "\"a b\""), std::pair('D', "\"a\""),
                                      std::pair('n', "\"a\""), std::pair('L', "\"a\"")}) {
        ToolRun run("-b -cp p.shp -cpsd4 dem.asc");
        giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 4}, {"MARK", type, 4}}, {"  40a b "});
        run.start();
        EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + label + ",   40.000,   44.000,    4.000,    0.500\r\n");
    }
}

TEST(CpCli, BlankNumbersOfATableAreEmptyValues)
{
    ToolRun run("-b -cp p.shp -cpsd4 dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 6}, {"MARK", 'N', 4}}, {"          "});
    run.start();
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"\",    0.000,   44.000,   44.000,    0.500\r\n");
}

TEST(CpCli, ZeroBytesOfATableCountAsBlanks)
{
    ToolRun run("-b -cp p.shp -cpsd4 dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{std::string("OBS\0OLD", 7), 'N', 6}, {"MARK", 'C', 4}},
                 {std::string("40.5\0\0a\0b\0", 10)});
    run.start();
    EXPECT_TRUE(run.says("2 DBF Fields (Name [#/Type/Length]): OBS [1/N/6]  MARK [2/C/4]  "));
    EXPECT_EQ(run.read("p.csv"), std::string(kHeading) + "\"a b\",   40.500,   44.000,    3.500,    0.500\r\n");
}

TEST(CpCli, TheFirstColumnOfATableMustBeANumber)
{
    ToolRun run("-b -cp p.shp dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"MARK", 'C', 4}, {"OBS", 'N', 4}}, {"a     40"});
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - 1st GIS attribute is not a float type.", "   Attribute 1 type: Char"});
}

TEST(CpCli, ATableWithoutColumnsIsRefusedByItsReader)
{
    ToolRun run("-b -cp p.shp dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {}, {""});
    run.start();
    EXPECT_TRUE(run.says("ERROR 0319 - No attributes specified in .dbf file."));
    EXPECT_FALSE(run.reachedEnd());
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, TheMinimumOfATableStandsInOneFieldWithItsWord)
{
    ToolRun run("-b -cp p.shp -cpsd4 -cpmm5 dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 4}, {"MARK", 'C', 4}}, {"  40a   "});
    run.start();
    // Without a comma it is one value; the field without value keeps the one of the record before.
    EXPECT_THAT(tableOf(run.read("p_Cn_L.dbf")),
                ElementsAre("distance N 16", "cp_type C 20", "            0.500Closest             ",
                            "       2.419\"Min\"Closest             ", "            2.335Max                 "));
}

TEST(CpCli, TheResultTakesTheKindOfItsNameAndTheLinesThatOfTheLayer)
{
    ToolRun run("-b -cp p.mif -cpsd4 -out d.shp dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40,a\n");
    run.start();
    EXPECT_TRUE(run.says("Opening GIS Layer: d.shp"));
    EXPECT_TRUE(run.says("Opening GIS Layer: d_Cn.mif"));
    EXPECT_TRUE(run.has("d_P.shp") && run.has("d_Cn.mif") && run.has("d.csv"));
}

TEST(CpCli, QuotesInLabelsAreDoubledInLinesAndSingleInTables)
{
    const std::string row = R"("the ""left"", bank",   40.500,   44.000,    3.500,    0.500)"
                            "\r\n";
    ToolRun layer("-b -cp p.mif -cpsd4 -out d.shp dem.asc");
    giveMarks(layer, "Point 4.3 4.4\n",
              R"(40.5,"the ""left"", bank")"
              "\n");
    layer.start();
    EXPECT_EQ(layer.read("d.csv"), std::string(kHeading) + row);
    EXPECT_THAT(
        tableOf(layer.read("d_P.dbf")),
        testing::Contains(R"(           40.500the "left", bank              44.000           3.500           0.500)"));

    ToolRun table("-b -cp p.shp -cpsd4 -out d.mif dem.asc");
    giveShpMarks(table, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 6}, {"MARK", 'C', 18}}, {R"(  40.5the "left", bank  )"});
    table.start();
    EXPECT_EQ(table.read("d.csv"), std::string(kHeading) + row);
    EXPECT_EQ(table.read("d.mid"), R"(   40.500,"the ""left"", bank",   44.000,    3.500,    0.500)"
                                   "\r\n");
}

// --- Layers that are refused -----------------------------------------------------------------------------------------

TEST(CpCli, AMifWithoutAttributesIsRefusedByItsReader)
{
    ToolRun run("-b -cp p.mif dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "\n", {});
    run.start();
    EXPECT_TRUE(run.says("ERROR 0319 - No attributes specified in .mif file."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(CpCli, TheFirstAttributeMustBeAFloat)
{
    ToolRun run("-b -cp p.mif dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "a,1\n", {"Mark Char (20)", "Obs Float"});
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - 1st GIS attribute is not a float type.", "   Attribute 1 type: Char"});
    EXPECT_NO_OTHER_FILES(run);

    ToolRun whole("-b -cp p.mif dem.asc");
    giveMarks(whole, "Point 4.3 4.4\n", "1,a\n", {"Obs Integer", "Mark Char(20)"});
    whole.start();
    EXPECT_CONSOLE_HOLDS(whole, {"ERROR - 1st GIS attribute is not a float type.", "   Attribute 1 type: Integer"});
}

TEST(CpCli, TheSecondAttributeKeepsItsTypeAndWidth)
{
    for (const auto& [given, kept] :
         {std::pair("Mark Char (7)", "  Mark Char(7)\r\n"), std::pair("Mark Integer", "  Mark Integer\r\n"),
          std::pair("Mark Decimal(10,2)", "  Mark Decimal(10)\r\n"), std::pair("Mark Float", "  Mark Float\r\n"),
          std::pair("Mark Char(x)", "  Mark Char\r\n"), std::pair("\tMark\tChar\t(7)\t", "  Mark Char(7)\r\n"),
          std::pair("Mark\tFloat", "  Mark Float\r\n"), std::pair("Mark\tDecimal(\t10,2)", "  Mark Decimal(10)\r\n")}) {
        ToolRun run("-b -cp p.mif -cpsd4 dem.asc");
        giveMarks(run, "Point 4.3 4.4\n", "40,1\n", {"Obs Float", given});
        run.start();
        EXPECT_THAT(run.read("p_Res.mif"), HasSubstr(std::string("  Obs Float\r\n") + kept + "  Modelled Float\r\n"));
    }
}

TEST(CpCli, ASinglePointNeedsTwoAttributes)
{
    ToolRun run("-b -cp p.mif dem.asc");
    giveMarks(run, "Point 4.3 4.4\n", "40\n", {"Obs Float"});
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Searching for Points...",
                               "ERROR - Expecting at least 2 GIS attirbutes for input calibration point layer."});
}

// The header of the result is written before any point is read, and its second column has no type.
TEST(CpCli, AShapefileOfOneAttributeEndsWithTheHeaderOfTheResult)
{
    ToolRun run("-b -cp p.shp dem.asc");
    giveShpMarks(run, {pointRecord(4.3, 4.4)}, {{"OBS", 'N', 6}}, {"    40"});
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, {"Should not be here [Unrecognised DBF field] - please contact SUPPORT_CONTACT."});
    EXPECT_THAT(run.console(), Not(HasSubstr("Searching for Points...")));
    EXPECT_EQ(run.read("p_Res_P.dbf"), "");
}

TEST(CpCli, ADataLineThatCannotBeReadEndsTheRun)
{
    for (const std::string line : {"forty,a", "40", "40,\"a\"", ""}) {
        const bool three = line == "40,\"a\""; // its third value is missing
        ToolRun run("-b -cp p.mif dem.asc");
        giveMarks(run, "Point 4.3 4.4\n", line + "\n", three ? kThreeColumns : kTwoColumns);
        run.start();
        EXPECT_TRUE(run.says("ERROR - Extracting attribute data for GIS object.  Data: " + line)) << line;
        EXPECT_THAT(run.console(), Not(HasSubstr(kFinished)));
    }
}

TEST(CpCli, ACommaAtTheEndOfARecordHoldsAnEmptyValue)
{
    ToolRun labels("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(labels, "Point 4.3 4.4\n", "40,\n");
    labels.start();
    EXPECT_EQ(labels.read("p.csv"), std::string(kHeading) + "\"\",   40.000,   44.000,    4.000,    0.500\r\n");

    ToolRun models("-b -cp p.mif -cpsd4 dem.asc");
    giveMarks(models, "Point 4.3 4.4\n", "40,\"a\",\n", kThreeColumns);
    models.start();
    EXPECT_EQ(models.read("p.csv"), std::string(kHeading) + "\"a\",   40.000,    0.000,  -40.000,   -1.000\r\n");
}

TEST(CpCli, CoordinatesThatAreNowhereGiveNoValue)
{
    ToolRun run("-b -cp p.mif -cpsd4 -cpmm4 dem.asc");
    giveMarks(run, "Point 1e300 -1e300\nPoint NaN 5\n", "40,a\n41,b\n");
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"a\",   40.000,99999.000,99999.000,99999.000"));
    EXPECT_THAT(run.read("p.csv"), HasSubstr("\"b\",   41.000,99999.000,99999.000,99999.000"));
}

} // namespace
} // namespace gridforge::test
