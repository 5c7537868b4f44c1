// Remaps of real terrains, where they are there.
#include "support/paths.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

std::string fileText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

struct Place {
    const char* name;
    const char* coarse; // levels of the coarse model
};

struct RemapReal : testing::TestWithParam<Place> {
    void SetUp() override
    {
        if (!fs::exists(data() / "dem.asc")) {
            GTEST_SKIP() << "no data in " << data();
        }
        terrain = fileText(data() / "dem.asc");
        levels = fileText(data() / GetParam().coarse);
    }
    static fs::path data() { return fs::path(dataFolder()) / GetParam().name; }

    void give(ToolRun& run) const
    {
        run.give("dem.asc", terrain);
        run.give("wl.asc", levels);
    }

    std::string terrain;
    std::string levels;
};

// Cells of an .asc in the form of the data, by plain means.
WrittenGrid readPlainAsc(const std::string& text)
{
    WrittenGrid grid;
    std::istringstream in(text);
    std::string key;
    in >> key >> grid.ncols >> key >> grid.nrows >> key >> grid.xll >> key >> grid.yll >> key >> grid.cellsize >> key >>
        grid.null;
    grid.cells.assign(static_cast<std::size_t>(grid.nrows), std::vector<double>(static_cast<std::size_t>(grid.ncols)));
    for (auto& line : grid.cells) {
        for (double& cell : line) {
            in >> cell;
        }
    }
    EXPECT_TRUE(in) << "the data are not as expected";
    return grid;
}

// Depth is level less ground, never below 0, and both are null together.
void expectDepthsFit(const WrittenGrid& level, const WrittenGrid& depth, const WrittenGrid& ground, double& wetShare)
{
    std::size_t wet = 0;
    ASSERT_EQ(level.cells.size(), ground.cells.size());
    for (std::size_t r = 0; r < ground.cells.size(); ++r) {
        for (std::size_t c = 0; c < ground.cells[r].size(); ++c) {
            const double h = level.cells[r][c];
            const double d = depth.cells[r][c];
            ASSERT_EQ(h == level.null, d == depth.null) << r << ", " << c;
            if (d != depth.null) {
                ++wet;
                ASSERT_GE(d, 0);
                ASSERT_NEAR(d, h - ground.cells[r][c], 1e-4);
            }
        }
    }
    wetShare = static_cast<double>(wet) / static_cast<double>(ground.nrows * ground.ncols);
}

TEST_P(RemapReal, TinDepthsFitLevelsAndGround)
{
    ToolRun run("-b -remap -flt -wl wl.asc -dem dem.asc");
    give(run);
    run.start();
    double wetShare = 0;
    const WrittenGrid level = run.grid("wl_remap_h.flt");
    expectDepthsFit(level, run.grid("wl_remap_d.flt"), readPlainAsc(terrain), wetShare);
    EXPECT_GT(wetShare, 0.02);
    EXPECT_LT(wetShare, 0.9);

    // No level stands above the highest of the model.
    const WrittenGrid coarse = readPlainAsc(levels);
    double highest = coarse.null;
    for (const auto& line : coarse.cells) {
        highest = std::max(highest, *std::max_element(line.begin(), line.end()));
    }
    for (const auto& line : level.cells) {
        ASSERT_LE(*std::max_element(line.begin(), line.end()), highest + 1e-3);
    }
}

TEST_P(RemapReal, IdwDepthsFitAndReachFartherThanTheModel)
{
    ToolRun run("-b -remap -flt -bd40 -wl wl.asc -dem dem.asc wl2.asc");
    give(run);
    run.give("wl2.asc", levels); // as an extra grid
    run.start();
    double wetShare = 0;
    const WrittenGrid depth = run.grid("wl_remap_d.flt");
    expectDepthsFit(run.grid("wl_remap_h.flt"), depth, readPlainAsc(terrain), wetShare);
    EXPECT_GT(wetShare, 0.02);

    const WrittenGrid extra = run.grid("wl2_remap.flt");
    for (std::size_t r = 0; r < extra.cells.size(); ++r) {
        for (std::size_t c = 0; c < extra.cells[r].size(); ++c) {
            ASSERT_TRUE(extra.cells[r][c] == extra.null || depth.cells[r][c] >= 0) << r << ", " << c;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Places, RemapReal,
                         testing::Values(Place{"merewether", "level_small_coarse.asc"},
                                         Place{"merewether", "level_medium_coarse.asc"},
                                         Place{"merewether", "level_large_coarse.asc"},
                                         Place{"bayou", "level_1pct_coarse.asc"}));

} // namespace
} // namespace gridforge::test
