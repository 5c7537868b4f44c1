#include "support/consoles.h"
#include "support/layer_files.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::vector<std::string> kColumns = {"Z Float", "dZ Float", "Width Float", "Options Char(20)"};
constexpr std::string_view kOutside = "WARNING - Vertex is outside of DEM, value of 99999 assigned.";
constexpr std::string_view kDuplicate =
    "WARNING - Duplicate Vertices along line.  This may cause issues with determining angles.";

void giveLines(ToolRun& run, const std::string& objects, const std::string& records,
               const Cells& cells = rowColumnCells())
{
    run.give("dem.asc", ascGrid(cells));
    run.give("b.mif", mifHeader(kColumns) + objects);
    run.give("b.mid", records);
}

// The 6 map units from (2, 4.4) to (8, 4.4).
const std::string kLevelLine = "Pline 2\n2 4.4\n8 4.4\n    Pen (1,2,0)\n";
// Through (4.5, 4.5), the centre of cell (5, 5), a centre on which the circles below stand.
const std::string kCentreLine = "Line 4.5 4.5 4.5 4.5\n";

TEST(BrklineCli, PutsVerticesAlongALineAndTakesTheCellOfEach)
{
    ToolRun run("-brkline b.mif dem.asc");
    giveLines(run, kLevelLine, "7,3,0,\"road\"\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run,
        joined({startOf({"dem.asc"}),
                {"Processing -brkline option... "},
                projectionOf("b"),
                openedMif("b"),
                {"4 MIF Fields: Name [#/Type]: Z [1/Float]  dZ [2/Float]  Width [3/Float]  Options [4/Char(20)]  "},
                createdMif("b_brkline", 2, 1003),
                {"Extracting elevations along breakline file: b.mif"},
                headerOf("dem.asc", "9 rows by 9 columns", 1005),
                {"Allocating 0Kb memory for storing input grid..."},
                ascCells(1005),
                {"Searching for Lines and Polylines...", "Polyline 1 with 2 nodes...", "Inserting vertices along line.",
                 "   Done.", "Extracting elevations ..."},
                closedMif("b"),
                closedMif("b_brkline", 2, 1003),
                normalEnd()}));
    // 6 is twice the spacing, so two vertices go in. All are 0.4 above row 4.
    EXPECT_EQ(run.read("b_brkline.mif"),
              "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\nCoordSys NonEarth Units \"m\"\r\n"
              "Columns 4\r\n  Z Float\r\n  dZ Float\r\n  Width Float\r\n  Options Char(20)\r\nData\r\n\r\n"
              "Point         2.000000        4.400000\r\n"
              "Point         4.000000        4.400000\r\n"
              "Point         6.000000        4.400000\r\n"
              "Point         8.000000        4.400000\r\n"
              "Pline 4\r\n"
              "        2.000000        4.400000\r\n"
              "        4.000000        4.400000\r\n"
              "        6.000000        4.400000\r\n"
              "        8.000000        4.400000\r\n");
    EXPECT_EQ(run.read("b_brkline.mid"), "          42.000,   0.000,   0.000,\"road\"\r\n"
                                         "          44.000,   0.000,   0.000,\"road\"\r\n"
                                         "          46.000,   0.000,   0.000,\"road\"\r\n"
                                         "          48.000,   0.000,   0.000,\"road\"\r\n"
                                         "       99999.000,   0.000,   0.000,\"road\"\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(BrklineCli, AVertexOffTheGridIs99999AndOneOnANullCellHasNoPoint)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    Cells cells = rowColumnCells();
    cells[9 - 4][6 - 1] = kNull;
    giveLines(run, "Pline 3\n4 4.4\n6 4.4\n12 4.4\n", "7,100,0,road\n", cells);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Extracting elevations ...", std::string(kOutside), "Closing GIS Layer 1 [b.mif]..."});
    EXPECT_EQ(mifObjects(run.read("b_brkline.mif")), "Point         4.000000        4.400000\r\n"
                                                     "Point        12.000000        4.400000\r\n"
                                                     "Pline 3\r\n"
                                                     "        4.000000        4.400000\r\n"
                                                     "        6.000000        4.400000\r\n"
                                                     "       12.000000        4.400000\r\n");
    EXPECT_EQ(run.read("b_brkline.mid"), "          44.000,   0.000,   0.000,\"road\"\r\n"
                                         "       99999.000,   0.000,   0.000,\"road\"\r\n"
                                         "       99999.000,   0.000,   0.000,\"road\"\r\n");
}

// The records of a run over one line, without its own at the end.
std::vector<std::string> points(ToolRun& run, const std::string& objects, const std::string& records,
                                const Cells& cells = rowColumnCells())
{
    giveLines(run, objects, records, cells);
    run.start();
    EXPECT_TRUE(run.reachedEnd());
    std::vector<std::string> lines;
    const std::string text = run.read("b_brkline.mid");
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find("\r\n", at);
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    if (!lines.empty()) {
        lines.pop_back();
    }
    return lines;
}

std::string checkObjects(const ToolRun& run)
{
    return mifObjects(run.read("b_check.mif"));
}

// --- Four cells ------------------------------------------------------------------------------------------------------

TEST(BrklineCli, ANarrowWidthTakesFourCells)
{
    // Around (4.5, 4.5) rows and columns 4 and 5: 44, 45, 54 and 55. "Perp" has no effect here.
    for (const auto& [options, value] :
         {std::pair("", "49.500"), std::pair("Max", "55.000"), std::pair("Min", "44.000"), std::pair("Perp", "49.500"),
          std::pair("perp MIN", "44.000"), std::pair("min max", "55.000"), std::pair("XmaxX", "55.000")}) {
        ToolRun run("-b -brkline b.mif -check dem.asc");
        EXPECT_THAT(points(run, kCentreLine, "0,1,1.4,\"" + std::string(options) + "\"\n"),
                    testing::Each("          " + std::string(value) + ",   0.000,   0.000,\"" + options + "\""));
        EXPECT_EQ(run.read("b_check.mid"), ""); // only wider ones are drawn
        EXPECT_THAT(run.read("b_brkline.mid"),
                    HasSubstr("       99999.000,   0.000,   1.400,\"" + std::string(options) + "\"\r\n"));
    }
}

TEST(BrklineCli, FourCellsLeaveNullsOutAndNeedToLieInTheGrid)
{
    Cells cells = rowColumnCells();
    cells[9 - 5][5 - 1] = kNull;
    ToolRun some("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(some, kCentreLine, "0,1,1,\"\"\n", cells),
                testing::Each("          47.667,   0.000,   0.000,\"\"")); // (44 + 45 + 54) / 3
    for (const int row : {4, 5}) {
        for (const int column : {4, 5}) {
            cells[static_cast<std::size_t>(9 - row)][static_cast<std::size_t>(column - 1)] = kNull;
        }
    }
    ToolRun none("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(none, kCentreLine, "0,1,1,\"\"\n", cells), ElementsAre());
    EXPECT_THAT(none.console(), Not(HasSubstr("WARNING")));
    ToolRun outside("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(outside, "Line 0.9 4.5 8.5 9\n", "0,100,1,\"\"\n"),
                ElementsAre("       99999.000,   0.000,   0.000,\"\"", "       99999.000,   0.000,   0.000,\"\""));
    EXPECT_CONSOLE_HOLDS(outside, {std::string(kOutside), std::string(kOutside)});
}

