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

constexpr double n = kNull;

// Cell (row, column) from the south-west is 10 row + column; `add` on top.
Cells numbered(int rows, int columns, double add = 0)
{
    Cells cells;
    for (int row = rows; row >= 1; --row) {
        cells.emplace_back();
        for (int column = 1; column <= columns; ++column) {
            cells.back().push_back(10 * row + column + add);
        }
    }
    return cells;
}

std::string square(double x1, double y1, double x2, double y2)
{
    const auto corner = [](double x, double y) { return std::to_string(x) + " " + std::to_string(y) + "\n"; };
    return "Region  1\n  5\n" + corner(x1, y1) + corner(x2, y1) + corner(x2, y2) + corner(x1, y2) + corner(x1, y1) +
           "    Pen (1,2,0)\n    Brush (1,0,16777215)\n";
}

void giveLayer(ToolRun& run, std::string_view body, std::string_view records)
{
    run.give("l.mif", mifText(body));
    run.give("l.mid", records);
}

const std::string kFirst = square(1.5, 1.5, 4.5, 3.5);
const std::string kSecond = square(4.5, 2.5, 6.5, 4.5);

TEST(TrimCli, CutsTheWindowAndEmptiesTheCellsOutside)
{
    ToolRun run("-b -trim l.mif dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8), {.xll = 100, .yll = 200}));
    giveLayer(run, square(101.5, 201.5, 104.5, 203.5), "\"north\",7\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_CONSOLE_HOLDS(run, joined({{"Processing \"-trim\" option."},
                                      projectionOf("l"),
                                      openedMif("l"),
                                      {"2 MIF Fields: Name [#/Type]: Name [1/Char(30)]  Val [2/Float]  ",
                                       "Allocating memory for storing GIS regions...", "   Done.",
                                       "Searching for region objects...", "Region 1 with 6 nodes..."},
                                      closedMif("l"),
                                      {"Processing 1 input grids.", "Proecsing File:  1: dem.asc"},
                                      headerOf("dem.asc", "6 rows by 8 columns"),
                                      {"Allocating 0Kb memory for external grid..."}}));
    EXPECT_CONSOLE_HOLDS(run, {"Allocating 0Kb memory for storing output grid...",
                               "Setting output grid to .asc by default.  To set use -asc or -flt.",
                               "Writing output to: north_dem", openedOutput("north_dem.asc", 1001)});
    // Corners inside stand at columns 2 to 4 and rows 2 and 3; the window is columns 1 to 5, rows 1 to 4.
    EXPECT_GRID(run, "north_dem.asc", {{n, n, n, n, n}, {n, 32, 33, 34, n}, {n, 22, 23, 24, n}, {n, n, n, n, n}});
    EXPECT_EQ(run.grid("north_dem.asc").xll, 100);
    EXPECT_EQ(run.grid("north_dem.asc").yll, 200);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TrimCli, TheCornerOfTheOutputIsThatOfItsFirstCell)
{
    ToolRun run("-b -trim l.mif dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8), {.xll = 100, .yll = 200, .cellsize = 2}));
    giveLayer(run, square(109, 205, 113, 209), "second\n");
    run.start();
    // Columns (109-100)/2 = 4.5 to 7.5, rows 2.5 to 5.5: the window is columns 4 to 7, rows 2 to 5.
    EXPECT_GRID(run, "second_dem.asc", {{n, n, n, n}, {n, 45, 46, n}, {n, 35, 36, n}, {n, n, n, n}});
    EXPECT_EQ(run.grid("second_dem.asc").xll, 106);
    EXPECT_EQ(run.grid("second_dem.asc").yll, 202);
    EXPECT_EQ(run.grid("second_dem.asc").cellsize, 2);
}

TEST(TrimCli, CornersOnTheWestSideAreInsideAndOnTheOthersOutside)
{
    ToolRun run("-b -trim l.mif dem.asc");
    run.give("dem.asc", ascGrid(numbered(5, 8)));
    giveLayer(run, square(2, 1, 5, 3), "a\n");
    run.start();
    EXPECT_GRID(run, "a_dem.asc", {{n, n, n, n, n}, {n, n, n, n, n}, {22, 23, 24, n, n}, {n, n, n, n, n}});
}

// The cure that the pages give: what counts is the north-east corner, so a grid moved by half a cell to the south-west shows
// its centres there.
TEST(TrimCli, AGridMovedHalfACellIsCutByItsCentres)
{
    ToolRun run("-b -trim l.mif corner.asc moved.asc centre.asc");
    run.give("corner.asc", ascGrid(numbered(4, 4), {.cellsize = 10}));
    run.give("moved.asc", ascGrid(numbered(4, 4), {.xll = -5, .yll = -5, .cellsize = 10}));
    run.give("centre.asc", "ncols 4\nnrows 4\nxllcenter 5\nyllcenter 5\ncellsize 10\nNODATA_value -9999\n"
                           "41 42 43 44\n31 32 33 34\n21 22 23 24\n11 12 13 14\n");
    giveLayer(run, square(12, 12, 38, 38), "a\n");
    run.start();
    EXPECT_GRID(run, "a_corner.asc", {{n, n, n, n}, {n, 32, 33, n}, {n, 22, 23, n}, {n, n, n, n}});
    for (const char* name : {"a_moved.asc", "a_centre.asc"}) { // centres at 15, 25 and 35
        EXPECT_GRID(run, name, {{n, 42, 43, 44}, {n, 32, 33, 34}, {n, 22, 23, 24}, {n, n, n, n}});
        EXPECT_EQ(run.grid(name).xll, -5) << name;
        EXPECT_EQ(run.grid(name).yll, -5) << name;
    }
}

TEST(TrimCli, NullCellsStayNullAndTheNullIsTheGrids)
{
    ToolRun run("-b -trim l.mif dem.asc");
    Cells cells = numbered(6, 8);
    cells[3][2] = -1; // row 3, column 3
    run.give("dem.asc", ascGrid(cells, {.null = -1}));
    giveLayer(run, kFirst, "a\n");
    run.start();
    EXPECT_GRID(run, "a_dem.asc",
                {{-1, -1, -1, -1, -1}, {-1, 32, -1, 34, -1}, {-1, 22, 23, 24, -1}, {-1, -1, -1, -1, -1}});
    EXPECT_EQ(run.grid("a_dem.asc").null, -1);
}

// The grid has room, of 6 by 8 cells; the first cut, of 4 by 5, has not, and so many cuts are made one at a time.
TEST(TrimCli, ACutThatFindsNoRoomEndsTheRun)
{
    ToolRun run("-b -trim l.mif dem.flt");
    giveFlt(run, "dem", numbered(6, 8));
    std::string body;
    std::string records;
    for (int i = 1; i <= 17; ++i) {
        body += kFirst;
        records += "r" + std::to_string(i) + "\n";
    }
    giveLayer(run, body, records);
    run.environment("GRIDFORGE_MEMORY", std::to_string(4 * (6 * 8 + 4 * 5) - 1));
    run.environment("GRIDFORGE_SCRATCH", "/nowhere");
    run.notForOtherExecutables("finds no room, of which another executable may take less");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Allocating 0Kb memory for storing output grid...",
                                       "ERROR - Could not allocate enough memory (RAM)."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TrimCli, ARegionOverTheEdgeIsCutThere)
{
    ToolRun run("-b -trim l.mif dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, square(6.5, -3, 11, 2.5), "edge\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"WARNING - Part of region extends outside of grid, region name: edge",
                               "Allocating 0Kb memory for storing output grid..."});
    EXPECT_GRID(run, "edge_dem.asc", {{n, n, n}, {n, 27, 28}, {n, 17, 18}});
    EXPECT_EQ(run.grid("edge_dem.asc").xll, 5);
    EXPECT_EQ(run.grid("edge_dem.asc").yll, 0);
}

