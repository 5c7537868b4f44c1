// The polygon method.
#include "support/consoles.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

constexpr double n = -999;

const std::string kCase =
    kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == Polygons\nRead GIS RF Polygon == areas.mif\n";
const std::string kWithPoints = kCase + "Read GIS RF Points == gauges.mif\n";
const std::string kFields = "3 MIF Fields: Name [#/Type]: Name [1/Char(40)]  F1 [2/Float]  F2 [3/Float]  ";

// The south row but for its east cell; and the two eastern columns.
const std::string kSouthWest = mifRectangle("100", "200", "120", "210");
const std::string kEast = mifRectangle("110", "200", "130", "220");
const std::string kWhole = mifRectangle("90", "190", "140", "230");

TEST(RainfallPolygonCli, RainsByAreasAndSumsUp)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas", kSouthWest + kEast, "\"A\",1.5,2\n\" b\",1,1\n");
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {openedOutput("rain_index.csv", 1001),
                               "Using rainfall polygons.",
                               "Allocating memory for polygons.",
                               "Memory required: 0kB",
                               "   Done.",
                               "Searching rainfall control file for polygons: rain.rfc",
                               openedInput("rain.rfc"),
                               openedUnit(1002),
                               "Opening GIS Layer: areas.mif",
                               "GIS Layer assigned ID of 1",
                               openedInput("areas.mif"),
                               openedUnit(1003),
                               openedInput("areas.mid"),
                               openedUnit(1004),
                               kFields,
                               "WARNING - Overlapping rainfall areas.", // the cell that both have
                               "Closing GIS Layer 1 [areas.mif]...",
                               closedUnit(1003),
                               closedUnit(1004),
                               openedOutput("rf_index.asc", 1003),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1003),
                               openedOutput("rf_fac.asc", 1003),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1003),
                               " Finished reading rainfall polygons.",
                               closedUnit(1002),
                               "Processing time: 0.",
                               openedOutput("rain_t0..asc", 1002),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1002),
                               "Processing time: 0.5",
                               openedOutput("rain_t0.5.asc", 1002),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1002),
                               closedUnit(1001),
                               openedOutput("rain_total.asc", 1001),
                               "Writing ASC grid...",
                               "Finished writing ASC grid.",
                               closedUnit(1001),
                               kFinished});
    EXPECT_GRID(run, "rf_index.asc", {{n, 2, 2}, {1, 2, 2}});
    EXPECT_GRID(run, "rf_fac.asc", {{n, 1, 1}, {3, 1, 1}});
    EXPECT_GRID(run, "rain_t0..asc", {{n, 10, 10}, {6, 10, 10}});
    EXPECT_GRID(run, "rain_t0.5.asc", {{n, 20, 20}, {12, 20, 20}});
    // A cell outside all areas is null in the steps and 0 in the total.
    EXPECT_GRID(run, "rain_total.asc", {{0, 30, 30}, {18, 30, 30}});
    for (const std::string name : {"rf_index.asc", "rain_t0..asc", "rain_total.asc"}) {
        const WrittenGrid grid = run.grid(name);
        EXPECT_EQ(grid.xll, 100);
        EXPECT_EQ(grid.yll, 200);
        EXPECT_EQ(grid.cellsize, 10);
        EXPECT_EQ(grid.null, -999);
    }
    EXPECT_EQ(run.read("rain_index.csv"), "0.000,rain_t0..asc\r\n0.500,rain_t0.5.asc\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RainfallPolygonCli, OverlapWarnsOnceForEachSharedCell)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas", kWhole + kEast, "a,1,1\nb,1,1\n");
    run.start();
    const std::string warning = "WARNING - Overlapping rainfall areas.";
    EXPECT_CONSOLE_HOLDS(run, {kFields, warning, warning, warning, warning, "Closing GIS Layer 1 [areas.mif]..."});
    EXPECT_GRID(run, "rf_index.asc", {{1, 2, 2}, {1, 2, 2}});
}

TEST(RainfallPolygonCli, TheTablesHaveThreeDecimalsWhateverTheGridsHave)
{
    ToolRun run("-b -rf rain.rfc -decimal1");
    giveRainfall(run, kCase + "RF Grid Format == ASC\n");
    giveRainfallLayer(run, "areas", kWhole, "a,1.23456,1\n");
    run.start();
    EXPECT_THAT(run.read("rf_fac.asc"), testing::HasSubstr(" 1.235 "));
    EXPECT_THAT(run.read("rain_t0..asc"), testing::HasSubstr("  2.5  2.5  2.5\r\n"));
}