TEST(BrklineCli, FourCellsAreAveragedInSinglePrecision)
{
    Cells cells = rowColumnCells();
    cells[9 - 4][4 - 1] = 16777216; // 2^24, to which single precision adds no 1
    cells[9 - 4][5 - 1] = cells[9 - 5][4 - 1] = cells[9 - 5][5 - 1] = 1;
    ToolRun run("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(run, kCentreLine, "0,1,1,\"\"\n", cells),
                testing::Each("     4194304.000,   0.000,   0.000,\"\""));
}

// --- Where one kind of search ends and the next begins ---------------------------------------------------------------

TEST(BrklineCli, AWidthOfATenThousandthTakesFourCells)
{
    ToolRun four("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(four, kCentreLine, "0,1,0.0001,Max\n"), testing::Each(HasSubstr("  55.000,")));
    ToolRun one("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(one, kCentreLine, "0,1,0.00009,Max\n"), testing::Each(HasSubstr("  44.000,")));
    ToolRun negative("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(negative, kCentreLine, "0,1,-5,Max\n"), testing::Each(HasSubstr("  44.000,")));
}

TEST(BrklineCli, AWidthOfOneAndAHalfCellsSearchesACircle)
{
    const auto circles = [](const std::string& width, double cellsize) {
        ToolRun run("-b -brkline b.mif -check dem.asc");
        giveLines(run, "Line 4 4 4 4\n", "0,1," + width + ",\"\"\n");
        run.give("dem.asc", ascGrid(rowColumnCells(), {.cellsize = cellsize}));
        run.start();
        return !run.read("b_check.mid").empty();
    };
    EXPECT_TRUE(circles("1.5", 1));
    EXPECT_FALSE(circles("1.4999", 1));
    // In single precision one and a half cells of 0.7 are 1.05 to the bit, in double a little more.
    EXPECT_TRUE(circles("1.05", 0.7));
    EXPECT_FALSE(circles("1.0499", 0.7));
}

// --- Across the line -------------------------------------------------------------------------------------------------

TEST(BrklineCli, PerpSearchesAcrossTheLine)
{
    ToolRun run("-b -brkline b.mif -check dem.asc");
    giveLines(run, "Pline 2\n2 5\n8 5\n", "0,3,4,\"Max Perp\"\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Opening GIS Layer: b_check.mif", "GIS Layer assigned ID of 3"});
    // 3 cells to each side: rows 2 to 8, the highest in row 8, whose centres lie at 7.5.
    EXPECT_EQ(run.read("b_brkline.mid"), "          82.000,   0.000,   0.000,\"Max Perp\"\r\n"
                                         "          84.000,   0.000,   0.000,\"Max Perp\"\r\n"
                                         "          86.000,   0.000,   0.000,\"Max Perp\"\r\n"
                                         "          88.000,   0.000,   0.000,\"Max Perp\"\r\n"
                                         "       99999.000,   0.000,   4.000,\"Max Perp\"\r\n");
    EXPECT_EQ(run.read("b_check.mif"),
              "Version 300\r\nCharset \"WindowsLatin1\"\r\nDelimiter \",\"\r\nCoordSys NonEarth Units \"m\"\r\n"
              "Columns 3\r\n  Z Float\r\n  Count Integer\r\n  Options Char(20)\r\nData\r\n\r\n"
              "Line         2.000000        2.000000        2.000000        8.000000\r\n"
              "Point         1.500000        7.500000\r\n"
              "Line         4.000000        2.000000        4.000000        8.000000\r\n"
              "Point         3.500000        7.500000\r\n"
              "Line         6.000000        2.000000        6.000000        8.000000\r\n"
              "Point         5.500000        7.500000\r\n"
              "Line         8.000000        2.000000        8.000000        8.000000\r\n"
              "Point         7.500000        7.500000\r\n");
    EXPECT_EQ(run.read("b_check.mid"), "99999.000,     -99\",\"Max Perp\"\r\n   82.000,       1\",\"Max Perp\"\r\n"
                                       "99999.000,     -99\",\"Max Perp\"\r\n   84.000,       1\",\"Max Perp\"\r\n"
                                       "99999.000,     -99\",\"Max Perp\"\r\n   86.000,       1\",\"Max Perp\"\r\n"
                                       "99999.000,     -99\",\"Max Perp\"\r\n   88.000,       1\",\"Max Perp\"\r\n");
    run.expectFile("b_brkline.mif");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(BrklineCli, PerpTakesTheLowestOrTheMeanToo)
{
    ToolRun lowest("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(points(lowest, "Pline 2\n4 5\n6 5\n", "0,3,4,\"perp min\"\n"),
                ElementsAre("          24.000,   0.000,   0.000,\"perp min\"",
                            "          26.000,   0.000,   0.000,\"perp min\""));
    EXPECT_THAT(checkObjects(lowest), HasSubstr("Point         3.500000        1.500000\r\n"));
    ToolRun mean("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(
        points(mean, "Pline 2\n4 5\n6 5\n", "0,3,4,PERP\n"),
        ElementsAre("          54.000,   0.000,   0.000,\"PERP\"", "          56.000,   0.000,   0.000,\"PERP\""));
    EXPECT_THAT(checkObjects(mean), Not(HasSubstr("Point")));
}

TEST(BrklineCli, PerpFollowsTheChordBetweenTheNeighboursOfAVertex)
{
    ToolRun run("-b -brkline b.mif -check dem.asc");
    giveLines(run, "Pline 3\n2 2\n5 5\n8 2\n", "0,100,1.5,Perp\n");
    run.start();
    // Width 1.5: trunc(1.75) is 1 cell to each side. The ends look along their segments, at 45 and -45 degrees, the
    // middle along the chord, which is level.
    EXPECT_EQ(checkObjects(run), "Line         2.707107        1.292893        1.292893        2.707107\r\n"
                                 "Line         5.000000        4.000000        5.000000        6.000000\r\n"
                                 "Line         7.292893        1.292893        8.707107        2.707107\r\n");
}

TEST(BrklineCli, PerpWithoutAnyCellIs99999)
{
    Cells cells(9, std::vector<double>(9, kNull));
    ToolRun run("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(points(run, "Pline 2\n4 5\n40 5\n", "0,100,4,\"Max Perp\"\n", cells),
                testing::Each("       99999.000,   0.000,   0.000,\"Max Perp\""));
    EXPECT_CONSOLE_HOLDS(run, {"Extracting elevations ...", std::string(kOutside), std::string(kOutside)});
    EXPECT_THAT(checkObjects(run), Not(HasSubstr("Point")));
}

TEST(BrklineCli, VerticesTooCloseAreReportedAndWaitedFor)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    run.type("");
    giveLines(run, "Pline 4\n2 5\n4 5\n4 5.00005\n8 5\n", "0,100,4,Perp\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"Extracting elevations ...", std::string(kDuplicate), kEnter, "Closing GIS Layer 1 [b.mif]..."});

    ToolRun ends("-b -brkline b.mif dem.asc"); // the first and the last vertex have no say
    giveLines(ends, "Pline 3\n2 5\n8 5\n8 5\n", "0,100,4,Perp\n");
    ends.start();
    EXPECT_THAT(ends.console(), Not(HasSubstr("WARNING")));

    ToolRun circle("-b -brkline b.mif dem.asc"); // nor has the direction of the line in other searches
    giveLines(circle, "Pline 4\n4 5\n5 5\n5 5.00005\n6 5\n", "0,100,4,Max\n");
    circle.start();
    EXPECT_THAT(circle.console(), Not(HasSubstr("WARNING")));
}

// --- In a circle -----------------------------------------------------------------------------------------------------

// The polygon of 12 sides around (4.5, 4.5) with a diameter of 3.8: 1.9 cos 30 = 1.645448, 1.9 sin 30 = 0.95.
constexpr std::string_view kRing = "Region 1\r\n 13\r\n"
                                   "        6.400000        4.500000\r\n"
                                   "        6.145448        5.450000\r\n"
                                   "        5.450000        6.145448\r\n"
                                   "        4.500000        6.400000\r\n"
                                   "        3.550000        6.145448\r\n"
                                   "        2.854552        5.450000\r\n"
                                   "        2.600000        4.500000\r\n"
                                   "        2.854552        3.550000\r\n"
                                   "        3.550000        2.854552\r\n"
                                   "        4.500000        2.600000\r\n"
                                   "        5.450000        2.854552\r\n"
                                   "        6.145448        3.550000\r\n"
                                   "        6.400000        4.500000\r\n";

TEST(BrklineCli, AWidthAloneSearchesACircle)
{
    // The cell's centre is the middle of nine centres inside, rows and columns 4 to 6; the next ones lie 2 away.
    ToolRun mean("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(points(mean, kCentreLine, "0,100,3.8,all\n"),
                testing::Each("          55.000,   0.000,   0.000,\"all\""));
    EXPECT_EQ(checkObjects(mean), std::string(kRing) + std::string(kRing)); // for each of the two vertices
    EXPECT_EQ(mean.read("b_check.mid"), "          55.000,       9,\"all\"\r\n          55.000,       9,\"all\"\r\n");

    ToolRun highest("-b -brkline b.mif -check dem.asc");
    giveLines(highest, "Pline 2\n4.5 4.5\n44.5 4.5\n", "0,100,3.8,Max\n");
    highest.start();
    EXPECT_THAT(checkObjects(highest),
                testing::StartsWith("Point         5.500000        5.500000\r\n" + std::string(kRing)));
    EXPECT_EQ(highest.read("b_check.mid"), "   66.000,       1\",\"Max\"\r\n          66.000,       9,\"Max\"\r\n"
                                           "       99999.000,       0,\"Max\"\r\n");
    EXPECT_EQ(highest.read("b_brkline.mid"), "          66.000,   0.000,   0.000,\"Max\"\r\n"
                                             "       99999.000,   0.000,   0.000,\"Max\"\r\n"
                                             "       99999.000,   0.000,   3.800,\"Max\"\r\n");
    EXPECT_CONSOLE_HOLDS(highest,
                         {"Extracting elevations ...", std::string(kOutside), "Closing GIS Layer 1 [b.mif]..."});

    ToolRun lowest("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(points(lowest, kCentreLine, "0,100,3.8,Min\n"), testing::Each(HasSubstr("  44.000,")));
    EXPECT_THAT(checkObjects(lowest), testing::StartsWith("Point         3.500000        3.500000\r\nRegion 1\r\n"));
}

TEST(BrklineCli, ACircleOverTheEdgeIsOutsideThoughItsPointIsNot)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(run, "Line 2.8 4.5 7.2 4.5\n", "0,100,3.8,\"\"\n"), // columns 0.9 and 9.1
                testing::Each("       99999.000,   0.000,   0.000,\"\""));
    EXPECT_CONSOLE_HOLDS(run, {std::string(kOutside), std::string(kOutside)});
}

