// The IDW method.
#include "support/consoles.h"
#include "support/rainfall_files.h"
#include "support/sanitizers.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

// Ten metres west and ten metres east of the south row's centres: 10, 20, 30 m from them, and back.
const std::string kGauges = mifPoint("95 205") + mifPoint("135 205");

const std::string kCase =
    kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\n";

void giveCase(ToolRun& run, const std::string& more)
{
    giveRainfall(run, kCase + more);
    giveRainfallLayer(run, "gauges", kGauges, "a,1,1\nb,1,1\n");
}

TEST(RainfallIdwCli, WeighsAllPointsByTheSquareOfTheDistance)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "");
    run.start();
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE_HOLDS(run, {"Using rainfall IDW interpolation.",
                               "Maximum number of points in IDW interpolation not specified, using all 2 points",
                               "Not using maximum distance.", "Exponent for IDW interpolation: 2.",
                               "Allocating memory for IDW interpolation factors.",
                               "Memory required: 0kB", // 6 cells * (1 + 2) * 8 bytes
                               "   Done.", "Finding hyetographs for points.", "   Done",
                               "Setting IDW weighting factors for rainfall grid", "Done", "Processing time: 0.",
                               openedOutput("rain_t0..asc", 1002)});
    // South-west: (2 / 10^2 + 10 / 30^2) / (1 / 10^2 + 1 / 30^2) = 2.8; the middle is half way; north-west:
    // squares of distances 200 and 1000: (2 / 200 + 10 / 1000) / (1 / 200 + 1 / 1000) = 3.3333.
    EXPECT_GRID(run, "rain_t0..asc", {{3.333, 6, 8.667}, {2.8, 6, 9.2}});
    EXPECT_GRID(run, "rain_total.asc", {{10, 18, 26}, {8.4, 18, 27.6}});
    EXPECT_EQ(run.read("rain_index.csv"), "0.000,rain_t0..asc\r\n0.500,rain_t0.5.asc\r\n");
    EXPECT_THAT(run.otherFiles(), testing::ElementsAre("rain_t0.5.asc"));
}

TEST(RainfallIdwCli, AnotherExponent)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Exponent == 1\n");
    run.start();
    EXPECT_TRUE(run.says("Exponent for IDW interpolation: 1."));
    // South: (2 / 10 + 10 / 30) / (1 / 10 + 1 / 30) = 4. North: distances 14.142 and 31.623.
    EXPECT_GRID(run, "rain_t0..asc", {{4.472, 6, 7.528}, {4, 6, 8}});
}

TEST(RainfallIdwCli, FactorsScaleThePoints)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase + "IDW Exponent == 1\n");
    giveRainfallLayer(run, "gauges", kGauges, "a,2,3\nb,0.5,0.8\n"); // 12 and 4
    run.start();
    EXPECT_EQ(run.grid("rain_t0..asc").cells[1], (std::vector<double>{10, 8, 6}));
}

TEST(RainfallIdwCli, MoreAllowedPointsThanThereAreMeansAll)
{
    for (const std::string count : {"2", "3", "2000000000"}) {
        ToolRun run("-b -rf rain.rfc");
        giveCase(run, "IDW Exponent == 1\nIDW Max Points == " + count + "\n");
        run.start();
        EXPECT_TRUE(run.says("Using all 2 points in IDW interpolation."));
        EXPECT_GRID(run, "rain_t0..asc", {{4.472, 6, 7.528}, {4, 6, 8}});
    }
}

TEST(RainfallIdwCli, TheNearestPointsOnly)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Max Point == 1\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Maximum points in IDW interpolation: 1", "Not using maximum distance.",
                               "Exponent for IDW interpolation: 2.", "Allocating memory for IDW interpolation factors.",
                               "Memory required: 0kB", "   Done."});
    EXPECT_GRID(run, "rain_t0..asc", {{2, 2, 10}, {2, 2, 10}}); // of two equally far the first
}

TEST(RainfallIdwCli, TellsTheMemoryOfBothForms)
{
    const std::string grid = "RF GRID Size (X,Y) == 1000, 1000\n"; // 10000 cells
    ToolRun all("-b -rf rain.rfc");
    giveCase(all, grid);
    all.start();
    EXPECT_TRUE(all.says("Memory required: 240kB")); // 10000 * (1 + 2) * 8
    ToolRun subset("-b -rf rain.rfc");
    giveCase(subset, grid + "IDW Max Points == 1\n");
    subset.start();
    EXPECT_TRUE(subset.says("Memory required: 240kB")); // 10000 * ((3 + 1) + 2) * 4
    EXPECT_TRUE(subset.says("Memory required: 80kB"));  // of the two grids
}

TEST(RainfallIdwCli, PointsBeyondTheMaximumDistanceDoNotCount)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Max Distance == 25\n");
    run.start();
    EXPECT_TRUE(run.says("Maximum distance for IDW interpolation: 25."));
    EXPECT_GRID(run, "rain_t0..asc", {{2, 6, 10}, {2, 6, 10}});
}