// A window begins one cell before the cell of its region's south-west corner and ends with that of the north-east corner.
TEST(TrimCli, AWindowThatLeavesTheGridByOneCellExtendsOutside)
{
    const std::string warning = "WARNING - Part of region extends outside of grid, region name: a";
    const auto warns = [&warning](const std::string& region) {
        ToolRun run("-b -trim l.mif dem.asc");
        run.give("dem.asc", ascGrid(numbered(6, 8)));
        giveLayer(run, region, "a\n");
        run.start();
        EXPECT_TRUE(run.has("a_dem.asc")) << run.console();
        return run.says(warning);
    };
    EXPECT_FALSE(warns(square(1.5, 1.5, 7.5, 5.5)));
    EXPECT_TRUE(warns(square(0.5, 1.5, 7.5, 5.5)));
    EXPECT_TRUE(warns(square(1.5, 0.5, 7.5, 5.5)));
    EXPECT_TRUE(warns(square(1.5, 1.5, 8, 5.5)));
    EXPECT_TRUE(warns(square(1.5, 1.5, 7.5, 6)));
}

TEST(TrimCli, ARegionOverBothEndsOfAnAxisEndsTheRun)
{
    // The last two by a hair: in the first cell of the axis, and to its other end.
    for (const std::string& region :
         {square(-1, 1.5, 9.5, 3.5), square(1.5, -2, 3.5, 7), square(0.5, 1.5, 8, 3.5), square(1.5, 0.5, 3.5, 6)}) {
        ToolRun run("-trim l.mif dem.asc");
        run.give("dem.asc", ascGrid(numbered(6, 8)));
        giveLayer(run, region, "wide\n");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_CONSOLE_HOLDS(
            run, errorEnd("ERROR - Entire region is outside of grid, region name: wide", "    Grid Name: dem.asc"));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(TrimCli, ARegionBesideTheGridGivesAWarningAndTheNextGoesOn)
{
    ToolRun run("-b -trim l.mif dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, square(20, 1.5, 25, 3.5) + square(1.5, -9, 3.5, -4) + kFirst, "east\nsouth\nin\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"WARNING - Part of region extends outside of grid, region name: east",
                               "WARNING - Region does not overlap grid, no output written, region name: east",
                               "WARNING - Part of region extends outside of grid, region name: south",
                               "WARNING - Region does not overlap grid, no output written, region name: south",
                               "Allocating 0Kb memory for storing output grid..."});
    EXPECT_TRUE(run.has("in_dem.asc"));
    EXPECT_NO_OTHER_FILES(run);
}

// --- Names and formats -----------------------------------------------------------------------------------------------

TEST(TrimCli, EachPairOfGridAndRegionGivesAGrid)
{
    ToolRun run("-b -trim l.mif a.asc b.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    run.give("b.asc", ascGrid(numbered(6, 8, 100)));
    giveLayer(run, kFirst + kSecond, "one,1\n'two x',2\n");
    run.start();
    EXPECT_THAT(run.changedFiles(), ElementsAre("one_a.asc", "one_b.asc", "two x_a.asc", "two x_b.asc"));
    EXPECT_GRID(run, "two x_b.asc", {{n, n, n, n}, {n, 145, 146, n}, {n, 135, 136, n}, {n, n, n, n}});
}

TEST(TrimCli, AFolderOfTheGridLandsBehindTheRegionsName)
{
    ToolRun run("-b -trim l.mif g/a.asc");
    run.give("g/a.asc", ascGrid(numbered(6, 8)));
    run.give("one_g/.keep", "");
    giveLayer(run, kFirst, "one\n");
    run.start();
    EXPECT_TRUE(run.says("Writing output to: one_g/a"));
    EXPECT_TRUE(run.has("one_g/a.asc"));
}

TEST(TrimCli, OutNamesTheOneOutput)
{
    ToolRun run("-b -trim l.mif a.asc -out cut");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, kFirst, "one\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using specified output file name: \"cut\"",
                               "Setting output grid to .asc by default.  To set use -asc or -flt.",
                               "Writing output to: cut"});
    EXPECT_THAT(run.changedFiles(), ElementsAre("cut.asc"));
}

