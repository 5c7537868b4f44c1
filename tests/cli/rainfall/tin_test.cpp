// The TIN method.
#include "support/consoles.h"
#include "support/rainfall_files.h"
#include "support/shp_bytes.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

constexpr double n = -999;

const std::string kMethod = "RF Interpolation Method == TIN\nRead GIS RF Points == gauges.mif\n"
                            "Read GIS RF Triangle == triangles.mif\n";
const std::string kCase = kRainfallGrid + kThreeHyetographs + kMethod;

// At the centres of the cells in the south-west, south-east and north-west corner.
const std::string kGauges = mifPoint("105 205") + mifPoint("125 205") + mifPoint("105 215");
const std::string kTriangle = mifRegion(4, "105 205\n125 205\n105 215\n105 205\n");

void giveCase(ToolRun& run, const std::string& records)
{
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "gauges", kGauges, records);
    giveRainfallLayer(run, "triangles", kTriangle, "x,1,1\n");
}

TEST(RainfallTinCli, InterpolatesBetweenThePointsOfATriangle)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(
        run,
        joined({{"Using rainfall TIN interpolation.", "Allocating memory for tin interpolation factors.",
                 "Memory required: 0kB", "   Done.", "Allocating memory for storing tin.", "Memory required: 36kB",
                 "   Done.", "Finding hyetographs for points.", "   Done", "Allocating array for storing distances.",
                 "   Done.", "Searching rainfall control file for triangles: rain.rfc", openedInput("rain.rfc"),
                 openedUnit(1002)},
                openedMif("triangles", 1, 1003),
                {"3 MIF Fields: Name [#/Type]: Name [1/Char(40)]  F1 [2/Float]  F2 [3/Float]  "},
                closedMif("triangles", 1, 1003),
                {" Finished reading rainfall polygons.",
                 closedUnit(1002),
                 "Calculating grid interpolation factors...",
                 "Element: ",
                 "Finished calculating grid interpolation factors.",
                 "   Done.",
                 openedOutput("rf_giit.asc", 1002),
                 "Writing ASC grid...",
                 "Finished writing ASC grid.",
                 closedUnit(1002),
                 "Processing time: 0.",
                 "placeholder",
                 "placeholder",
                 "placeholder",
                 openedOutput("rain_t0..asc", 1002),
                 "Writing ASC grid...",
                 "Finished writing ASC grid.",
                 closedUnit(1002),
                 "Processing time: 0.5",
                 "placeholder"}}));
    // All vertices lie at cell centres, and their cells are in.
    EXPECT_GRID(run, "rf_giit.asc", {{1, 0, 0}, {1, 1, 1}});
    EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {2, 6, 10}});
    EXPECT_GRID(run, "rain_t0.5.asc", {{30, n, n}, {4, 12, 20}});
    EXPECT_GRID(run, "rain_total.asc", {{36, 0, 0}, {6, 18, 30}});
    EXPECT_EQ(run.read("rain_index.csv"), "0.000,rain_t0..asc\r\n0.500,rain_t0.5.asc\r\n");
    EXPECT_NO_OTHER_FILES(run);
}

TEST(RainfallTinCli, FactorsScaleThePoints)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,2,3\nb,0.5,0.5\nc,1,1\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {12, 7.25, 2.5}});
}

TEST(RainfallTinCli, AVertexReadsTheValueOfThePointWithTheNumberOfItsHyetograph)
{
    ToolRun run("-b -rf rain.rfc");
    // The values of points 1, 2 and 3 are 6, 10 and 4. Their hyetographs are 3, 2 and 1: the vertices read 4, 10 and 6.
    giveCase(run, "c,1,1\nb,1,1\na,2,1\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {4, 7, 10}});
}

TEST(RainfallTinCli, AHyetographWithoutAPointOfItsNumberReadsNothing)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kThreeHyetographs + "Rainfall Hyetograph d == a.csv\n" + kMethod);
    giveRainfallLayer(run, "gauges", kGauges, "a,1,1\nb,1,1\nd,1,1\n"); // hyetograph 4 of three points
    giveRainfallLayer(run, "triangles", kTriangle, "x,1,1\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{0, n, n}, {2, 6, 10}});
}

TEST(RainfallTinCli, TheLastOfTwoTrianglesHasTheCell)
{
    ToolRun run("-b -rf rain.rfc -decimal0");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "gauges", kGauges, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles", kTriangle + mifRegion(4, "125 205\n105 215\n105 205\n125 205\n"),
                      "x,1,1\nx,1,1\n");
    run.start();
    EXPECT_GRID(run, "rf_giit.asc", {{2, 0, 0}, {2, 2, 2}});
    EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {2, 6, 10}});
    EXPECT_EQ(run.read("rf_giit.asc").find(".0"), run.read("rf_giit.asc").rfind(".0")); // only that of the null
}

