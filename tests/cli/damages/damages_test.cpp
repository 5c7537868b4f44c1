// Whole runs of -damages: console, layer, table and names.
#include "support/consoles.h"
#include "support/damages_files.h"
#include "support/sanitizers.h"
#include "support/shp_bytes.h"
#include "support/tool_run.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace gridforge::test {
namespace {

using testing::HasSubstr;
using testing::Not;

// Levels are 10 row + column: a point at (3.2, 1.6) is nearest to column 3, row 2. The polygon holds the points of columns
// 4 to 6 in rows 3 and 4, whose highest level is 46.
const std::string kTwoBuildings = pointMif("3.2", "1.6") + boxMif(3.5, 2.5, 6.5, 4.5);
const std::string kTwoRecords = "\"House\",\"A\",3,1\n\"House\",\"B 2\",40.5,2\n";

TEST(DamagesCli, TellsWhatItDoesAndWritesLayerAndTable)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(
        run,
        joined({startOf({"c.dmg"}),
                {"Damage Calculation.",
                 "Scanning damages file to determine if maximum array sizes are defined...",
                 openedInput("c.dmg"),
                 openedUnit(1001),
                 closedUnit(1001),
                 "   Done.",
                 "Maximum number of buildings: 1000",
                 "Maximum number of vertices in a single building: 100",
                 "Maximum number of damages curves: 100",
                 "Maximum number of points in damage curve: 100",
                 "Maximum number of results grids: 25",
                 "Allocating memory for damage curves...",
                 "   Done",
                 "Opening damages .dmg file: c.dmg",
                 openedInput("c.dmg"),
                 openedUnit(1001),
                 "Debug - nGISF: 1",
                 "Debug - k: 1",
                 "Getting Projection...",
                 openedInput("h.mif"),
                 openedUnit(1002),
                 "Using h.mif for setting projection.",
                 "mif Projection: CoordSys NonEarth Units \"m\" Bounds (0, 0) (100, 100)",
                 closedUnit(1002),
                 "Debug - dmg_curve_%ncurve: 1",
                 "Debug - i: 1",
                 "Found new damages curve: House",
                 "Getting damages Curve...",
                 openedInput("house.csv"),
                 openedUnit(1002),
                 closedUnit(1002),
                 "Number of points in damage curve found: 2",
                 closedUnit(1001),
                 "Finished Read Damages File.",
                 "Debug - dmg_curve_%ncurve: 1",
                 "Debug - dmg_res_%nRes: 0",
                 "Allocating memory for GIS data...",
                 "   Done",
                 "Total number of building GIS files to read: 1",
                 "Reading GIS File: h.mif",
                 "Read building data from GIS..."},
                openedMif("h"),
                {"4 MIF Fields: Name [#/Type]: Prop_Type [1/Char(20)]  Prop_ID [2/Char(20)]  FFL [3/Float]  "
                 "Multiplier [4/Float]  ",
                 "Building 1 is a point.", "Building 2 is a polygon with 6 nodes.", " Finished reading building data."},
                closedMif("h"),
                {"Total number of grid files to read: 0", "Allocating memory for damage curves...", "   Done",
                 "Sorting results grids by frequency: ", "   Done", "Ordered Grids: ", "Grid 1 is: wl.asc",
                 "Extracting Results from grids:", "Loading grid data..."},
                headerOf("wl.asc", "6 rows by 8 columns"),
                {"Allocating 0Kb memory for storing input grid...", "Reading data..."},
                ascCells(),
                {"   Done.", "Deallocating grid memory.", "Done extracting results from grids",
                 "Output GIS File: h_Damages.mif", "Output CSV File: h_Damages.csv",
                 "Writing building damages data to GIS..."},
                createdMif("h_Damages", 1, 1001),
                {openedOutput("h_Damages.csv", 1003), " Finished write building damages data."},
                closedMif("h_Damages"),
                {closedUnit(1003)},
                normalEnd()}));