TEST(TrimCli, OutWithMoreGridsTakesTheirNames)
{
    ToolRun run("-b -trim l.mif g/a.asc b.asc -out cut");
    run.give("g/a.asc", ascGrid(numbered(6, 8)));
    run.give("b.asc", ascGrid(numbered(6, 8)));
    run.give("cut_g/.keep", "");
    giveLayer(run, kFirst, "one\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {"More than 1 grid file specified with output file name: \"cut\"", "   Appending grid name...",
              "Setting output grid to .asc by default.  To set use -asc or -flt.", "Writing output to: cut_g/a"});
    EXPECT_THAT(run.changedFiles(), ElementsAre("cut_b.asc", "cut_g/a.asc"));
}

TEST(TrimCli, OutWithMoreRegionsTakesTheirNames)
{
    ToolRun run("-b -trim l.mif a.asc -out cut");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, kFirst + kSecond, "one\ntwo\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"More than region specified with output file name: \"cut\"", "   Appending grid name...",
                               "Setting output grid to .asc by default.  To set use -asc or -flt.",
                               "Writing output to: cut_two"});
    EXPECT_THAT(run.changedFiles(), ElementsAre("cut_one.asc", "cut_two.asc"));
}

TEST(TrimCli, OutWithMoreOfBothTakesBothNames)
{
    ToolRun run("-b -trim l.mif a.asc b.asc -out cut");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    run.give("b.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, kFirst + kSecond, "one\ntwo\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"WARNING - More than 1 grid file and region used in conjunction with \"-out\" flag.",
                               "   Appending grid and region name...",
                               "Setting output grid to .asc by default.  To set use -asc or -flt.",
                               "Writing output to: cut_b_two"});
    EXPECT_THAT(run.changedFiles(), ElementsAre("cut_a_one.asc", "cut_a_two.asc", "cut_b_one.asc", "cut_b_two.asc"));
}