TEST(RainfallPolygonCli, AnAreaBesideTheGridIsPassedOver)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas",
                      mifRectangle("160", "200", "180", "220") + mifRectangle("100", "150", "130", "180") +
                          mifRectangle("-1e300", "-1e300", "-1e200", "-1e200"),
                      "a,1,1\nb,1,1\na,1,1\n");
    run.start();
    EXPECT_GRID(run, "rf_index.asc", {{n, n, n}, {n, n, n}});
    EXPECT_GRID(run, "rain_total.asc", {{0, 0, 0}, {0, 0, 0}});
}

TEST(RainfallPolygonCli, WithoutLayersItNeverRains)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == Poly\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Searching rainfall control file for polygons: rain.rfc", openedInput("rain.rfc"),
                               openedUnit(1002), openedOutput("rf_index.asc", 1003)});
    EXPECT_GRID(run, "rain_t0..asc", {{n, n, n}, {n, n, n}});
}

TEST(RainfallPolygonCli, TellsTheMemoryOfItsTables)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, "RF GRID Cell Size == 10\nRF GRID Size (X,Y) == 1000, 1000\nRF GRID Origin == 100 200\n" +
                          kTwoHyetographs + "RF Interpolation Method == Poly\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Allocating memory for polygons.", "Memory required: 80kB", "   Done."}); // 10000 * 8
}

TEST(RainfallPolygonCli, OtherObjectsArePassedOver)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas", mifPoint("1 1") + "Line 1 1 2 2\n" + kWhole, "x,1,1\nx,1,1\nb,2,1\n");
    run.start();
    const std::string warning = "WARNING - Object is not a polygon and is being skipped.";
    EXPECT_CONSOLE_HOLDS(run, {kFields, warning, warning, "Closing GIS Layer 1 [areas.mif]..."});
    EXPECT_GRID(run, "rain_t0..asc", {{20, 20, 20}, {20, 20, 20}});
}

TEST(RainfallPolygonCli, FactorsOfNothingBecomeOne)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas", kWhole, "a,0,0.0009\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"WARNING - F1 rainfall factor of 0 set to 1. RF Name: a",
                               "WARNING - F2 rainfall factor of 0 set to 1. RF Name: a"});
    EXPECT_GRID(run, "rf_fac.asc", {{1, 1, 1}, {1, 1, 1}});
}

TEST(RainfallPolygonCli, AnUnknownNameKeepsTheHyetographOfTheAreaBefore)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    // First without any before: the cells are marked with 0, which is no rain and no overlap either.
    giveRainfallLayer(run, "areas", kWhole + kSouthWest + kEast, "gone,1,1\nb,1,1\nlost,2,1\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"ERROR - Could not find rainfall hyetogpraph with name: gone",
                               "ERROR - Could not find rainfall hyetogpraph with name: lost",
                               "WARNING - Overlapping rainfall areas.", "Closing GIS Layer 1 [areas.mif]..."});
    EXPECT_GRID(run, "rf_index.asc", {{0, 2, 2}, {2, 2, 2}});
    EXPECT_GRID(run, "rain_t0..asc", {{n, 20, 20}, {10, 20, 20}});
    EXPECT_GRID(run, "rain_total.asc", {{0, 60, 60}, {30, 60, 60}});
}

TEST(RainfallPolygonCli, RefusesRegionsOfSeveralRings)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "areas", "Region  2\n  4\n0 0\n9 0\n0 9\n0 0\n  4\n1 1\n2 1\n1 2\n1 1\n    Pen (1,2,0)\n",
                      "a,1,1\n");
    expectRefusal(run,
                  {"ERROR - Multiple region objects not yet supported for rainfall polygons.  Please disaggregate / "
                   "remove holes."});
}

TEST(RainfallPolygonCli, RefusesRecordsThatCannotBeRead)
{
    for (const std::string record : {"a,x,1", "a,1", "a", "\"a\",1,\"1\""}) {
        ToolRun run("-b -rf rain.rfc");
        giveRainfall(run, kCase);
        giveRainfallLayer(run, "areas", kWhole, record + "\n");
        expectRefusal(run, {"ERROR - Extracting attribute data for GIS object.  Data: " + record});
    }
}

// --- Areas without a name --------------------------------------------------------------------------------------------

TEST(RainfallPolygonCli, AnAreaWithoutANameTakesThatOfThePointInside)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "gauges", mifPoint("150 205") + mifPoint("115 215"), "a,1,1\nb,3,0.5\n");
    giveRainfallLayer(run, "areas", kWhole, "\"\",7,7\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {kFields, "Closing GIS Layer 1 [areas.mif]..."}); // no warning
    EXPECT_GRID(run, "rain_t0..asc", {{15, 15, 15}, {15, 15, 15}});             // 10 * (3 * 0.5)
}