    // A: (23 - 3) x 100 x 1; B: (46 - 40.5) x 100 x 2.
    const std::string rows = "\"House\",\"A\",3.,1.,2000.,0.\r\n"
                             "\"House\",\"B 2\",40.5,2.,1100.,0.\r\n";
    EXPECT_EQ(run.read("h_Damages.csv"), "Property Type,Property ID, Floor Level, Multiplier,"
                                         "Damages 1.000 AEP (%),Average Annual Damage\r\n" +
                                             rows);
    EXPECT_EQ(run.read("h_Damages.mid"), rows);
    EXPECT_EQ(run.read("h_Damages.mif"), "Version 300\r\n"
                                         "Charset \"WindowsLatin1\"\r\n"
                                         "Delimiter \",\"\r\n"
                                         "CoordSys NonEarth Units \"m\" Bounds (0, 0) (100, 100)\r\n"
                                         "Columns 6\r\n"
                                         "  Prop_Type Char(100)\r\n"
                                         "  Prop_ID Char(100)\r\n"
                                         "  FFL Float\r\n"
                                         "  Multiplier Float\r\n"
                                         "  Dmg_1AEP Float\r\n"
                                         "  AAD Float\r\n"
                                         "Data\r\n"
                                         "\r\n"
                                         "Point         3.200000        1.600000\r\n"
                                         "Region 1\r\n"
                                         " 5\r\n"
                                         "        3.500000        2.500000\r\n"
                                         "        6.500000        2.500000\r\n"
                                         "        6.500000        4.500000\r\n"
                                         "        3.500000        4.500000\r\n"
                                         "        3.500000        2.500000\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, TakesOneControlFileOnly)
{
    ToolRun run("-damages c.dmg d.dmg");
    run.give("c.dmg", "");
    run.give("d.dmg", "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Damage Calculation.", "ERROR - Only one .dmg file can be specified."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, WithoutResultsOnlyTheFixedAttributesAreWritten)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve House == house.csv\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Ordered Grids: ", "Extracting Results from grids:",
                               "Done extracting results from grids", "Output GIS File: h_Damages.mif"});
    EXPECT_EQ(run.read("h_Damages.csv"), "Property Type,Property ID, Floor Level, Multiplier,Average Annual Damage\r\n"
                                         "\"House\",\"A\",3.,1.,0.\r\n"
                                         "\"House\",\"B 2\",40.5,2.,0.\r\n");
    EXPECT_THAT(run.read("h_Damages.mif"), HasSubstr("Columns 5\r\n"
                                                     "  Prop_Type Char(100)\r\n"
                                                     "  Prop_ID Char(100)\r\n"
                                                     "  FFL Float\r\n"
                                                     "  Multiplier Float\r\n"
                                                     "  AAD Float\r\n"));
}

TEST(DamagesCli, GridsMayBeBinaryAndLieOnLatticesOfTheirOwn)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, pointMif("12", "21"), "\"House\",\"A\",0,1\n");
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve House == house.csv\n"
                      "Read Result % 2 == sub\\fine.flt\nRead Result % 1 == coarse.asc\n");
    run.give("sub/fine.flt", fltCells({{21, 22}, {11, 12.5}}));
    run.give("sub/fine.hdr", hdr(2, 2, {.xll = 10, .yll = 20}));
    run.give("coarse.asc", ascGrid({{30}}, {.xll = 2, .yll = 11, .cellsize = 10}));
    run.start();
    EXPECT_THAT(run.read("h_Damages.csv"), HasSubstr("\"House\",\"A\",0.,1.,1250.,3000.,0.\r\n"));
    EXPECT_TRUE(run.says("Grid 1 is: sub\\fine.flt"));
}

TEST(DamagesCli, ALayerWithoutObjectsIsNoError)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, "", "");
    run.start();
    EXPECT_EQ(run.read("h_Damages.csv"), "Property Type,Property ID, Floor Level, Multiplier,Damages 1.000 AEP (%),"
                                         "Average Annual Damage\r\n");
    EXPECT_TRUE(run.reachedEnd());
}

// --- Several grids ---------------------------------------------------------------------------------------------------

TEST(DamagesCli, GridsGoFromTheMostFrequentToTheRarest)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",0,1\n"); // level 12
    run.give("c.dmg", "Read Result % 1 == one.asc\n"
                      "Read Result 0.1 == ten.asc\n"
                      "Read Result % 0.5 == half.asc\n"
                      "Read GIS Building == h.mif\n"
                      "Read Curve House == house.csv\n");
    run.give("one.asc", levels(3, 3, 1));
    run.give("ten.asc", levels(3, 3, 10));
    run.give("half.asc", levels(3, 3, 0.5));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Ordered Grids: ", "Grid 1 is: ten.asc", "Grid 2 is: one.asc", "Grid 3 is: half.asc",
                               "Extracting Results from grids:"});
    EXPECT_EQ(run.read("h_Damages.csv"), "Property Type,Property ID, Floor Level, Multiplier,Damages 10.000 AEP (%),"
                                         "Damages 1.000 AEP (%),Damages 0.500 AEP (%),Average Annual Damage\r\n"
                                         "\"House\",\"A\",0.,1.,2200.,1300.,1250.,0.\r\n");
    EXPECT_THAT(run.read("h_Damages.mif"), HasSubstr("  Dmg_10AEP Float\r\n"
                                                     "  Dmg_1AEP Float\r\n"
                                                     "  Dmg_05AEP Float\r\n"));
}

