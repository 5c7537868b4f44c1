#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <tuple>

namespace gridforge::test {
namespace {

using testing::HasSubstr;

const std::vector<std::string> kColumns = {"ID Char(50)", "A Char(2)",  "B Char(8)",  "C Char(20)",
                                           "D Char(20)",  "E Char(20)", "F Char(20)", "G Char(20)",
                                           "H Char(20)",  "I Float",    "J Float",    "Skew Float"};

constexpr std::string_view kFields =
    "12 MIF Fields: Name [#/Type]: ID [1/Char(50)]  A [2/Char(2)]  B [3/Char(8)]  C [4/Char(20)]  D "
    "[5/Char(20)]  E [6/Char(20)]  F [7/Char(20)]  G [8/Char(20)]  H [9/Char(20)]  I [10/Float]  J "
    "[11/Float]  Skew [12/Float]  ";

// The record of a node with this identifier and user minimum.
std::string node(const std::string& identifier, const std::string& skew = "0")
{
    return "\"" + identifier + "\",\"S\",\"Node\",\"a\",\"b\",\"c\",\"d\",\"e\",\"f\",1.5,2.5," + skew + "\n";
}

// The north-east corners of rows and columns 2 to 4 lie inside.
const std::string kSquare = "Region 1\n5\n1.5 1.5\n4.5 1.5\n4.5 4.5\n1.5 4.5\n1.5 1.5\n    Pen (1,2,0)\n";

// 9 by 9 cells of 50, but for the nine of the square, from the south-west row by row.
Cells terrain(const std::vector<double>& inside)
{
    Cells cells(9, std::vector<double>(9, 50));
    for (std::size_t i = 0; i < inside.size(); ++i) {
        cells[9 - 2 - i / 3][1 + i % 3] = inside[i];
    }
    return cells;
}
const std::vector<double> kGentle = {1.0, 1.0, 1.05, 1.08, 1.15, 1.19, 1.19, 1.25, 1.25};

void giveRegions(ToolRun& run, const std::string& objects, const std::string& records, const Cells& cells,
                 const GridOptions& options = {})
{
    run.give("dem.asc", ascGrid(cells, options));
    run.give("n.mif", mifHeader(kColumns) + objects);
    run.give("n.mid", records);
}

TEST(NaCli, WritesATableOfHeightsAndAreas)
{
    ToolRun run("-na n.mif dem.asc");
    giveRegions(run, kSquare, node("pond.csv"), terrain(kGentle));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run,
                   joined({startOf({"dem.asc"}),
                           {"Processing -na option... "},
                           projectionOf("n"),
                           openedMif("n"),
                           {std::string(kFields), "Loading grid data..."},
                           headerOf("dem.asc", "9 rows by 9 columns", 1003),
                           {"Allocating 0Kb memory for storing input grid...", "Reading data..."},
                           ascCells(1003),
                           {"   Done.", "Searching for region objects...", "Region 1 with 6 nodes...",
                            "Found 9 DEM values within region.", "Elevations range from 1. to 1.25",
                            "Writing nodal-area data to: pond.csv", openedOutput("pond.csv", 1003), closedUnit(1003)},
                           closedMif("n"),
                           normalEnd()}));
    // A millimetre above 1.0 lie two cells, at the tenth above four, then three more, then the two of 1.25.
    EXPECT_EQ(run.read("pond.csv"), "\"Height\",\"Area\"\r\n"
                                    "   1.001,               2.000\r\n"
                                    "   1.100,               4.000\r\n"
                                    "   1.200,               7.000\r\n"
                                    "   1.300,               9.000\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NaCli, AreasAreCellsTimesTheirSize)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, "Region 1\n5\n15 15\n45 15\n45 45\n15 45\n15 15\n", node("pond"), terrain(kGentle),
                {.cellsize = 10});
    run.start();
    EXPECT_EQ(run.read("pond"), "\"Height\",\"Area\"\r\n" // no extension is added
                                "   1.001,             200.000\r\n"
                                "   1.100,             400.000\r\n"
                                "   1.200,             700.000\r\n"
                                "   1.300,             900.000\r\n");
    // The 32-bit cell size 0.99993681 is 0.99993681907...; squared it is 0.99987364.
    ToolRun fine("-b -na n.mif dem.asc");
    giveRegions(fine, kSquare, node("pond"), terrain(kGentle), {.cellsize = 0.99993681});
    fine.start();
    EXPECT_THAT(fine.read("pond"), HasSubstr("   1.300,               8.999\r\n")); // 9 x 0.99987364 = 8.99886
}

TEST(NaCli, CornersNotCentresLieInside)
{
    ToolRun run("-b -na n.mif dem.asc");
    // Around (3, 3), the corner of row 3, column 3, which lies in the square as its middle; and a neighbour.
    giveRegions(run, "Region 1\n5\n2.9 2.9\n4.1 2.9\n4.1 3.1\n2.9 3.1\n2.9 2.9\n", node("pond"), terrain(kGentle));
    run.start();
    EXPECT_TRUE(run.says("Found 2 DEM values within region."));
    EXPECT_TRUE(run.says("Elevations range from 1.15 to 1.19"));
}

TEST(NaCli, NullCellsDoNotCount)
{
    ToolRun run("-b -na n.mif dem.asc");
    std::vector<double> inside = kGentle;
    inside[0] = kNull;
    giveRegions(run, kSquare, node("pond"), terrain(inside));
    run.start();
    EXPECT_TRUE(run.says("Found 8 DEM values within region."));
    EXPECT_THAT(run.read("pond"), HasSubstr("\r\n   1.001,               1.000\r\n   1.100,               3.000\r\n"));
}

TEST(NaCli, AUserMinimumDropsNoCell)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, kSquare + kSquare, node("high", "1.1") + node("low", "0.75"), terrain(kGentle));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Region 1 with 6 nodes...", "Using user defined minimum value (skew column)",
                               "Found 9 DEM values within region.", "Elevations range from 1.1 to 1.25"});
    // Four cells lie below 1.101. From 1.1 on: floor(11.02) and one more is 12 tenths.
    EXPECT_EQ(run.read("high"), "\"Height\",\"Area\"\r\n"
                                "   1.101,               4.000\r\n"
                                "   1.200,               7.000\r\n"
                                "   1.300,               9.000\r\n");
    // No cell lies below 0.751, but the first row has one always, and later rows keep it.
    EXPECT_EQ(run.read("low"), "\"Height\",\"Area\"\r\n"
                               "   0.751,               1.000\r\n"
                               "   0.800,               1.000\r\n"
                               "   0.900,               1.000\r\n"
                               "   1.000,               3.000\r\n"
                               "   1.100,               5.000\r\n"
                               "   1.200,               8.000\r\n"
                               "   1.300,              10.000\r\n");
}