TEST(BrklineCli, ACircleOfNullsHasNoPoint)
{
    ToolRun run("-b -brkline b.mif -check dem.asc");
    EXPECT_THAT(points(run, kCentreLine, "0,100,3.8,Max\n", Cells(9, std::vector<double>(9, kNull))), ElementsAre());
    EXPECT_THAT(run.console(), Not(HasSubstr("WARNING")));
    EXPECT_EQ(checkObjects(run), std::string(kRing) + std::string(kRing));
    EXPECT_EQ(run.read("b_check.mid"), "       -9999.000,       0,\"Max\"\r\n       -9999.000,       0,\"Max\"\r\n");
}

// --- Records and objects ---------------------------------------------------------------------------------------------

TEST(BrklineCli, OptionsHoldTwentyCharacters)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(run, kCentreLine, "0,1,0,\"abcdefghijklmnopqrstuMAX\"\n"),
                testing::Each("          44.000,   0.000,   0.000,\"abcdefghijklmnopqrst\""));
}

TEST(BrklineCli, QuotesInOptionsAreDoubledInEveryRecord)
{
    ToolRun circle("-b -brkline b.mif -check dem.asc");
    giveLines(circle, kCentreLine, "0,100,3.8,\"Max \"\"A\"\"\"\n");
    circle.start();
    EXPECT_THAT(circle.read("b_brkline.mid"),
                testing::StartsWith("          66.000,   0.000,   0.000,\"Max \"\"A\"\"\"\r\n"));
    EXPECT_THAT(circle.read("b_brkline.mid"),
                testing::EndsWith("       99999.000,   0.000,   3.800,\"Max \"\"A\"\"\"\r\n"));
    EXPECT_THAT(circle.read("b_check.mid"), testing::StartsWith("   66.000,       1\",\"Max \"\"A\"\"\"\r\n"
                                                                "          66.000,       9,\"Max \"\"A\"\"\"\r\n"));

    ToolRun across("-b -brkline b.mif -check dem.asc");
    giveLines(across, "Pline 2\n2 5\n8 5\n", "0,3,4,\"Max Perp\"\"\"\n");
    across.start();
    EXPECT_THAT(
        across.read("b_check.mid"),
        testing::StartsWith("99999.000,     -99\",\"Max Perp\"\"\"\r\n   82.000,       1\",\"Max Perp\"\"\"\r\n"));
}