TEST(DamagesCli, EqualProbabilitiesKeepTheirOrderAndAttributesMayBeTwins)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",0,1\n");
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve House == house.csv\n"
                      "Read Result % 2 == second.asc\nRead Result % 5 == first.asc\nRead Result 0.02 == third.asc\n");
    run.give("first.asc", levels(3, 3, 1));
    run.give("second.asc", levels(3, 3, 2));
    run.give("third.asc", levels(3, 3, 3));
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Grid 1 is: first.asc", "Grid 2 is: second.asc", "Grid 3 is: third.asc"});
    EXPECT_THAT(run.read("h_Damages.csv"), HasSubstr("\"House\",\"A\",0.,1.,1300.,1400.,1500.,0.\r\n"));
    EXPECT_THAT(run.read("h_Damages.mif"), HasSubstr("  Dmg_5AEP Float\r\n  Dmg_2AEP Float\r\n  Dmg_2AEP Float\r\n"));
}

TEST(DamagesCli, ProbabilitiesThatAreNoneEndTheRun)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",0,1\n");
    run.give("c.dmg", "Read Result % NaN == wl.asc\nRead Result % -9999 == wl.asc\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, errorEnd("Sorting results grids by frequency: ", "ERROR - No results grid has an AEP above -9999."));
}

TEST(DamagesCli, LinesAreCutAt1000Characters)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",0,1\n"); // level 12, damage "1200.", 6 characters a grid
    std::string control = "Maximum Results == 200\nRead GIS Building == h.mif\nRead Curve House == house.csv\n";
    std::string row = "\"House\",\"A\",0.,1.";
    std::string heading = "Property Type,Property ID, Floor Level, Multiplier";
    for (int i = 0; i < 180; ++i) {
        control += "Read Result % 1 == wl.asc\n";
        row += ",1200.";
        heading += ",Damages 1.000 AEP (%)";
    }
    run.give("c.dmg", control);
    run.start();
    ASSERT_GT(row.size(), 1000U);
    EXPECT_EQ(run.read("h_Damages.csv"), heading.substr(0, 1000) + "\r\n" + row.substr(0, 1000) + "\r\n");
    EXPECT_EQ(run.read("h_Damages.mid"), row.substr(0, 1000) + "\r\n");
}

TEST(DamagesCli, MoreGridsThanALayerHasColumnsEndTheRun)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, pointMif("2", "1"), "\"House\",\"A\",0,1\n");
    std::string control = "Maximum Results == 252\nRead GIS Building == h.mif\nRead Curve House == house.csv\n";
    for (int i = 0; i < 252; ++i) { // with 5 fixed attributes 257
        control += "Read Result % 1 == wl.asc\n";
    }
    run.give("c.dmg", control);
    run.start();
    EXPECT_THAT(run.console(), HasSubstr("Writing building damages data to GIS...\n"));
    EXPECT_THAT(run.console(), HasSubstr("ERROR"));
    EXPECT_THAT(run.console(), Not(HasSubstr(kFinished)));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, AGridThatIsCutShortEndsTheRun)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.give("wl.asc", levels(6, 8).substr(0, 120));
    run.start();
    EXPECT_TRUE(run.says("ERROR 2334 - Reading Grid file data.  Check format and file is complete by viewing in GIS."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, AGridThatDoesNotFitIntoMemoryEndsTheRun)
{
    if (kSanitized) {
        GTEST_SKIP() << "the sanitizer ends the process over such a size";
    }
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.give("wl.asc", "ncols 200000000\nnrows 100000000\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2 3\n");
    run.start();
    EXPECT_TRUE(run.says("ERROR - Could not allocate enough memory (RAM)."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, AGridThatIsNotThereIsAskedFor)
{
    ToolRun run("-damages c.dmg");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.give("c.dmg", "Read GIS Building == h.mif\nRead Curve House == house.csv\nRead Result % 1 == none.asc\n");
    run.type("wl.asc");
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Loading grid data...", opening("none.asc"), "CHECK 0008 - \"none.asc\" cannot be found",
                          "Check file exists and press enter or enter another file name: ", openedInput("wl.asc")});
    EXPECT_TRUE(run.has("h_Damages.csv"));
}

// --- Names of the outputs --------------------------------------------------------------------------------------------

// A Shapefile of one point at (2, 1) with the four attributes.
void giveShpBuilding(ToolRun& run, const std::string& name)
{
    giveShapefile(run, name, 1,
                  {.objects = {pointRecord(2, 1)},
                   .columns = {{"Prop_Type", 'C', 8}, {"Prop_ID", 'C', 4}, {"FFL", 'N', 6}, {"Multi", 'N', 6}},
                   .values = {"House   id 7  2.50  0.50"},
                   .projection = "PROJCS[\"Town grid\"]\n"});
}

TEST(DamagesCli, OutputsLieBesideTheFirstLayer)
{
    ToolRun run("-b -damages c.dmg");
    giveDamageFiles(run, "", "");
    giveShpBuilding(run, "path/houses");
    run.give("c.dmg", "Read GIS Building == path/houses.shp\nRead GIS Building == h.mif\n"
                      "Read Curve House == house.csv\nRead Result % 1 == wl.asc\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Output GIS File: path/houses_Damages.shp", "Output CSV File: path/houses_Damages.csv",
                          "Writing building damages data to GIS...", "Opening GIS Layer: path/houses_Damages.shp"});
    EXPECT_CONSOLE_HOLDS(run, {"Debug - nGISF: 2", "Debug - k: 2", "Projection check not yet implemented."});
    // (12 - 2.5) x 100 x 0.5
    EXPECT_THAT(run.read("path/houses_Damages.csv"), HasSubstr("\r\n\"House\",\"id 7\",2.5,0.5,475.,0.\r\n"));
    EXPECT_EQ(run.read("path/houses_Damages_P.prj"), "PROJCS[\"Town grid\"]\r\n");
    for (const char* part : {"_P.shp", "_P.shx", "_P.dbf", "_P.prj", "_R.shp", "_R.shx", "_R.dbf", "_R.prj"}) {
        EXPECT_TRUE(run.has(std::string("path/houses_Damages") + part));
    }
    EXPECT_NO_OTHER_FILES(run);
}