TEST(RainfallIdwCli, ACellWithoutPointsIsNotANumber)
{
    for (const std::string points : {"", "IDW Max Points == 1\n"}) {
        ToolRun run("-b -rf rain.rfc");
        giveCase(run, points + "IDW Max Distance == 12\nRF Grid Format == ASC\n");
        run.start();
        for (const std::string name : {"rain_t0..asc", "rain_total.asc"}) {
            const WrittenGrid grid = run.grid(name);
            EXPECT_FALSE(std::isnan(grid.cells[1][0])) << name;
            EXPECT_TRUE(std::isnan(grid.cells[1][1])) << name;
            EXPECT_TRUE(std::isnan(grid.cells[0][0])) << name;
        }
        EXPECT_THAT(run.read("rain_total.asc"), testing::HasSubstr("     NaN     NaN     NaN\r\n"));
    }
}

TEST(RainfallIdwCli, ADistanceOfLessThanAThousandthIsNoLimit)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Exponent == 1\nIDW Max Distance == 0.0005\n");
    run.start();
    EXPECT_TRUE(run.says("Not using maximum distance."));
    EXPECT_GRID(run, "rain_t0..asc", {{4.472, 6, 7.528}, {4, 6, 8}});
}

TEST(RainfallIdwCli, AThousandthItselfIsAnnouncedButNoLimit)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Exponent == 1\nIDW Max Distance == 0.001\n");
    run.start();
    EXPECT_TRUE(run.says("Maximum distance for IDW interpolation: 0.001"));
    EXPECT_GRID(run, "rain_t0..asc", {{4.472, 6, 7.528}, {4, 6, 8}});
}

TEST(RainfallIdwCli, ACellOnAPointIsNotANumber)
{
    for (const std::string points : {"", "IDW Max Points == 1\n"}) {
        ToolRun run("-b -rf rain.rfc");
        giveRainfall(run, kCase + points + "RF Grid Format == FLT\n");
        giveRainfallLayer(run, "gauges", mifPoint("105 205") + mifPoint("135 205"), "a,1,1\nb,1,1\n");
        run.start();
        EXPECT_TRUE(std::isnan(run.grid("rain_t0..flt").cells[1][0]));
        EXPECT_TRUE(std::isnan(run.grid("rain_total.flt").cells[1][0]));
        EXPECT_FALSE(std::isnan(run.grid("rain_total.flt").cells[1][1]));
    }
}

TEST(RainfallIdwCli, EmptyRecordsWeighWhereHyetographsOutnumberPoints)
{
    ToolRun run("-b -rf rain.rfc");
    giveCase(run, "IDW Exponent == 1\nRainfall Hyetograph c == c.csv\n");
    run.start();
    EXPECT_TRUE(run.says("Maximum number of points in IDW interpolation not specified, using all 3 points"));
    // The third stands at (0, 0), sqrt(115^2 + 205^2) = 235.053 m from the middle of the south row:
    // (2 / 20 + 10 / 20) / (1 / 20 + 1 / 20 + 1 / 235.053) = 5.755.
    EXPECT_EQ(run.grid("rain_t0..asc").cells[1][1], 5.755);
}

TEST(RainfallIdwCli, WithoutPointsOnlyTheEmptyRecordsWeigh)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == IDW\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{0, 0, 0}, {0, 0, 0}});

    ToolRun none("-b -rf rain.rfc");
    giveRainfall(none, kRainfallGrid + kTwoHyetographs + "RF Interpolation Method == IDW\nIDW Max Points == 4\n");
    none.start();
    EXPECT_TRUE(none.says("Using all 0 points in IDW interpolation."));
    EXPECT_TRUE(std::isnan(none.grid("rain_t0..asc").cells[0][0]));
}

TEST(RainfallIdwCli, TakesThePointsOfSeveralLayers)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase + "IDW Exponent == 1\nRead GIS RF Points == more.mif\n");
    giveRainfallLayer(run, "gauges", mifPoint("95 205"), "a,1,1\n");
    giveRainfallLayer(run, "more", mifPoint("135 205"), "b,1,1\n");
    run.start();
    EXPECT_GRID(run, "rain_t0..asc", {{4.472, 6, 7.528}, {4, 6, 8}});
}

TEST(RainfallIdwCli, RefusesAPointWithoutAHyetograph)
{
    ToolRun run("-b -rf rain.rfc");
    giveRainfall(run, kCase);
    giveRainfallLayer(run, "gauges", kGauges, "a,1,1\nnobody,1,1\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("Finding hyetographs for points.",
                                       "ERROR - Could not find rainfall hyetogpraph with name: nobody"));
}

TEST(RainfallIdwCli, RefusesWeightsThatNoMemoryHolds)
{
    if (kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the program over sizes like these";
    }
    // 40 million cells are had, a hundred thousand weights in each are not.
    ToolRun run("-b -rf rain.rfc");
    std::string points;
    std::string records;
    for (int i = 0; i < 101; ++i) {
        points += mifPoint("1 1");
        records += "a,1,1\n";
    }
    giveRainfall(run, "Maximum RF Locations == 101\n" + kTwoHyetographs +
                          "RF GRID Cell Size == 1\nRF GRID Size (X,Y) == 20000, 20000\nIDW Max Points == 100\n"
                          "RF Interpolation Method == IDW\nRead GIS RF Points == gauges.mif\n");
    giveRainfallLayer(run, "gauges", points, records);
    run.start();
    // 4e8 * ((3 + 100) + 200) * 4 is 113 * 2^32 less 531304448: the figure wraps at 32 bits.
    EXPECT_CONSOLE_HOLDS(run,
                         errorEnd("Memory required: -531304kB", "ERROR - Could not allocate enough memory (RAM)."));
}

} // namespace
} // namespace gridforge::test