TEST(BrklineCli, EmptyValuesAreNothing)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(run, "Line 4.5 4.5 4.5 4.5\n", ",,,\"\"\n"),
                testing::Each("          44.000,   0.000,   0.000,\"\""));
}

TEST(BrklineCli, ACommaAtTheEndOfARecordLeavesTheOptionsBlank)
{
    for (const char* record : {",,,\n", "0,1,0,\n"}) {
        ToolRun run("-b -brkline b.mif dem.asc");
        EXPECT_THAT(points(run, "Line 4.5 4.5 4.5 4.5\n", record),
                    testing::Each("          44.000,   0.000,   0.000,\"\""));
    }
}

TEST(BrklineCli, ARecordThatCannotBeReadEndsTheRun)
{
    for (const std::string record : {"x,1,1,Max", "1,x,1,Max", "1,1,x,Max", "1,1", "1,1,", "1,1,1"}) {
        ToolRun run("-b -brkline b.mif dem.asc");
        giveLines(run, kLevelLine, record + "\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"Searching for Lines and Polylines...",
                                   "ERROR - Extracting attribute data for GIS object.  Data: " + record});
        EXPECT_FALSE(run.reachedEnd());
    }
}

TEST(BrklineCli, LinesArePolylinesAndOtherObjectsArePassedOver)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    giveLines(run, "Point 3 3\nLine 2 4.4 4 4.4\nRegion 1\n4\n1 1\n2 1\n2 2\n1 1\n" + kLevelLine,
              "p\n7,100,0,one\nr\n7,100,0,two\n");
    run.start();
    EXPECT_TRUE(run.says("Polyline 1 with 2 nodes..."));
    EXPECT_TRUE(run.says("Polyline 2 with 2 nodes..."));
    EXPECT_EQ(mifObjects(run.read("b_brkline.mif")),
              "Point         2.000000        4.400000\r\nPoint         4.000000        4.400000\r\n"
              "Pline 2\r\n        2.000000        4.400000\r\n        4.000000        4.400000\r\n"
              "Point         2.000000        4.400000\r\nPoint         8.000000        4.400000\r\n"
              "Pline 2\r\n        2.000000        4.400000\r\n        8.000000        4.400000\r\n");
}

