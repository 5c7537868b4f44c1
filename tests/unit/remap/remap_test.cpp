// Runs of the operation with options that no flag makes.
#include "remap/remap.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/grids.h"

#include <gtest/gtest.h>
#include <vector>

namespace gridforge {
namespace {

using test::ascGrid;
using test::Cells;
using test::ChildRun;
using test::kExits;
using test::readWrittenAsc;
using test::ScratchFolder;

ChildRun remapBy(remap::Interpolation method, const ScratchFolder& folder)
{
    remap::RemapOptions options;
    options.interpolation = method;
    options.buffer = 1.0F;
    options.waterLevelGrid = "wl.asc";
    options.demGrid = "dem.asc";
    run::InputFileList inputs;
    inputs.add("wl.asc");
    return runInChild(folder, [&] { remap::runRemap({}, options, inputs); });
}

TEST(RunRemap, RefusesAMethodThatIsNone)
{
    for (const auto method : {remap::Interpolation::none, static_cast<remap::Interpolation>(4)}) {
        const ScratchFolder folder;
        folder.give("wl.asc", ascGrid({{5}}));
        folder.give("dem.asc", ascGrid({{1}}));
        const ChildRun run = remapBy(method, folder);
        EXPECT_TRUE(run.ended);
        EXPECT_TRUE(run.console.ends_with("ERROR - Incorrect Remap method\n" + kExits)) << run.console;
    }
}

std::size_t linesIn(const std::string& console, const std::string& line)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = console.find('\n' + line + '\n', at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

TEST(RunRemap, ByTheNearestMethodSpreadsForAThousandIterations)
{
    // Coarse cells of 1, one wet. Ground falls away from it on one side and stands above its level on the other; the
    // last cell but one is null ground, past which nothing spreads.
    const double n = test::kNull;
    const ScratchFolder folder;
    folder.give("wl.asc", ascGrid({{n, 5, n, n, n, n}}));
    folder.give("dem.asc", ascGrid({{6, 2, 1, 0, -99, 0}}, {.null = -99}));
    const ChildRun run = remapBy(remap::Interpolation::nearest, folder);
    EXPECT_EQ(run.errors, "");
    const auto cells = [&](const std::string& name) { return readWrittenAsc(folder.read(name)).cells; };

    EXPECT_EQ(cells("wl_raw_h.asc"), (Cells{{n, 5, n, n, n, n}}));
    EXPECT_EQ(cells("wl_interp_d.asc"), (Cells{{n, 3, n, n, n, n}}));
    for (const char* k : {"100", "200", "300", "400", "500", "600", "700", "800", "900", "1000"}) {
        EXPECT_EQ(cells(std::string("wl_h_iter") + k + ".asc"), (Cells{{n, 5, 5, 5, n, n}}));
        EXPECT_EQ(cells(std::string("wl_d_iter") + k + ".asc"), (Cells{{n, 3, 4, 5, n, n}}));
    }
    EXPECT_EQ(cells("wl_d_final_fb0p5.asc"), (Cells{{n, 3, 4, 5, n, n}}));

    EXPECT_NE(run.console.find("Interpolating model results to DEM - Row:\n"
                               "Trying to open file wl_raw_h.asc...OK.  File Unit:1001\n"),
              std::string::npos);
    EXPECT_NE(run.console.find("Calculating depths based on interpolated levels - Row:\n"
                               "Trying to open file wl_interp_d.asc...OK.  File Unit:1001\n"),
              std::string::npos);
    EXPECT_NE(run.console.find("Iteration 1 of 1000\nExtra wet cells in iteration 1\nIteration 2 of 1000\n"
                               "Extra wet cells in iteration 1\nIteration 3 of 1000\nExtra wet cells in iteration 0\n"),
              std::string::npos);
    EXPECT_EQ(linesIn(run.console, "Extra wet cells in iteration 0"), 998U);
    EXPECT_NE(run.console.find("Iteration 1000 of 1000\n"), std::string::npos);
}

TEST(RunRemap, ByTheNearestMethodTakesMeansOfOldLevels)
{
    // Between levels of 4 and 8 the middle takes 6 from the ends in their iteration, not in place.
    const double n = test::kNull;
    const ScratchFolder folder;
    folder.give("wl.asc", ascGrid({{4, n, n, n, 8}}));
    folder.give("dem.asc", ascGrid({{0, 0, 0, 0, 0}}));
    remapBy(remap::Interpolation::nearest, folder);
    EXPECT_EQ(readWrittenAsc(folder.read("wl_h_iter100.asc")).cells, (Cells{{4, 4, 6, 8, 8}}));
}

} // namespace
} // namespace gridforge