TEST(NaCli, AUserMinimumNextToNothingIsNone)
{
    for (const auto& [skew, taken] : {std::pair("0.001", false), std::pair("-0.001", false), std::pair("0.0011", true),
                                      std::pair("-0.0011", true)}) {
        ToolRun run("-b -na n.mif dem.asc");
        giveRegions(run, kSquare, node("pond", skew), terrain(kGentle));
        run.start();
        EXPECT_EQ(run.says("Using user defined minimum value (skew column)"), taken) << skew;
    }
}

// The heights of a table in millimetres.
std::vector<int> heightsOf(const ToolRun& run, std::string_view name)
{
    std::istringstream text(run.read(name));
    std::vector<int> heights;
    std::string line;
    std::getline(text, line);
    while (std::getline(text, line)) {
        heights.push_back(static_cast<int>(std::lround(std::stod(line) * 1000)));
    }
    return heights;
}

TEST(NaCli, TenthsEndAtAWholeHeightPastTheTenthStep)
{
    ToolRun run("-b -na n.mif dem.asc");
    // From 1.9 the 11th tenth is 3.0, so quarters follow.
    giveRegions(run, kSquare, node("pond"), terrain({1.85, 2, 2, 2, 2, 2, 2, 2, 3.3}));
    run.start();
    EXPECT_THAT(heightsOf(run, "pond"), testing::ElementsAre(1851, 1900, 2000, 2100, 2200, 2300, 2400, 2500, 2600, 2700,
                                                             2800, 2900, 3000, 3250, 3500));
}