TEST(BrklineCli, ACombinedPolylineEndsTheRun)
{
    ToolRun run("-b -brkline b.mif dem.asc");
    giveLines(run, "Pline Multiple 2\n2\n1 1\n2 2\n2\n3 3\n4 4\n", "7,1,0,a\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Searching for Lines and Polylines...",
                               "ERROR - Combined polylines not yet supported.  Please disaggregate."});
    EXPECT_FALSE(run.reachedEnd());
}

TEST(BrklineCli, OnlyOneGridIsTaken)
{
    ToolRun run("-b -brkline b.mif dem.asc two.asc");
    giveLines(run, kLevelLine, "7,3,0,\"road\"\n");
    run.give("two.asc", ascGrid(rowColumnCells()));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Processing -brkline option... ", "ERROR - Only one input grid file supported."});
    EXPECT_FALSE(run.reachedEnd());
    EXPECT_NO_OTHER_FILES(run);
}

TEST(BrklineCli, ALineOfMoreVerticesThanAnObjectHoldsEndsTheRun)
{
    ToolRun none("-b -brkline b.mif dem.asc"); // a spacing of nothing divides by it
    giveLines(none, kLevelLine, "7,0,0,road\n");
    none.start();
    EXPECT_CONSOLE_HOLDS(
        none, {"Inserting vertices along line.", "ERROR - Number of vertices in polyline exceeds maximum: 100000"});

    // 6.25 in steps of 2^-14 is 102400 steps, one vertex fewer in between, and both ends.
    ToolRun many("-b -brkline b.mif dem.asc");
    giveLines(many, "Line 2 4 8.25 4\n", "7,0.00006103515625,0,road\n");
    many.start();
    EXPECT_TRUE(many.says("ERROR - Number of vertices in polyline exceeds maximum: 100000"));

    ToolRun negative("-b -brkline b.mif dem.asc");
    EXPECT_THAT(points(negative, kLevelLine, "7,-3,0,road\n"), testing::SizeIs(2));
}