TEST(RainfallPolygonCli, OfSeveralPointsInsideTheLastCounts)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "gauges", mifPoint("105 205") + mifPoint("115 215") + mifPoint("125 205"),
                      "b,1,1\nb,2,1\na,4,1\n");
    giveRainfallLayer(run, "areas", kWhole, ",1,1\n");
    run.start();
    const std::string warning = "WARNING - More than one rainfall point inside region.";
    EXPECT_CONSOLE_HOLDS(run, {kFields, warning, warning, "Closing GIS Layer 1 [areas.mif]..."});
    EXPECT_GRID(run, "rain_t0..asc", {{8, 8, 8}, {8, 8, 8}});
}

TEST(RainfallPolygonCli, RefusesAnAreaWithoutANameAndWithoutAPoint)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "gauges", mifPoint("150 205"), "a,1,1\n");
    giveRainfallLayer(run, "areas", kWhole, "\"\",1,1\n");
    expectRefusal(run, {"ERROR - No rainfall points inside region."});
}

TEST(RainfallPolygonCli, RefusesAPointInsideWithoutAName)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "gauges", mifPoint("115 205"), "\"\",1,1\n");
    giveRainfallLayer(run, "areas", kWhole, "\"\",1,1\n");
    expectRefusal(run, {"ERROR - No Rainfall name for polygon / point."});
}

// --- The points ------------------------------------------------------------------------------------------------------

TEST(RainfallPointsCli, TellsHowALayerIsRead)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "areas", kWhole, "a,1,1\n");
    giveRainfallLayer(run, "gauges", mifPoint("105 205") + "Line 1 1 2 2\n" + mifPoint("115 215"),
                      "a,0,1\nx,1,1\n\"b c\",1,-3\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, joined({{"Read rainfall points data from GIS file: gauges.mif"},
                     openedMif("gauges", 1, 1002),
                     {kFields, "WARNING - F1 rainfall factor of 0 set to 1. RF Name: a",
                      "WARNING - Object is not a point and is being skipped.",
                      "WARNING - F2 rainfall factor of 0 set to 1. RF Name: b c", " Finished reading rainfall points."},
                     closedMif("gauges", 1, 1002),
                     {"Finished first processing rf control file."}}));
}

TEST(RainfallPointsCli, RefusesRecordsThatCannotBeRead)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "gauges", mifPoint("105 205"), "a,one,1\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Extracting attribute data for GIS object.  Data: a,one,1"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RainfallPointsCli, QuotesInTheNameOfATableDoNotHideItsFactors)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + "Rainfall Hyetograph Mill, east == a.csv\nRainfall Hyetograph b == b.csv\n" +
                          "RF Interpolation Method == IDW\nRead GIS RF Points == gauges.shp\n");
    giveShapefile(run, "gauges", 1,
                  {.objects = {pointRecord(95, 205), pointRecord(135, 205)},
                   .columns = {{"NAME", 'C', 13}, {"F1", 'N', 1}, {"F2", 'N', 1}},
                   .values = {"\"Mill\", east 02", "b            11"}});
    run.start();
    EXPECT_TRUE(run.says("WARNING - F1 rainfall factor of 0 set to 1. RF Name: \"Mill\", east"));
    EXPECT_TRUE(run.reachedEnd());
}

TEST(RainfallPointsCli, ACommaAtTheEndOfARecordHoldsAnEmptyFactor)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kWithPoints);
    giveRainfallLayer(run, "areas", kWhole, "a,2,\n");
    giveRainfallLayer(run, "gauges", mifPoint("105 205"), "\"b\",3,\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(
        run, {kFields, "WARNING - F2 rainfall factor of 0 set to 1. RF Name: b", " Finished reading rainfall points."});
    EXPECT_CONSOLE_HOLDS(run, {kFields, "WARNING - F2 rainfall factor of 0 set to 1. RF Name: a"});
    EXPECT_TRUE(run.reachedEnd());

    ToolRun empty("-b -rf rain.rfc");
    giveRainfall(empty, kWithPoints);
    giveRainfallLayer(empty, "gauges", mifPoint("105 205"), "\n");
    empty.start();
    EXPECT_CONSOLE_HOLDS(empty, errorEnd("ERROR - Extracting attribute data for GIS object.  Data: "));
}

TEST(RainfallPointsCli, ALayerWithoutANameEndsTheRun)
{
    for (const std::string command : {"Read GIS RF Points ==", "Read GIS RF Points", "Read GIS RF Polygon =="}) {
        ToolRun run("-b -rf rain.rfc");
        giveRainfall(run, kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == Poly\n" + command + "\n");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_TRUE(run.says(kClose));
        EXPECT_FALSE(run.has("rain_total.asc"));
    }
}

} // namespace
} // namespace gridforge::test