TEST(NaCli, TheFirstOfEqualHeightsIsTheLowest)
{
    for (const bool signFirst : {false, true}) {
        const double first = signFirst ? -0.0 : 0.0;
        ToolRun run("-b -na n.mif dem.asc");
        giveRegions(run, kSquare, node("pond"), terrain({1, first, -first, 1, first, -first, 1, 1, 1}));
        run.start();
        EXPECT_TRUE(run.says(signFirst ? "Elevations range from -0. to 1." : "Elevations range from 0. to 1."))
            << run.console();
    }
}

TEST(NaCli, ValuesBeyondTheLadderAreReportedAndNotCounted)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, kSquare, node("pond"), terrain({-0.05, 0, 0, 0, 0, 0, 2000, 937.5, 1}));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Elevations range from -0.05 to 2000.", "ERROR - Should not be here. DEM value above maximum.",
              "ERROR - Should not be here. DEM value above maximum.", "Writing nodal-area data to: pond"});
    const auto heights = heightsOf(run, "pond");
    ASSERT_EQ(heights.size(), 100U);
    EXPECT_EQ(heights.back(), 937000);
    EXPECT_THAT(run.read("pond"), HasSubstr(" 937.000,               7.000\r\n"));
}

// --- What is refused -------------------------------------------------------------------------------------------------

TEST(NaCli, AFlatRegionEndsTheRun)
{
    for (const double top : {1.0, 1.0009}) {
        ToolRun run("-b -na n.mif dem.asc");
        giveRegions(run, kSquare, node("pond"), terrain({1, 1, 1, 1, 1, 1, 1, 1, top}));
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {top > 1 ? "Elevations range from 1. to 1.001" : "Elevations range from 1. to 1.",
                                   "ERROR - Maximum value less or equal to minimum value."});
        EXPECT_FALSE(run.reachedEnd());
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(NaCli, ARegionWithoutCellsEndsTheRun)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, "Region 1\n5\n2.2 2.2\n2.8 2.2\n2.8 2.8\n2.2 2.8\n2.2 2.2\n", node("pond"), terrain(kGentle));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Found 0 DEM values within region.", "Elevations range from 99999. to -99999.",
                               "ERROR - Maximum value less or equal to minimum value."});
}

TEST(NaCli, AMinimumOfTheUserAboveAllCellsEndsTheRun)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, kSquare, node("pond", "7"), terrain(kGentle));
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Elevations range from 7. to 1.25", "ERROR - Maximum value less or equal to minimum value."});
}

TEST(NaCli, ARegionOverTheEdgeEndsTheRun)
{
    // Rows and columns 0 are the edge in the south-west, those of 9 + 1 the one in the north-east.
    for (const auto& [from, to, outside] : {std::tuple(0.9, 4.5, true), std::tuple(1.0, 4.5, false),
                                            std::tuple(1.5, 8.99, false), std::tuple(1.5, 9.0, true)}) {
        for (const bool upright : {false, true}) {
            const auto point = [upright = upright](double along, double across) {
                std::ostringstream text;
                text << (upright ? across : along) << " " << (upright ? along : across) << "\n";
                return text.str();
            };
            ToolRun run("-b -na n.mif dem.asc");
            giveRegions(run,
                        "Region 1\n5\n" + point(from, 1.5) + point(to, 1.5) + point(to, 4.5) + point(from, 4.5) +
                            point(from, 1.5),
                        node("pond"), terrain(kGentle));
            run.start();
            EXPECT_EQ(run.says("ERROR - Region is outside of DEM."), outside) << from << " " << to;
            EXPECT_EQ(run.reachedEnd(), !outside);
        }
    }
}