TEST(TrimCli, TheFormatIsAscUnlessOneIsAskedFor)
{
    const Cells cells = numbered(6, 8);
    const auto start = [&](ToolRun& run) {
        run.give("a.flt", fltCells(cells));
        run.give("a.hdr", hdr(cells));
        giveLayer(run, kFirst, "one\n");
        run.start();
    };
    ToolRun plain("-b -trim l.mif a.flt");
    start(plain);
    EXPECT_TRUE(plain.says("Setting output grid to .asc by default.  To set use -asc or -flt."));
    EXPECT_THAT(plain.changedFiles(), ElementsAre("one_a.asc"));

    ToolRun flt("-b -trim l.mif a.flt -flt");
    start(flt);
    EXPECT_TRUE(flt.says("Using output format .flt as specified."));
    EXPECT_THAT(flt.changedFiles(), ElementsAre("one_a.flt", "one_a.hdr"));
    EXPECT_GRID(flt, "one_a.flt", {{n, n, n, n, n}, {n, 32, 33, 34, n}, {n, 22, 23, 24, n}, {n, n, n, n, n}});

    ToolRun asc("-b -trim l.mif a.flt -asc -decimal1");
    start(asc);
    EXPECT_TRUE(asc.says("Using output format .asc as specified."));
    EXPECT_THAT(asc.read("one_a.asc"), HasSubstr("32.0"));
    EXPECT_THAT(asc.read("one_a.asc"), testing::Not(HasSubstr("32.00")));
}

