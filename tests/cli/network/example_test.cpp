// The example of the documents, on a slope in place of its ground.
#include "support/network_layers.h"
#include "support/paths.h"
#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

TEST(NetworkExample, RiverAndBrookAreSplitAtTheirSections)
{
    ToolRun run("-b -nbc network/valley.nbc");
    for (const auto& file : std::filesystem::directory_iterator(sourceFolder() + "/examples/network")) {
        run.give("network/" + file.path().filename().string(), readWhole(file.path()));
    }
    run.give("network/csv/.keep", "");
    // Each column of 100 m has its own height.
    Cells slope(18, std::vector<double>(24));
    for (auto& row : slope) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            row[column] = static_cast<double>(column) + 1;
        }
    }
    run.give("ground.asc", ascGrid(slope, {.xll = 293000, .yll = 6178000, .cellsize = 100}));
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_THAT(run.console(), testing::Not(testing::HasSubstr("ERROR")));
    EXPECT_THAT(run.console(), testing::Not(testing::HasSubstr("WARNING")));
    EXPECT_TRUE(run.says("Found 13 cross-sections."));
    // Nine sections split the river, both ends among them: eight lines. The brook's three, one at its start: three with
    // its end. And the connector.
    const std::string network = run.read("network/1d_nwk_valley.mid");
    EXPECT_EQ(std::ranges::count(network, '\n'), 8 + 3 + 1);
    EXPECT_THAT(network,
                testing::HasSubstr("\"River_00000\",\"S\",\"F\",\"F\",0.000,0.035,-99999.000,-99999.000,0.150"));
    EXPECT_THAT(network, testing::HasSubstr("\"Brook_00213\""));
    const std::string sections = run.read("network/1d_xs_valley.mid");
    EXPECT_EQ(std::ranges::count(sections, '\n'), 13);
    EXPECT_TRUE(run.has("network/mouth.csv"));
    EXPECT_TRUE(run.has("network/csv/River_441.286.csv"));
    EXPECT_TRUE(run.has("network/valley.nbc_check.mif"));
}

} // namespace
} // namespace gridforge::test