TEST(NaCli, CoordinatesThatAreNowhereAreOutsideOrDoNotBound)
{
    for (const char* far : {"1e300 2", "2 -1e300", "1e10 1e10"}) {
        ToolRun run("-b -na n.mif dem.asc");
        giveRegions(run, "Region 1\n4\n2 2\n4 2\n" + std::string(far) + "\n2 2\n", node("pond"), terrain(kGentle));
        run.start();
        EXPECT_TRUE(run.says("ERROR - Region is outside of DEM.")) << far;
    }
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, "Region 1\n6\n1.5 1.5\n4.5 1.5\nNaN NaN\n4.5 4.5\n1.5 4.5\n1.5 1.5\n", node("pond"),
                terrain(kGentle));
    run.start();
    EXPECT_TRUE(run.says("Region 1 with 7 nodes..."));
    EXPECT_EQ(run.status(), 0);
}

TEST(NaCli, ARegionOfSeveralRingsEndsTheRun)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, "Region 2\n4\n2 2\n4 2\n4 4\n2 2\n4\n5 5\n6 5\n6 6\n5 5\n", node("pond"), terrain(kGentle));
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Searching for region objects...",
                          "ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."});
    EXPECT_FALSE(run.reachedEnd());
}

TEST(NaCli, OnlyOneGridIsTaken)
{
    ToolRun run("-b -na n.mif dem.asc two.asc");
    giveRegions(run, kSquare, node("pond"), terrain(kGentle));
    run.give("two.asc", ascGrid(terrain(kGentle)));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing -na option... ", "ERROR - Only one input grid file supported."});
    EXPECT_FALSE(run.reachedEnd());
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NaCli, ARecordThatCannotBeReadEndsTheRun)
{
    for (const std::string record : {"", "pond", "pond,S,Node,a,b,c,d,e,f,1,2", "pond,S,Node,a,b,c,d,e,f,1,",
                                     "pond,S,Node,a,b,c,d,e,f,x,2,3", "pond,S,Node,a,b,c,d,e,f,1,2,three"}) {
        ToolRun run("-b -na n.mif dem.asc");
        giveRegions(run, kSquare, record + "\n", terrain(kGentle));
        run.start();
        EXPECT_TRUE(run.says("ERROR - Extracting attribute data for GIS object.  Data: " + record)) << record;
        EXPECT_FALSE(run.reachedEnd());
    }
}

TEST(NaCli, ACommaAtTheEndOfARecordIsNoUserMinimum)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, kSquare, "pond,S,Node,a,b,c,d,e,f,1,2,\n", terrain(kGentle));
    run.start();
    EXPECT_TRUE(run.says("Elevations range from 1. to 1.25"));
    EXPECT_FALSE(run.says("Using user defined minimum value (skew column)"));
    EXPECT_TRUE(run.has("pond"));
}

TEST(NaCli, TenMillionValuesAreTheMost)
{
    // Corners 1 to 3165 each way: 10,017,225 less those on the sides that do not count, at most two rows and columns.
    constexpr std::size_t kSide = 3170;
    ToolRun run("-b -na n.mif dem.flt");
    giveRegions(run, "Region 1\n5\n1.5 1.5\n3166.5 1.5\n3166.5 3166.5\n1.5 3166.5\n1.5 1.5\n", node("pond"),
                terrain(kGentle));
    run.give("dem.flt", std::string(kSide * kSide * 4, '\0'));
    run.give("dem.hdr", hdr(kSide, kSide));
    run.start();
    EXPECT_TRUE(run.says("ERROR - Number of DEM values with polygon exceeds 10000000"));
    EXPECT_FALSE(run.reachedEnd());
}

