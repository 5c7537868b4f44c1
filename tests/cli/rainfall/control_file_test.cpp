// The control file: every command, known or not, and the grid that it makes.
#include "support/consoles.h"
#include "support/rainfall_files.h"
#include "support/sanitizers.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

const std::string kPolygons = "RF Interpolation Method == Polygons\nRead GIS RF Polygon == areas.mif\n";
const std::string kWhole = kRainfallGrid + kTwoHyetographs + kPolygons;

// One region over the whole grid.
void giveAreas(ToolRun& run)
{
    giveRainfallLayer(run, "areas", mifRectangle("90", "190", "140", "230"), "\"a\",1,1\n");
}

// The run ends by an error whose last lines are these, and leaves nothing.
void expectRefusal(const std::string& commands, const Lines& message)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, commands);
    giveAreas(run);
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, joined({message, errorEnd()}));
    EXPECT_NO_OTHER_FILES(run);
}

// The run passes and rains by hyetograph a: 2, then 4.
void expectRain(const std::string& commands)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, commands);
    giveAreas(run);
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{2, 2, 2}, {2, 2, 2}});
    EXPECT_GRID(run, "rain_total.asc", {{6, 6, 6}, {6, 6, 6}});
}

TEST(RainfallControlCli, TellsItsPasses)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, "Maximum RF Locations == 7\nMaximum Points in Hyetograph == 8\n" + kWhole);
    giveAreas(run);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Rainfall interpolation to grid.",
                               "Rainfall control file: rain.rfc",
                               "Scanning rainfaill control file to determine if maximum array sizes are defined...",
                               openedInput("rain.rfc"),
                               openedUnit(1001),
                               closedUnit(1001),
                               "   Done.",
                               "Maximum number of rainfall locations: 7",
                               "Maximum number of points in hyetograph: 8",
                               "Allocating memory for rainfall curves...",
                               "   Done",
                               "Opening rainfall control file file: rain.rfc",
                               openedInput("rain.rfc"),
                               openedUnit(1001),
                               "New hyetogrpah :a",
                               "Getting rainfall hyetograph...",
                               openedInput("a.csv"),
                               openedUnit(1002),
                               closedUnit(1002),
                               "Number of points in damage curve found: 2",
                               "New hyetogrpah :b",
                               "Getting rainfall hyetograph...",
                               openedInput("b.csv"),
                               openedUnit(1002),
                               closedUnit(1002),
                               "Number of points in damage curve found: 2",
                               "Finished first processing rf control file.",
                               closedUnit(1001),
                               "Checking rainfall hyetographs have consistent times.",
                               "   OK.",
                               "Determining rainfall grid size.",
                               "Rainfall Grid Dimensions (N,M): 2,3",
                               "Allocating memory for rainfall depth and cumulative rainfall depth..",
                               "Memory required: 0kB",
                               "   Done.",
                               openedOutput("rain_index.csv", 1001)});
    EXPECT_CONSOLE_HOLDS(run, {kFinished});
}

TEST(RainfallControlCli, TakesOneControlFile)
{
    ToolRun run("-b -rf rain.rfc other.rfc");
    giveRainfall(run, kWhole);
    run.give("other.rfc", kWhole);
    run.start();
    EXPECT_CONSOLE(run, joined({startOf({"rain.rfc", "other.rfc"}),
                                {"Rainfall interpolation to grid."},
                                errorEnd("ERROR - Only one rainfall control file can be specified.")}));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RainfallControlCli, KnowsCommandsInAnyCaseWithCommentsTabsAndNoLastLineEnd)
{
    expectRain("! a comment\n\n\tRF grid CELL size\t==\t10 # ten\r\nrf grid size (x,y) == 20 30 ! rows and columns\n"
               "  my rf grid origin == 100,200\n" +
               kTwoHyetographs + "rf interpolation method == polygon\nread gis rf polygons == areas.mif");
}

TEST(RainfallControlCli, TheLastOfARepeatedCommandCounts)
{
    expectRain("RF GRID Cell Size == 3\nRF GRID Size (X,Y) == 999, 999\nRF GRID Origin == 7 7\n"
               "RF Interpolation Method == IDW\nRF Grid Format == NC\nRF Grid Format == asc\n" +
               kWhole);
}