// --- Names and Shapefiles --------------------------------------------------------------------------------------------

TEST(BrklineCli, OutputsLieBesideTheLayerAndOutIsOfNoUse)
{
    ToolRun run("-b -brkline in\\r_L.mif -check -out x.mif dem.asc");
    giveLines(run, "", "");
    run.give("in/r_L.mif", mifHeader(kColumns) + kLevelLine); // only a .shp loses its tail
    run.give("in/r_L.mid", "7,3,0,road\n");
    run.start();
    for (const char* name : {"in/r_L_brkline.mif", "in/r_L_brkline.mid", "in/r_L_check.mif", "in/r_L_check.mid"}) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

// <name>.shp with one line and its table.
void giveShpLine(ToolRun& run, const std::string& name, const std::vector<double>& coordinates,
                 const std::string& record)
{
    run.give("dem.asc", ascGrid(rowColumnCells()));
    giveShapefile(run, name, 3,
                  {.objects = {partsRecord(3, {0}, coordinates)},
                   .columns = {{"Z", 'N', 4}, {"dZ", 'N', 4}, {"Width", 'N', 4}, {"Options", 'C', 8}},
                   .values = {record}});
}

TEST(BrklineCli, AShapefileGivesShapefiles)
{
    ToolRun run("-b -brkline r_L.shp -check dem.asc");
    giveShpLine(run, "r_L", {4.5, 4.5, 5.5, 4.5}, "   7 100 3.8Max     ");
    run.start();
    EXPECT_TRUE(run.says("Opening GIS Layer: r_brkline.shp"));
    EXPECT_TRUE(run.says("Opening GIS Layer: r_check.shp"));
    EXPECT_THAT(tableOf(run.read("r_brkline_P.dbf")),
                ElementsAre("Z N 16", "dZ N 16", "Width N 16", "Options C 20",
                            "           66.000           0.000           0.000Max                 ",
                            "           67.000           0.000           0.000Max                 "));
    EXPECT_THAT(tableOf(run.read("r_brkline_L.dbf")),
                ElementsAre("Z N 16", "dZ N 16", "Width N 16", "Options C 20",
                            "        99999.000           0.000           3.800Max                 "));
    EXPECT_EQ(run.read("r_brkline_P.shp").substr(100),
              big(1) + big(10) + pointRecord(4.5, 4.5) + big(2) + big(10) + pointRecord(5.5, 4.5));
    // The quotation mark in front of the comma goes into the number's field.
    EXPECT_THAT(tableOf(run.read("r_check_P.dbf")),
                ElementsAre("Z N 16", "Count N 8", "Options C 20", "           66.000      1\"Max                 ",
                            "           67.000      1\"Max                 "));
    EXPECT_THAT(tableOf(run.read("r_check_R.dbf")),
                ElementsAre("Z N 16", "Count N 8", "Options C 20", "           66.000       9Max                 ",
                            "           67.000       9Max                 "));
    EXPECT_EQ(run.read("r_check_P.shp").substr(100),
              big(1) + big(10) + pointRecord(5.5, 5.5) + big(2) + big(10) + pointRecord(6.5, 5.5));
    EXPECT_EQ(run.read("r_check_R.shp").size(), 100U + 2 * (8 + 4 + 32 + 8 + 4 + 13 * 16));
    EXPECT_EQ(run.read("r_check_L.shp").size(), 100U);
    for (const char* set : {"r_brkline_P", "r_brkline_L", "r_check_P", "r_check_L", "r_check_R"}) {
        for (const char* extension : {".shp", ".shx", ".dbf", ".prj"}) {
            EXPECT_TRUE(run.has(std::string(set) + extension)) << set << extension;
        }
    }
    EXPECT_NO_OTHER_FILES(run);
}

TEST(BrklineCli, QuotesInTheOptionsOfAShapefileStay)
{
    ToolRun run("-b -brkline r_L.shp -check dem.asc");
    giveShpLine(run, "r_L", {4.5, 4.5, 5.5, 4.5}, "   7 100 3.8Max \"A\" ");
    run.start();
    EXPECT_THAT(tableOf(run.read("r_brkline_L.dbf")),
                testing::Contains("        99999.000           0.000           3.800Max \"A\"             "));
    EXPECT_THAT(tableOf(run.read("r_check_P.dbf")),
                testing::Contains("           66.000      1\"Max \"A\"             "));
    EXPECT_THAT(tableOf(run.read("r_check_R.dbf")),
                testing::Contains("           66.000       9Max \"A\"             "));
}

TEST(BrklineCli, AShapefileOfAnotherTailKeepsItsName)
{
    ToolRun run("-b -brkline r_l.shp dem.asc");
    giveShpLine(run, "r_l", {2, 5, 8, 5}, "   7   3   4Min Perp");
    run.start();
    EXPECT_THAT(tableOf(run.read("r_l_brkline_P.dbf")),
                testing::Contains("           24.000           0.000           0.000Min Perp            "));
    EXPECT_TRUE(run.has("r_l_brkline_L.shp"));
}

TEST(BrklineCli, APolylineOfPartsInAShapefileEndsTheRun)
{
    ToolRun run("-b -brkline r.shp dem.asc");
    giveShpLine(run, "r", {1, 1, 2, 2}, "   7   3   4Min     ");
    run.give("r.shp", shpBytes(3, {partsRecord(3, {0, 2}, {1, 1, 2, 2, 3, 3, 4, 4})}));
    run.start();
    EXPECT_TRUE(run.says("ERROR - Combined polylines not yet supported.  Please disaggregate."));
}

TEST(BrklineCli, CoordinatesThatAreNowhereAreOutside)
{
    for (const char* record : {"0,1e301,0,\n", "0,1e30,1,\n", "0,1e30,4,Perp\n", "0,1e30,4,Max\n"}) {
        ToolRun run("-b -brkline b.mif -check dem.asc");
        giveLines(run, "Line 1e300 -1e300 NaN 4\n", record);
        run.start(std::chrono::seconds(20));
        EXPECT_EQ(run.status(), 0) << record;
    }
}

} // namespace
} // namespace gridforge::test