// --- Names, objects and Shapefiles -----------------------------------------------------------------------------------

TEST(NaCli, TheIdentifierIsTheNameOfTheTable)
{
    ToolRun run("-b -na in\\n.mif dem.asc");
    const std::string fifty(50, 'x');
    giveRegions(run, "", "", terrain(kGentle));
    run.give("in/n.mif", mifHeader(kColumns) + kSquare + kSquare);
    run.give("in/n.mid", node("o\\a b.txt") + node(fifty + "cut"));
    run.give("o/.keep", "");
    run.start();
    EXPECT_TRUE(run.says("Writing nodal-area data to: o\\a b.txt"));
    EXPECT_TRUE(run.has("o/a b.txt")); // from the current folder, not that of the layer
    EXPECT_TRUE(run.has(fifty));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NaCli, ARegionWithoutIdentifierHasNoFileToWriteTo)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, kSquare, node(""), terrain(kGentle));
    run.start();
    EXPECT_THAT(run.console(), HasSubstr("Empty filename specified.  Bailing out."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NaCli, OtherObjectsPassWithoutNotice)
{
    ToolRun run("-b -na n.mif dem.asc");
    giveRegions(run, "Point 3 3\nPline 2\n2 2\n4 4\nRect 1 1 4 4\n" + kSquare, "p\nl\nr\n" + node("pond"),
                terrain(kGentle));
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Searching for region objects...", "Region 1 with 6 nodes...", "Found 9 DEM values within region."});
    EXPECT_TRUE(run.has("pond"));
    EXPECT_NO_OTHER_FILES(run);
}

// n.shp with the square and a record of text, two unused numbers and the user's minimum.
void giveShpRegion(ToolRun& run, const std::string& record)
{
    run.give("dem.asc", ascGrid(terrain(kGentle)));
    std::vector<DbfColumn> columns = {{"ID", 'C', 8}};
    for (const char* const text : {"A", "B", "C", "D", "E", "F", "G", "H"}) {
        columns.push_back({text, 'C', 1});
    }
    columns.insert(columns.end(), {{"I", 'N', 3}, {"J", 'N', 3}, {"SKEW", 'N', 4}});
    giveShapefile(run, "n", 5,
                  {.objects = {partsRecord(5, {0}, {1.5, 1.5, 1.5, 4.5, 4.5, 4.5, 4.5, 1.5, 1.5, 1.5})},
                   .columns = columns,
                   .values = {record}});
}

TEST(NaCli, AShapefileGivesTheSameTable)
{
    ToolRun run("-b -na n.shp dem.asc");
    giveShpRegion(run, "pond.csvabcdefgh  1  2 1.1");
    run.start();
    EXPECT_TRUE(run.says("Using user defined minimum value (skew column)"));
    EXPECT_EQ(run.read("pond.csv"), "\"Height\",\"Area\"\r\n"
                                    "   1.101,               4.000\r\n"
                                    "   1.200,               7.000\r\n"
                                    "   1.300,               9.000\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(NaCli, QuotesInTheIdentifierOfAShapefileAreInTheNameOfItsTable)
{
    ToolRun run("-b -na n.shp dem.asc");
    giveShpRegion(run, "\"p\" x\"  abcdefgh  1  2 1.1");
    run.start();
    EXPECT_TRUE(run.says("Writing nodal-area data to: \"p\" x\""));
    EXPECT_TRUE(run.has("\"p\" x\""));
}

TEST(NaCli, ABlankMinimumOfAShapefileIsNone)
{
    ToolRun run("-b -na n.shp dem.asc");
    giveShpRegion(run, "pond.csvabcdefgh          ");
    run.start();
    EXPECT_TRUE(run.says("Elevations range from 1. to 1.25"));
    EXPECT_FALSE(run.says("Using user defined minimum value (skew column)"));
    EXPECT_TRUE(run.has("pond.csv"));
}

} // namespace
} // namespace gridforge::test