TEST(TrimCli, TheProjectionOfTheGridIsKept)
{
    ToolRun run("-b -trim l.mif a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    run.give("a.prj", "PROJCS[\"test\"]\n");
    giveLayer(run, kFirst, "one\n");
    run.start();
    EXPECT_EQ(run.read("one_a.prj"), "PROJCS[\"test\"]\r\n");
}

// --- The layer -------------------------------------------------------------------------------------------------------

TEST(TrimCli, OtherObjectsArePassedOverWithTheirRecords)
{
    ToolRun run("-b -trim l.mif a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, "Point 1 1\nPline 2\n1 1\n2 2\n" + kFirst + "None\n", "p\nl\none\nnone\n");
    run.start();
    EXPECT_TRUE(run.says("Region 1 with 6 nodes..."));
    EXPECT_THAT(run.changedFiles(), ElementsAre("one_a.asc"));
}

TEST(TrimCli, RegionsOfSeveralRingsEndTheRun)
{
    ToolRun run("-trim l.mif a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, "Region 2\n4\n0 0\n1 0\n1 1\n0 0\n4\n2 2\n3 2\n3 3\n2 2\n", "one\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."));
}

// A ring of `count` vertices with the closing one, in the window of kFirst.
std::string ringOf(int count)
{
    std::string body = "Region 1\n" + std::to_string(count) + "\n1.5 1.5\n";
    for (int i = 1; i < count - 2; ++i) {
        body += std::to_string(1.5 + 3.0 * i / count) + " 1.5\n";
    }
    return body + "4.5 3.5\n1.5 1.5\n";
}

TEST(TrimCli, ARegionHoldsAHundredVerticesWithItsSlot)
{
    ToolRun fits("-b -trim l.mif a.asc");
    fits.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(fits, ringOf(99), "one\n");
    fits.start();
    EXPECT_TRUE(fits.says("Region 1 with 100 nodes..."));
    EXPECT_TRUE(fits.has("one_a.asc"));

    ToolRun tooMany("-trim l.mif a.asc");
    tooMany.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(tooMany, ringOf(100), "one\n");
    tooMany.start();
    EXPECT_CONSOLE_HOLDS(tooMany,
                         errorEnd("ERROR - Region objects contains too many vertices.  Please contact SUPPORT_CONTACT",
                                  "   Maximum vertices in a single region:100"));
}

TEST(TrimCli, ALayerHoldsAHundredRegions)
{
    std::string body;
    std::string records;
    for (int i = 1; i <= 100; ++i) {
        body += kFirst;
        records += "r" + std::to_string(i) + "\n";
    }
    ToolRun fits("-b -trim l.mif a.asc");
    fits.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(fits, body, records);
    fits.start();
    EXPECT_EQ(fits.changedFiles().size(), 100U);

    ToolRun tooMany("-trim l.mif a.asc");
    tooMany.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(tooMany, body + kFirst, records + "r101\n");
    tooMany.start();
    EXPECT_CONSOLE_HOLDS(tooMany,
                         errorEnd("Region 100 with 6 nodes...", "ERROR - Number of regions exceeds maximum: 100"));
}

TEST(TrimCli, ARecordWithoutANameEndsTheRun)
{
    for (const char* record : {"   ", "\"open"}) {
        ToolRun run("-trim l.mif a.asc");
        run.give("a.asc", ascGrid(numbered(6, 8)));
        giveLayer(run, kFirst, std::string(record) + "\n");
        run.start();
        EXPECT_TRUE(run.says("ERROR - Extracting attribute data for GIS object.  Data: " +
                             (record[0] == ' ' ? std::string() : std::string(record))))
            << run.console();
    }
}

TEST(TrimCli, TheNameIsTheFirstFreeFormValueCutAt250)
{
    ToolRun run("-b -trim l.mif a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveLayer(run, kFirst + kFirst + square(20, 1, 22, 2), "  12.50 x,3\n,second\n\"" + std::string(260, 'k') + "\"\n");
    run.start();
    EXPECT_TRUE(
        run.says("WARNING - Region does not overlap grid, no output written, region name: " + std::string(250, 'k')));
    EXPECT_THAT(run.changedFiles(), ElementsAre("12.50_a.asc", "_a.asc"));
}

// --- Shapefiles ------------------------------------------------------------------------------------------------------

const std::string kNullRecord = little(0);

// l.shp of these records, with names of ten characters.
void giveShpLayer(ToolRun& run, const std::vector<std::string>& records, std::vector<std::string> names)
{
    constexpr int kWidth = 10;
    for (std::string& name : names) {
        name.resize(kWidth, ' ');
    }
    giveShapefile(run, "l", 5, {.objects = records, .columns = {{"NAME", 'C', kWidth}}, .values = names});
}

// The ring of kFirst, against the clock as in the .mif.
const std::string kFirstRecord = partsRecord(5, {0}, {1.5, 1.5, 4.5, 1.5, 4.5, 3.5, 1.5, 3.5, 1.5, 1.5});

TEST(TrimCli, AShapefileCutsLikeAMif)
{
    ToolRun run("-b -trim l.shp dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(run, {kNullRecord, kFirstRecord}, {"none", "north east"});
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Shapefile Code: 9994  Length: 124", "Shapefile Version: 1000  Type: 5", closedUnit(1002),
                          "DBF file contains 2 records.", "1 DBF Fields (Name [#/Type/Length]): NAME [1/C/10]  ",
                          "Allocating memory for storing GIS regions...", "   Done.", "Searching for region objects...",
                          "Region 1 with 6 nodes...", "Closing GIS Layer 1 [l.shp]..."});
    EXPECT_GRID(run, "north east_dem.asc", {{n, n, n, n, n}, {n, 32, 33, 34, n}, {n, 22, 23, 24, n}, {n, n, n, n, n}});
    EXPECT_NO_OTHER_FILES(run);
}

TEST(TrimCli, QuotesInTheNameOfAPolygonAreInThatOfItsGrid)
{
    ToolRun run("-b -trim l.shp dem.asc");
    run.give("dem.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(run, {kFirstRecord}, {"\"a\" b\"c"});
    run.start();
    EXPECT_TRUE(run.says("Writing output to: \"a\" b\"c_dem"));
    EXPECT_TRUE(run.has("\"a\" b\"c_dem.asc"));
}

TEST(TrimCli, APolygonOfTwoRingsEndsTheRun)
{
    ToolRun run("-trim l.shp a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(run, {partsRecord(5, {0, 4}, {0, 0, 1, 0, 1, 1, 0, 0, 2, 2, 3, 2, 3, 3, 2, 2})}, {"one"});
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes."));
}

TEST(TrimCli, APolygonHoldsAHundredVerticesWithItsSlot)
{
    const auto ring = [](std::size_t vertices) { return partsRecord(5, {0}, std::vector<double>(2 * vertices, 2.5)); };
    ToolRun fits("-b -trim l.shp a.asc");
    fits.give("a.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(fits, {ring(99)}, {"one"});
    fits.start();
    EXPECT_TRUE(fits.says("Region 1 with 100 nodes..."));

    ToolRun tooMany("-trim l.shp a.asc");
    tooMany.give("a.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(tooMany, {ring(100)}, {"one"});
    tooMany.start();
    EXPECT_CONSOLE_HOLDS(tooMany,
                         errorEnd("ERROR - Region objects contains too many vertices.  Please contact SUPPORT_CONTACT",
                                  "   Maximum vertices in a single region:100"));
}

TEST(TrimCli, APolygonWithoutVerticesOverlapsNothing)
{
    ToolRun run("-b -trim l.shp a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    giveShpLayer(run, {partsRecord(5, {}, {}), kFirstRecord}, {"empty", "one"});
    run.start();
    EXPECT_TRUE(run.says("Region 1 with 0 nodes..."));
    EXPECT_TRUE(run.says("WARNING - Region does not overlap grid, no output written, region name: empty"));
    EXPECT_THAT(run.changedFiles(), ElementsAre("one_a.asc"));
}

TEST(TrimCli, AMissingProjectionEndsTheRun)
{
    ToolRun run("-trim l.shp a.asc");
    run.give("a.asc", ascGrid(numbered(6, 8)));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Processing \"-trim\" option.", "Getting Projection...",
                                       "ERROR - Projection file does not exist in folder: l.prj"));
}

} // namespace
} // namespace gridforge::test
