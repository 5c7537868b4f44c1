// The example of the documents.
#include "support/paths.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

void runExample(ToolRun& run)
{
    for (const auto& file : std::filesystem::directory_iterator(sourceFolder() + "/examples/rainfall")) {
        run.give("rainfall/" + file.path().filename().string(), readWhole(file.path()));
    }
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.console().find("WARNING"), std::string::npos);
    EXPECT_EQ(run.console().find("ERROR"), std::string::npos);
}

// Cells of 25 m from the south-west, from 0, in a grid of 72 rows.
double cellAt(const WrittenGrid& grid, int east, int north)
{
    EXPECT_EQ(grid.nrows, 72);
    EXPECT_EQ(grid.ncols, 96);
    const auto row = static_cast<std::size_t>(71 - north / 25);
    return grid.cells.at(row).at(static_cast<std::size_t>(east / 25));
}

TEST(RainfallExample, ByPolygonsRainsWhatTheNearestGaugeReads)
{
    ToolRun run("-b -rf rainfall/polygons.rfc");
    runExample(run);
    const WrittenGrid hour = run.grid("rainfall/polygons_t4..asc");
    EXPECT_EQ(cellAt(hour, 10, 10), 3);
    EXPECT_EQ(cellAt(hour, 1210, 910), 8);
    EXPECT_EQ(cellAt(hour, 2390, 1790), 15);
    EXPECT_EQ(cellAt(hour, 2390, 10), 12);
    const WrittenGrid total = run.grid("rainfall/polygons_total.asc");
    EXPECT_EQ(cellAt(total, 10, 1790), 4 + 12 + 9 + 3 + 1 + 0);
    EXPECT_EQ(cellAt(total, 1210, 910), 1 + 6 + 14 + 8 + 3 + 1);
    for (const auto& row : total.cells) {
        for (const double cell : row) {
            EXPECT_GT(cell, 0); // no cell slips through between two areas
        }
    }
}

TEST(RainfallExample, ByATinRainsInBetween)
{
    ToolRun run("-b -rf rainfall/tin.rfc");
    runExample(run);
    const WrittenGrid hour = run.grid("rainfall/tin_t4..asc");
    EXPECT_EQ(cellAt(hour, 10, 10), -999);
    // Half way between Town (1200, 900) with 8 and Weir (2050, 1500) with 15; the centre is within a cell of there.
    EXPECT_NEAR(cellAt(hour, 1625, 1200), 11.5, 0.2);
    EXPECT_NEAR(cellAt(hour, 1200, 900), 8, 0.2);
}

TEST(RainfallExample, ByDistanceRainsEverywhere)
{
    ToolRun run("-b -rf rainfall/idw.rfc");
    runExample(run);
    const WrittenGrid hour = run.grid("rainfall/idw_t4..asc");
    for (const auto& row : hour.cells) {
        for (const double cell : row) {
            EXPECT_GE(cell, 3);
            EXPECT_LE(cell, 15);
        }
    }
    EXPECT_NEAR(cellAt(hour, 2050, 1500), 15, 0.05);
}

} // namespace
} // namespace gridforge::test