struct OutputName {
    std::string out;
    std::string csv;
    std::vector<std::string> files;
};

class DamagesOut : public testing::TestWithParam<OutputName> {};

TEST_P(DamagesOut, NamesBothOutputs)
{
    ToolRun run({"-b", "-damages", "c.dmg", "-out", GetParam().out});
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.give("sub/keep.txt", "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using specified output file.", "Output GIS File: " + GetParam().out,
                               "Output CSV File: " + GetParam().csv, "Writing building damages data to GIS...",
                               "Opening GIS Layer: " + GetParam().out});
    EXPECT_TRUE(run.reachedEnd());
    for (const std::string& name : GetParam().files) {
        EXPECT_TRUE(run.has(name)) << name;
    }
    EXPECT_NO_OTHER_FILES(run);
}

INSTANTIATE_TEST_SUITE_P(
    Names, DamagesOut,
    testing::Values(OutputName{"result.mif", "result.csv", {"result.mif", "result.mid", "result.csv"}},
                    OutputName{"sub/R.MIF", "sub/R.csv", {"sub/R.mif", "sub/R.mid", "sub/R.csv"}},
                    OutputName{"r.shp",
                               "r.csv",
                               {"r_P.shp", "r_P.shx", "r_P.dbf", "r_P.prj", "r_R.shp", "r_R.shx", "r_R.dbf", "r_R.prj",
                                "r.csv"}},
                    // Any other name is that of both: the layer adds its own extensions, the table has none.
                    OutputName{"result", "result", {"result.mif", "result.mid", "result"}}));

TEST(DamagesCli, ATableNameIsThatOfTheLayerTooWhichCannotTakeIt)
{
    ToolRun run("-damages c.dmg -out result.csv");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.start();
    EXPECT_CONSOLE_HOLDS(run,
                         {"Using specified output file.", "Output GIS File: result.csv", "Output CSV File: result.csv",
                          "Writing building damages data to GIS...", "Opening GIS Layer: result.csv"});
    EXPECT_TRUE(run.says("ERROR 0252 - .csv is not a supported GIS file format."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(DamagesCli, ATableOverItsOwnLayerIsAskedAbout)
{
    ToolRun run("-damages c.dmg -out result.mid");
    giveDamageFiles(run, kTwoBuildings, kTwoRecords);
    run.type("n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(openedOutput("result.mid", 1002), opening("result.mid"), "",
                                       "result.mid is already open, close it? ", opening("result.mid"), "",
                                       "result.mid is already open, close it? "));
}

TEST(DamagesCli, AFullDeviceEndsTheRun)
{
    for (const std::string table : {"h_Damages.csv", "h_Damages.mid"}) {
        ToolRun run("-damages c.dmg");
        giveDamageFiles(run, kTwoBuildings, kTwoRecords);
        std::filesystem::create_symlink("/dev/full", run.folder() / table);
        run.start();
        EXPECT_THAT(run.console(),
                    HasSubstr(table == "h_Damages.csv" ? "ERROR - Could not write to file: h_Damages.csv\n"
                                                       : "ERROR 0254 - Failed to write attribute data record for a "));
        EXPECT_THAT(run.console(), Not(HasSubstr(kFinished)));
    }
}

} // namespace
} // namespace gridforge::test