TEST(RainfallTinCli, ReadsShapefiles)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kThreeHyetographs +
                          "RF Interpolation Method == TIN\nRead GIS RF Points == gauges.shp\n"
                          "Read GIS RF Triangles == triangles.shp\n");
    giveShapefile(run, "gauges", 1,
                  {.objects = {pointRecord(105, 205), pointRecord(125, 205), pointRecord(105, 215)},
                   .columns = {{"NAME", 'C', 1}, {"F1", 'N', 1}, {"F2", 'N', 1}},
                   .values = {"a11", "b11", "c11"}});
    giveShapefile(run, "triangles", 5,
                  {.objects = {partsRecord(5, {0}, {105, 205, 105, 215, 125, 205, 105, 205})},
                   .columns = {{"NAME", 'C', 1}},
                   .values = {"x"}});
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {2, 6, 10}});
    EXPECT_FALSE(run.has("rain_t0..prj"));
}

TEST(RainfallTinCli, OtherObjectsArePassedOver)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles", mifPoint("1 1") + kTriangle, "x,1,1\nx,1,1\n");
    run.start();
    EXPECT_TRUE(run.says("WARNING - Object is not a polygon and is being skipped."));
    EXPECT_GRID(run, "rf_giit.asc", {{1, 0, 0}, {1, 1, 1}});
}

TEST(RainfallTinCli, RefusesAPointWithoutAHyetograph)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nnobody,1,1\nc,1,1\n");
    expectRefusal(run,
                  {"Finding hyetographs for points.", "ERROR - Could not find rainfall hyetogpraph with name: nobody"});
}

TEST(RainfallTinCli, RefusesWhatIsNoTriangle)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles", mifRectangle("105", "205", "125", "215"), "x,1,1\n");
    expectRefusal(run, {"ERROR - Polygon object is not a triangle."});
}

TEST(RainfallTinCli, RefusesTrianglesOfSeveralRings)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles",
                      "Region  2\n  4\n0 0\n9 0\n0 9\n0 0\n  4\n1 1\n2 1\n1 2\n1 1\n    Pen (1,2,0)\n", "a,1,1\n");
    expectRefusal(run,
                  {"ERROR - Multiple region objects not yet supported for rainfall polygons.  Please disaggregate / "
                   "remove holes."});
}

TEST(RainfallTinCli, RefusesAVertexWithoutAPoint)
{
    const std::string message = "ERROR - No point found snapped to triangle vertex";
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles", mifRegion(4, "105 205\n125.002 205\n105 215\n105 205\n"), "x,1,1\n");
    expectRefusal(run, {message});

    ToolRun without("-b -rf rain.rfc");
    giveRainfall(without, kRainfallGrid + kThreeHyetographs +
                              "RF Interpolation Method == TIN\nRead GIS RF Triangle == triangles.mif\n");
    giveRainfallLayer(without, "triangles", kTriangle, "x,1,1\n");
    expectRefusal(without, {message});
}

TEST(RainfallTinCli, AVertexWithinAThousandthIsSnapped)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
    giveRainfallLayer(run, "triangles", mifRegion(4, "105 205\n125.0009 205\n105 215\n105 205\n"), "x,1,1\n");
    run.start();
    EXPECT_GRID(run, "rf_giit.asc", {{1, 0, 0}, {1, 1, 1}});
}

std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

TEST(RainfallTinCli, TakesAThousandTrianglesAndNoMore)
{
    for (const int count : {1000, 1001}) {
        ToolRun run("-b -rf rain.rfc");
        giveCase(run, "a,1,1\nb,1,1\nc,1,1\n");
        giveRainfallLayer(run, "triangles", repeated(kTriangle, count), repeated("x,1,1\n", count));
        if (count > 1000) {
            expectRefusal(run, {"ERROR - Number of rainfall triangles exceeds maximum: 1000"});
        } else {
            run.start();
            EXPECT_GRID(run, "rf_giit.asc", {{1000, 0, 0}, {1000, 1000, 1000}});
        }
    }
}

TEST(RainfallTinCli, TakesAThousandPointsAndNoMore)
{
    for (const int more : {997, 998}) {
        ToolRun run("-b -rf rain.rfc");
        giveCase(run, "a,1,1\nb,1,1\nc,1,1\n" + repeated("c,1,1\n", more));
        run.give("rain.rfc", "Maximum RF Locations == 5000\n" + kCase);
        giveRainfallLayer(run, "gauges", kGauges + repeated(mifPoint("1 1"), more),
                          "a,1,1\nb,1,1\nc,1,1\n" + repeated("c,1,1\n", more));
        if (more > 997) {
            expectRefusal(run, {"ERROR - Number of rainfall TIN points exceeds maximum: 1000"});
        } else {
            run.start();
            EXPECT_GRID(run, "rain_t0..asc", {{6, n, n}, {2, 6, 10}});
        }
    }
}

} // namespace
} // namespace gridforge::test
