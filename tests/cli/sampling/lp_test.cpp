#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// A valley along row 4: cell (row, column) from the south-west is 10 |row - 4| + column. A sample takes it where its
// place rounds to (column, row).
Cells valley()
{
    Cells cells;
    for (int row = 9; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= 9; ++column) {
            cells.back().push_back(10 * std::abs(row - 4) + column);
        }
    }
    return cells;
}

void giveLines(ToolRun& run, const std::string& objects, const std::string& records)
{
    run.give("dem.asc", ascGrid(valley()));
    run.give("l.mif", mifHeader({"Label Char(20)"}) + objects);
    run.give("l.mid", records);
}

const std::string kMain = "Pline 2\n2 5\n8 5\n    Pen (1,2,0)\n";
constexpr std::string_view kCsvHead = "\"Chainage\",\"Invert\",\"Left Bank\",\"Right Bank\"\r\n";

TEST(LpCli, WritesInvertAndBanksAlongALine)
{
    ToolRun run("-lp l.mif -lpmd3 -cpsd4 dem.asc");
    giveLines(run, kMain, "\"main\"\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"dem.asc"}),
                                {"Processing long profile extract.", "Using a spacing along the line of 3.",
                                 "   Use -lpmd<distance> input argument to modify.", "Using search distance of 4.",
                                 "   Use -cpsd<distance> input argument to modify.", "Long Profile input file: l.mif"},
                                projectionOf("l"),
                                openedMif("l"),
                                {"1 MIF Fields: Name [#/Type]: Label [1/Char(20)]  ", "Loading grid data..."},
                                headerOf("dem.asc", "9 rows by 9 columns", 1003),
                                {"Allocating 0Kb memory for storing input grid...", "Reading data..."},
                                ascCells(1003),
                                {"   Done.", "Searching for Lines and Polylines...", "Polyline 1 with 2 nodes...",
                                 "Inserting vertices...", "   Done.", "Allocate memory for processing of LP line: main",
                                 "   Done.", "Pre process line information...", "   Done.", "Extracting elevations...",
                                 openedOutput("l_main.csv", 1003), closedUnit(1003),
                                 "Deallocation of temporary memory.", "   Done."},
                                closedMif("l"),
                                normalEnd()}));
    // 6 is twice the spacing, so two vertices go in: x = 2, 4, 6, 8 on row 5. The invert search goes 3 cells to each side,
    // rows 2 to 8; the left bank is north, rows 5 to 9 (10 is off the grid), the right bank rows 5 down to 1.
    EXPECT_EQ(run.read("l_main.csv"), std::string(kCsvHead) + "        0.00,   2.000,  52.000,  32.000\r\n"
                                                              "        2.00,   4.000,  54.000,  34.000\r\n"
                                                              "        4.00,   6.000,  56.000,  36.000\r\n"
                                                              "        6.00,   8.000,  58.000,  38.000\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, DefaultsAre100And1000)
{
    ToolRun run("-b -lp l.mif dem.asc");
    giveLines(run, kMain, "m\n");
    run.start();
    EXPECT_TRUE(run.says("Using a spacing along the line of 100."));
    EXPECT_TRUE(run.says("Using search distance of 1000."));
    EXPECT_EQ(run.read("l_m.csv"), std::string(kCsvHead) + "        0.00,   2.000,  52.000,  32.000\r\n"
                                                           "        6.00,   8.000,  58.000,  38.000\r\n");
}

TEST(LpCli, CheckWritesTheSearchLinesAndTheCellsFound)
{
    ToolRun run("-b -lp l.mif -lpmd6 -cpsd4 -check dem.asc");
    giveLines(run, kMain, "\"main\"\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Opening GIS Layer: l_LP_check.mif", "GIS Layer assigned ID of 2"});
    EXPECT_CONSOLE_HOLDS(run, joined({closedMif("l"), closedMif("l_LP_check", 2, 1003)}));
    EXPECT_EQ(
        run.read("l_LP_check.mif"),
        "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\nCoordSys NonEarth Units \"m\"\r\n"
        "Columns 4\r\n  Elevation Float\r\n  Type Char(250)\r\n  Label Char(250)\r\n  Chainage Float\r\nData\r\n\r\n"
        "Line         2.000000        2.000000        2.000000        8.000000\r\n"
        "Line         2.000000        5.000000        2.000000       10.000000\r\n"
        "Line         2.000000        5.000000        2.000000        0.000000\r\n"
        "Line         8.000000        2.000000        8.000000        8.000000\r\n"
        "Line         8.000000        5.000000        8.000000       10.000000\r\n"
        "Line         8.000000        5.000000        8.000000        0.000000\r\n"
        "Point         1.500000        3.500000\r\n    Symbol (37,255,12)\r\n"
        "Point         7.500000        3.500000\r\n    Symbol (37,255,12)\r\n"
        "Point         2.000000        9.000000\r\n    Symbol (36,16711680,12)\r\n"
        "Point         2.000000        1.000000\r\n    Symbol (36,15774720,12)\r\n"
        "Point         8.000000        9.000000\r\n    Symbol (36,16711680,12)\r\n"
        "Point         8.000000        1.000000\r\n    Symbol (36,15774720,12)\r\n");
    EXPECT_EQ(run.read("l_LP_check.mid"), "99999.000,\"Invert\",\"main\",       0.000\r\n"
                                          "99999.000,\"Left Bank\",\"main\",       0.000\r\n"
                                          "99999.000,\"Right Bank\",\"main\",       0.000\r\n"
                                          "99999.000,\"Invert\",\"main\",       6.000\r\n"
                                          "99999.000,\"Left Bank\",\"main\",       6.000\r\n"
                                          "99999.000,\"Right Bank\",\"main\",       6.000\r\n"
                                          "    2.000,\"Invert\",\"main\",       0.000\r\n"
                                          "    8.000,\"Invert\",\"main\",       6.000\r\n"
                                          "   52.000,\"Left Bank\",\"main\",       0.000\r\n"
                                          "   32.000,\"Right Bank\",\"main\",       0.000\r\n"
                                          "   58.000,\"Left Bank\",\"main\",       6.000\r\n"
                                          "   38.000,\"Right Bank\",\"main\",       6.000\r\n");
    EXPECT_TRUE(run.has("l_main.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, QuotesInLabelsAreDoubledInTheCheckLayer)
{
    ToolRun run("-b -lp l.mif -lpmd6 -cpsd4 -check dem.asc");
    giveLines(run, kMain, "\"the \"\"main\"\"\"\n");
    run.start();
    EXPECT_TRUE(run.has("l_the \"main\".csv"));
    EXPECT_THAT(run.read("l_LP_check.mid"), StartsWith("99999.000,\"Invert\",\"the \"\"main\"\"\",       0.000\r\n"));
    EXPECT_THAT(run.read("l_LP_check.mid"),
                HasSubstr("   38.000,\"Right Bank\",\"the \"\"main\"\"\",       6.000\r\n"));
}

TEST(LpCli, ASearchOffTheGridFindsNothingAndLeavesItsPlacesAtZero)
{
    ToolRun run("-b -lp l.mif -lpmd100 -cpsd4 -check dem.asc");
    giveLines(run, "Pline 2\n20 5\n26 5\n", "far\n");
    run.start();
    EXPECT_EQ(run.read("l_far.csv"), std::string(kCsvHead) + "        0.00,********,********,********\r\n"
                                                             "        6.00,********,********,********\r\n");
    const std::string objects = mifObjects(run.read("l_LP_check.mif"));
    EXPECT_THAT(objects, HasSubstr("Point         0.000000        0.000000\r\n    Symbol (37,255,12)\r\n"));
    EXPECT_THAT(objects, HasSubstr("Point         0.000000        0.000000\r\n    Symbol (36,16711680,12)\r\n"));
    EXPECT_THAT(objects, HasSubstr("Point         0.000000        0.000000\r\n    Symbol (36,15774720,12)\r\n"));
    EXPECT_THAT(run.read("l_LP_check.mid"), HasSubstr("99999.000,\"Invert\",\"far\",       6.000\r\n"
                                                      "*********,\"Left Bank\",\"far\",       0.000\r\n"));
}

TEST(LpCli, NullCellsAreNotFound)
{
    ToolRun run("-b -lp l.mif -lpmd100 -cpsd4 dem.asc");
    giveLines(run, "Pline 2\n2 5\n4 5\n", "m\n");
    Cells cells = valley();
    for (const int row : {4, 9, 1}) { // lowest and highest rows
        cells[static_cast<std::size_t>(9 - row)][1] = kNull;
    }
    run.give("dem.asc", ascGrid(cells));
    run.start();
    // Rows 3 and 5 are next: 12 each; rows 8 and 2: 42 and 22.
    EXPECT_THAT(run.read("l_m.csv"), HasSubstr("        0.00,  12.000,  42.000,  22.000\r\n"));
}

TEST(LpCli, TheFirstOfEqualCellsCounts)
{
    ToolRun run("-b -lp l.mif -lpmd100 -cpsd4 -check dem.asc");
    giveLines(run, "Pline 2\n2 5\n4 5\n", "m\n");
    run.give("dem.asc", ascGrid(Cells(9, std::vector<double>(9, 7))));
    run.start();
    const std::string objects = mifObjects(run.read("l_LP_check.mif"));
    // The invert search starts 3 cells to the right, the left bank's on the line, the right bank's 5 cells away (row 0 is
    // off the grid).
    EXPECT_THAT(objects, HasSubstr("Point         1.500000        1.500000\r\n    Symbol (37,255,12)\r\n"));
    EXPECT_THAT(objects, HasSubstr("Point         2.000000        5.000000\r\n    Symbol (36,16711680,12)\r\n"));
    EXPECT_THAT(objects, HasSubstr("Point         2.000000        1.000000\r\n    Symbol (36,15774720,12)\r\n"));
}

TEST(LpCli, VerticesTooCloseAreReported)
{
    ToolRun run("-b -lp l.mif -cpsd4 dem.asc");
    giveLines(run, "Pline 4\n2 5\n4 5\n4 5.00005\n8 5\n", "\"m\"\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Pre process line information...",
                          "WARNING - Duplicate Vertices along line.  This may cause issues with determining angles.",
                          "  Profile: m Chainage: 2. Calculated Distance: 0.00005", "   Done."});
}

TEST(LpCli, ADuplicateOfTheLastVertexIsNotReported)
{
    ToolRun run("-b -lp l.mif -cpsd4 dem.asc");
    giveLines(run, "Pline 3\n2 5\n8 5\n8 5\n", "m\n");
    run.start();
    EXPECT_THAT(run.console(), Not(HasSubstr("WARNING")));
    EXPECT_EQ(run.read("l_m.csv"), std::string(kCsvHead) + "        0.00,   2.000,  52.000,  32.000\r\n"
                                                           "        6.00,   8.000,  58.000,  38.000\r\n"
                                                           "        6.00,   8.000,  58.000,  38.000\r\n");
}

TEST(LpCli, LinesArePolylinesOfTwoAndOtherObjectsArePassedOver)
{
    ToolRun run("-b -lp l.mif -cpsd4 dem.asc");
    giveLines(run, "Point 3 3\nLine 2 5 8 5\nRegion 1\n4\n1 1\n2 1\n2 2\n1 1\n" + kMain, "p\none\nr\ntwo\n");
    run.start();
    EXPECT_TRUE(run.says("Polyline 1 with 2 nodes..."));
    EXPECT_TRUE(run.says("Polyline 2 with 2 nodes..."));
    EXPECT_EQ(run.read("l_one.csv"), run.read("l_two.csv"));
    EXPECT_TRUE(run.says("Allocate memory for processing of LP line: two"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, SearchLinesOfALaterPolylineCarryTheLastSymbol)
{
    ToolRun run("-b -lp l.mif -cpsd4 -check dem.asc");
    giveLines(run, kMain + kMain, "one\ntwo\n");
    run.start();
    const std::string objects = mifObjects(run.read("l_LP_check.mif"));
    EXPECT_THAT(objects, StartsWith("Line         2.000000        2.000000        2.000000        8.000000\r\nLine "));
    EXPECT_THAT(objects, HasSubstr("Line         2.000000        2.000000        2.000000        8.000000\r\n"
                                   "    Symbol (36,15774720,12)\r\n"));
}

TEST(LpCli, ACombinedPolylineEndsTheRun)
{
    ToolRun run("-b -lp l.mif dem.asc");
    giveLines(run, "Pline Multiple 2\n2\n1 1\n2 2\n2\n3 3\n4 4\n", "m\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Searching for Lines and Polylines...",
                               "ERROR - Combined polylines not yet supported.  Please disaggregate."});
    EXPECT_FALSE(run.reachedEnd());
}

TEST(LpCli, ALineWithoutLabelEndsTheRun)
{
    ToolRun run("-b -lp l.mif dem.asc");
    giveLines(run, kMain, "\n");
    run.start();
    EXPECT_TRUE(run.says("ERROR - Extracting attribute data for GIS object.  Data: "));
    EXPECT_FALSE(run.reachedEnd());
}

TEST(LpCli, MoreThanTenMillionVerticesEndTheRun)
{
    // A spacing of nothing divides by it. 6 in steps of 6e-7 is ten million steps.
    for (const std::string spacing : {"0", "0.0000006"}) {
        ToolRun run(("-lp l.mif -lpmd" + spacing + " dem.asc").c_str());
        giveLines(run, kMain, "m\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Polyline 1 with 2 nodes...", "Inserting vertices...",
                                           "ERROR - Number of vertices in polyline exceeds maximum: 10000000"));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(LpCli, AVastSearchDistanceEndsSoon)
{
    ToolRun run("-b -lp l.mif -lpmd3 -cpsd1e30 dem.asc");
    giveLines(run, kMain, "m\n");
    run.start(std::chrono::seconds(10));
    EXPECT_THAT(run.read("l_m.csv"), HasSubstr("        0.00,   2.000,  52.000,  32.000\r\n"));
}

// --- Shapefiles ------------------------------------------------------------------------------------------------------

void giveShpLine(ToolRun& run, const std::string& record)
{
    run.give("dem.asc", ascGrid(valley()));
    giveShapefile(run, "l", 3, {.objects = {record}, .columns = {{"LABEL", 'C', 6}}, .values = {"main  "}});
}

TEST(LpCli, AShapefileGivesShapefiles)
{
    ToolRun run("-b -lp l.shp -lpmd3 -cpsd4 -check dem.asc");
    giveShpLine(run, partsRecord(3, {0}, {2, 5, 8, 5}));
    run.start();
    EXPECT_TRUE(run.says("Opening GIS Layer: l_LP_check.shp"));
    EXPECT_EQ(run.read("l_main.csv"), std::string(kCsvHead) + "        0.00,   2.000,  52.000,  32.000\r\n"
                                                              "        2.00,   4.000,  54.000,  34.000\r\n"
                                                              "        4.00,   6.000,  56.000,  36.000\r\n"
                                                              "        6.00,   8.000,  58.000,  38.000\r\n");
    // Four vertices: three points and three lines each.
    EXPECT_EQ(run.read("l_LP_check_P.shp").size(), 100U + 12 * 28);
    EXPECT_EQ(run.read("l_LP_check_L.shp").size(), 100U + 12 * (8 + 4 + 32 + 8 + 4 + 32));
    const std::string records = run.read("l_LP_check_P.dbf");
    EXPECT_THAT(records, HasSubstr("           2.000Invert "));
    EXPECT_THAT(records, HasSubstr("          58.000Left Bank "));
    for (const char* name :
         {"l_LP_check_P.shx", "l_LP_check_P.prj", "l_LP_check_L.shx", "l_LP_check_L.prj", "l_LP_check_L.dbf"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, QuotesInTheLabelOfAShapefileStayInItsCheckLayer)
{
    ToolRun run("-b -lp l.shp -lpmd6 -cpsd4 -check dem.asc");
    giveShpLine(run, partsRecord(3, {0}, {2, 5, 8, 5}));
    run.give("l.dbf", dbfBytes({{"LABEL", 'C', 6}}, {"\"a\",b "}));
    run.start();
    EXPECT_TRUE(run.has("l_\"a\",b.csv"));
    EXPECT_THAT(run.read("l_LP_check_P.dbf"),
                HasSubstr("Invert " + std::string(243, ' ') + "\"a\",b " + std::string(244, ' ')));
}

TEST(LpCli, SearchLinesOfNowhereHaveTheBitsOfTheQuietNotANumber)
{
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    ToolRun run("-b -lp l.shp -cpsd4 -check dem.asc");
    giveShpLine(run, partsRecord(3, {0}, {kEndless, 5, kEndless, 8})); // without a direction: infinity less infinity
    run.start();
    const std::string nowhere("\x00\x00\x00\x00\x00\x00\xf8\x7f", 8);
    const std::string objects = run.read("l_LP_check_L.shp").substr(100);
    constexpr std::size_t kObject = 8 + 4 + 32 + 12;
    ASSERT_EQ(objects.size(), 6 * (kObject + 32)); // three search lines of two vertices
    for (std::size_t at = kObject; at < objects.size(); at += kObject + 32) {
        EXPECT_EQ(objects.substr(at, 32), nowhere + nowhere + nowhere + nowhere);
    }
}

TEST(LpCli, APolylineOfPartsInAShapefileEndsTheRun)
{
    ToolRun run("-b -lp l.shp dem.asc");
    giveShpLine(run, partsRecord(3, {0, 2}, {1, 1, 2, 2, 3, 3, 4, 4}));
    run.start();
    EXPECT_TRUE(run.says("ERROR - Combined polylines not yet supported.  Please disaggregate."));
}

TEST(LpCli, OutOfAnotherKindThanTheLayerKeepsItsOwn)
{
    ToolRun run("-b -lp l.mif -cpsd4 -check -out x.shp dem.asc");
    giveLines(run, kMain, "m\n");
    run.start();
    EXPECT_TRUE(run.has("x_P.shp") && run.has("x_L.shp") && run.has("x_m.csv"));
}

// --- Names -----------------------------------------------------------------------------------------------------------

TEST(LpCli, OutNamesTheTables)
{
    ToolRun run("-b -lp l.mif -cpsd4 -out d\\x.mif dem.asc");
    giveLines(run, kMain, "\"a b\"\n");
    run.give("d/.keep", "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using specified output file: d\\x.mif", "Loading grid data..."});
    EXPECT_TRUE(run.has("d/x_a b.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, OutNamesTheCheckLayer)
{
    ToolRun run("-b -lp l.mif -cpsd4 -check -out x.mif dem.asc");
    giveLines(run, kMain, "m\n");
    run.start();
    EXPECT_THAT(run.console(), Not(HasSubstr("Using specified output file")));
    EXPECT_THAT(run.console(), Not(HasSubstr("Appending")));
    EXPECT_TRUE(run.has("x.mif") && run.has("x.mid") && run.has("x_m.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(LpCli, OutOfAnotherKindGetsTheExtensionOfTheLayer)
{
    ToolRun run("-b -lp l.mif -cpsd4 -check -out x.txt dem.asc");
    giveLines(run, kMain, "m\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"   Appending file extension - revised file: x.txt.mif", "Opening GIS Layer: x.txt.mif"});
    EXPECT_TRUE(run.has("x.txt.mif") && run.has("x.txt.mid") && run.has("x_m.csv"));
    EXPECT_NO_OTHER_FILES(run);
}

} // namespace
} // namespace gridforge::test