TEST(RainfallControlCli, TheFirstKeyThatACommandHoldsDecides)
{
    // A cell size, though the line names a format and a method too.
    expectRain(kWhole + "RF Interpolation Method, RF Grid Format, RF GRID Cell Size == 10\n");
}

TEST(RainfallControlCli, FormatsAreFoundInTheirOrder)
{
    expectRain(kWhole + "RF Grid Format == ascnc\n");
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWhole + "RF Grid Format == nc flt\n");
    giveAreas(run);
    run.start();
    EXPECT_GRID(run, "rain_total.flt", {{6, 6, 6}, {6, 6, 6}});
    EXPECT_FALSE(run.has("rain.nc"));
}

TEST(RainfallControlCli, MethodsAreFoundInTheirOrder)
{
    expectRain(kWhole + "RF Interpolation Method == idw tin poly\n");
}

TEST(RainfallControlCli, RefusesUnknownCommands)
{
    for (const std::string command :
         {"Read GIS RF Point == areas.mif", "RF GRID == 1", "Polygons", "== 3", "IDW Points == 1"}) {
        expectRefusal(kWhole + "  " + command + " ! so\n",
                      {"ERROR - Unregonised Rainfall control file command: " + command});
    }
}

TEST(RainfallControlCli, RefusesNumbersThatCannotBeRead)
{
    for (const std::string command :
         {"RF GRID Cell Size == ten", "RF GRID Cell Size ==", "RF GRID Size (X,Y) == 20", "RF GRID Size (X,Y) == 20, x",
          "RF GRID Size (N,M) == 2.5 3", "RF GRID Size (N,M) == 2", "RF GRID Origin == 0", "RF GRID Origin == a b",
          "IDW Max Point == 2.5", "IDW Max Distance == far", "IDW Exponent ==", "IDW Exponent == two"}) {
        expectRefusal(kWhole + command + "\n", {"ERROR - Reading line number in rainfall control file: " + command});
    }
}

TEST(RainfallControlCli, RefusesSmallCells)
{
    expectRefusal("RF GRID Cell Size ==  0.0009 \n", {"ERROR - Invalud RF GRID CELL SIZE Option: 0.0009"});
    expectRefusal("RF GRID Cell Size == -10\n", {"ERROR - Invalud RF GRID CELL SIZE Option: -10"});
    expectRefusal("RF GRID Cell Size == 0\n", {"ERROR - Invalud RF GRID CELL SIZE Option: 0"});
}

TEST(RainfallControlCli, ACellOfAThousandthPasses)
{
    // 1.001 / 0.001 is 1001 by 1001 cells; only the header matters here.
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kTwoHyetographs + "RF GRID Cell Size == 0.001\nRF GRID Size (X,Y) == 0.002, 1.001\n"
                                        "RF Interpolation Method == Poly\nRF Grid Format == FLT\n");
    run.start();
    EXPECT_TRUE(run.says("Rainfall Grid Dimensions (N,M): 2,1001"));
    EXPECT_TRUE(run.reachedEnd());
}

TEST(RainfallControlCli, RefusesASizeThatSaysNotWhat)
{
    expectRefusal(kWhole + "RF GRID Size == 20 30\n",
                  {"ERROR - Unregonised RF GRID SIZE Option. Expecting \"(X,Y)\" or \"(N,M)\""});
}

TEST(RainfallControlCli, RefusesUnknownFormats)
{
    expectRefusal(kWhole + "RF Grid Format == tif\n",
                  {"ERROR - Unregonised RF GRID Format Option. Expecting \"ASC\", \"FLT\" or \"NC\""});
    expectRefusal(kWhole + "RF Grid Format ==\n",
                  {"ERROR - Unregonised RF GRID Format Option. Expecting \"ASC\", \"FLT\" or \"NC\""});
}

TEST(RainfallControlCli, RefusesUnknownMethods)
{
    expectRefusal(kWhole + "RF Interpolation Method ==  Kriging \n",
                  {"ERROR - Unregonised RF Interpolation Method Option. Expecting \"POLY\", \"TIN\" or \"IDW\"",
                   "    Found: Kriging"});
}

TEST(RainfallControlCli, NeedsAMethod)
{
    expectRefusal(kRainfallGrid + kTwoHyetographs,
                  {"Finished first processing rf control file.", closedUnit(1001),
                   "ERROR - Rainfall Interpolation method not specified.  Please use \"RF Interpolation Method == \""});
    expectRefusal("",
                  {"ERROR - Rainfall Interpolation method not specified.  Please use \"RF Interpolation Method == \""});
}

// --- Maximum counts --------------------------------------------------------------------------------------------------

TEST(RainfallControlCli, RefusesLimitsThatCannotBeRead)
{
    const std::string message =
        "ERROR - Extracting maximum arrays size as parameter on following line in rainfall control file:";
    expectRefusal("Maximum RF Locations == many\n", {message, "Maximum RF Locations == many"});
    expectRefusal("Maximum Points in Hyetograph ==\n", {message, "Maximum Points in Hyetograph =="});
    expectRefusal("Maximum RF Locations == 99999999999\n", {message, "Maximum RF Locations == 99999999999"});
}

TEST(RainfallControlCli, RefusesMoreHyetographsThanTheMaximum)
{
    const Lines message{"ERROR - Number of rainfall locations exceeds maximum: 1",
                        "   Please specify with \"Maximum RF Locations == \""};
    // The limit holds wherever it stands in the file.
    expectRefusal(kWhole + "Maximum RF Locations == 1\n",
                  joined({{"Number of points in damage curve found: 2"}, message}));
    expectRefusal("Maximum RF Locations == -3\n" + kWhole, {"ERROR - Number of rainfall locations exceeds maximum: -3",
                                                            "   Please specify with \"Maximum RF Locations == \""});
}

TEST(RainfallControlCli, AHundredHyetographsAreTakenAndNoMore)
{
    std::string hyetographs;
    for (int i = 1; i <= 100; ++i) {
        hyetographs += "Rainfall Hyetograph a == a.csv\n";
    }
    expectRain(kRainfallGrid + hyetographs + kPolygons);
    expectRefusal(kRainfallGrid + hyetographs + kTwoHyetographs + kPolygons,
                  {"ERROR - Number of rainfall locations exceeds maximum: 100",
                   "   Please specify with \"Maximum RF Locations == \""});
    expectRain("Maximum RF Locations == 2147483647\nMaximum Points in Hyetograph == 2147483647\n" + kRainfallGrid +
               hyetographs + kTwoHyetographs + kPolygons);
}

TEST(RainfallControlCli, RefusesMorePointsThanTheMaximum)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, "Maximum RF Locations == 2\n" + kWhole + "Read GIS RF Points == gauges.mif\n");
    giveRainfallLayer(run, "gauges", mifPoint("1 1") + mifPoint("2 2") + mifPoint("3 3"), "a,1,1\na,1,1\nno number\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Number of rainfall locations exceeds maximum: 2",
                                       "   Please specify with \"Maximum RF Locations == \""));
    EXPECT_NO_OTHER_FILES(run);
}

// --- The grid --------------------------------------------------------------------------------------------------------

const std::string kNoGrid = kTwoHyetographs + kPolygons;

TEST(RainfallControlCli, NeedsASizeByLengths)
{
    const std::string cell = "RF GRID Cell Size == 10\n";
    expectRefusal(kNoGrid + cell,
                  {"   OK.", "Rainfall Grid Dimensions (N,M): 0,0", "ERROR - Rainfall grid dimensions are invalid."});
    // Numbers of rows and columns alone are not enough.
    expectRefusal(kNoGrid + cell + "RF GRID Size (N,M) == 4 5\n",
                  {"   OK.", "Rainfall Grid Dimensions (N,M): 4,5", "ERROR - Rainfall grid dimensions are invalid."});
    expectRefusal(kNoGrid + cell + "RF GRID Size (N,M) == 4 5\nRF GRID Size (X,Y) == 20, 30\n",
                  {"   OK.", "ERROR - Both \"Grid Size (X,Y) == \" and \"Grid Size (N,M) ==\" specified."});
    expectRefusal(kNoGrid + cell + "RF GRID Size (X,Y) == 20, 1.0\n",
                  {"   OK.", "Rainfall Grid Dimensions (N,M): 0,0", "ERROR - Rainfall grid dimensions are invalid."});
    expectRefusal(kNoGrid + cell + "RF GRID Size (X,Y) == -20, 30\n",
                  {"   OK.", "Rainfall Grid Dimensions (N,M): 0,0", "ERROR - Rainfall grid dimensions are invalid."});
    // 4.9 / 10 rounds to no row.
    expectRefusal(kNoGrid + cell + "RF GRID Size (X,Y) == 4.9, 30\n",
                  {"Determining rainfall grid size.", "Rainfall Grid Dimensions (N,M): 0,3",
                   "ERROR - Rainfall grid dimensions are invalid."});
    expectRefusal(kNoGrid + cell + "RF GRID Size (X,Y) == NaN, NaN\n",
                  {"   OK.", "Rainfall Grid Dimensions (N,M): 0,0", "ERROR - Rainfall grid dimensions are invalid."});
}

TEST(RainfallControlCli, HalvesOfACellRoundAwayFromZero)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kNoGrid + "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 25, 14.9\n");
    giveAreas(run);
    run.start();
    EXPECT_TRUE(run.says("Rainfall Grid Dimensions (N,M): 3,1"));
    EXPECT_EQ(run.grid("rain_total.asc").nrows, 3);
    EXPECT_EQ(run.grid("rain_total.asc").ncols, 1);
    EXPECT_EQ(run.grid("rain_total.asc").xll, 0); // no origin is the origin of the coordinates
}

TEST(RainfallControlCli, RefusesAGridWithoutColumns)
{
    for (const std::string method : {"Poly", "TIN", "IDW", "IDW\nIDW Max Points == 1"}) {
        for (const std::string format : {"ASC", "FLT", "NC"}) {
            // 4.9 / 10 rounds to no column.
            expectRefusal(kTwoHyetographs +
                              "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 20, 4.9\nRF Grid Format == " + format +
                              "\nRF Interpolation Method == " + method + "\n",
                          {"Determining rainfall grid size.", "Rainfall Grid Dimensions (N,M): 2,0",
                           "ERROR - Rainfall grid dimensions are invalid."});
        }
    }
}

TEST(RainfallControlCli, RefusesGridsThatNoMemoryHolds)
{
    if (kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the program over sizes like these";
    }
    // No cell size: every length is without end, and the count of cells stays at the largest integer.
    expectRefusal(kNoGrid + "RF GRID Size (X,Y) == 20, 30\n",
                  {"Rainfall Grid Dimensions (N,M): 2147483647,2147483647",
                   "Allocating memory for rainfall depth and cumulative rainfall depth..",
                   "Memory required: -34359738kB", // 8 (2^31 - 1)^2 is 8 - 2^35 in 64 bits
                   "ERROR - Could not allocate enough memory (RAM)."});
    expectRefusal(kNoGrid + "RF GRID Cell Size == 1\nRF GRID Size (X,Y) == 3e9, 2\n",
                  {"Rainfall Grid Dimensions (N,M): 2147483647,2",
                   "Allocating memory for rainfall depth and cumulative rainfall depth..",
                   "Memory required: 34359738kB", "ERROR - Could not allocate enough memory (RAM)."});
    expectRefusal(kNoGrid + "RF GRID Cell Size == 1\nRF GRID Size (X,Y) == 1e9, 1e9\n",
                  {"Rainfall Grid Dimensions (N,M): 1000000000,1000000000",
                   "Allocating memory for rainfall depth and cumulative rainfall depth..",
                   "Memory required: 8000000000000000kB", "ERROR - Could not allocate enough memory (RAM)."});
}

} // namespace
} // namespace gridforge::test
