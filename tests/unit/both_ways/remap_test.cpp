// The remap gives the same bytes and says the same, by however many threads and in whatever pieces, ahead or step by step.
#include "host/memory/memory_system.h"
#include "run/cells_ahead.h"
#include "support/both_ways.h"
#include "support/grids.h"
#include "support/operation_run.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <string>

namespace gridforge::test {
namespace {

constexpr std::size_t kFineRows = 230; // more than two numbers of rows on the console
constexpr std::size_t kFineColumns = 37;
constexpr std::size_t kCoarseRows = 47;
constexpr std::size_t kCoarseColumns = 9;

double noise(std::size_t row, std::size_t column, std::uint32_t seed)
{
    std::uint32_t state = seed * 2654435761U + static_cast<std::uint32_t>(row * 8191 + column);
    state = (state ^ (state >> 15U)) * 2246822519U;
    return static_cast<double>((state >> 8U) % 4096) / 1024; // from 0 to below 4
}

// Ground in waves, so that the edge of the water winds over it.
Cells ground(bool binary)
{
    Cells cells(kFineRows, std::vector<double>(kFineColumns));
    for (std::size_t r = 0; r < kFineRows; ++r) {
        for (std::size_t c = 0; c < kFineColumns; ++c) {
            const double wave = 4 * std::sin(static_cast<double>(r) / 9) * std::cos(static_cast<double>(c) / 7);
            cells[r][c] = noise(r, c, 1) > 3.9 ? -9999 : std::round(1000 * (10 + wave + noise(r, c, 2) / 8)) / 1000;
        }
    }
    if (binary) {
        cells[20][11] = std::numeric_limits<double>::quiet_NaN();
        cells[21][11] = std::numeric_limits<double>::infinity();
    }
    return cells;
}

Cells levels(double null, std::uint32_t seed)
{
    Cells cells(kCoarseRows, std::vector<double>(kCoarseColumns));
    for (std::size_t r = 0; r < kCoarseRows; ++r) {
        for (std::size_t c = 0; c < kCoarseColumns; ++c) {
            cells[r][c] =
                noise(r / 3, c / 2, seed) < 1.2 ? null : std::round(1000 * (10 + noise(r, c, seed + 1))) / 1000;
        }
    }
    return cells;
}

struct Remap {
    std::string name;
    std::string options;
    double null = -9999;
    int furtherGrids = 0;
};

std::ostream& operator<<(std::ostream& out, const Remap& one)
{
    return out << one.name;
}

class Remaps : public testing::TestWithParam<Remap> {
protected:
    void give(const std::string& base, const Cells& cells, const GridOptions& options)
    {
        if (extension_ == ".flt") {
            files_[base + ".hdr"] = hdr(cells, options);
            files_[base + ".flt"] = fltCells(cells);
        } else {
            files_[base + ".asc"] = ascGrid(cells, options);
        }
    }

    // The grids as files of one kind, and the command line.
    std::string giveAll(const std::string& extension)
    {
        extension_ = extension;
        files_.clear();
        const GridOptions coarse{.xll = -1.25, .yll = -2.5, .cellsize = 5, .null = GetParam().null};
        give("l", levels(GetParam().null, 3), coarse);
        give("d", ground(extension == ".flt"), {.null = -9999});
        std::string line = GetParam().options + " -wl l" + extension + " -dem d" + extension;
        for (int i = 1; i <= GetParam().furtherGrids; ++i) {
            const std::string base = "v" + std::to_string(i);
            give(base, levels(GetParam().null, 10U + static_cast<std::uint32_t>(i)), coarse);
            line += ' ' + base + extension;
        }
        return line;
    }

    GivenFiles files_;

private:
    std::string extension_;
};

// --- By TIN ----------------------------------------------------------------------------------------------------------

using TinRemaps = Remaps;

TEST_P(TinRemaps, AreTheSameForBinaryGrids)
{
    const std::string line = giveAll(".flt");
    expectBothWaysTheSame(files_, line, false);
}

TEST_P(TinRemaps, AreTheSameForTextGrids)
{
    const std::string line = giveAll(".asc");
    expectBothWaysTheSame(files_, line, true);
}

TEST_P(TinRemaps, AreTheSameForTheOtherFormat)
{
    const std::string line = giveAll(".flt") + " -asc -decimal2";
    expectBothWaysTheSame(files_, line, true);
}

INSTANTIATE_TEST_SUITE_P(Methods, TinRemaps,
                         testing::Values(Remap{"Plain", "-remap -tin"},
                                         Remap{.name = "Freeboard", .options = "-fb0.2 -remap"},
                                         Remap{.name = "WetAtFirst", .options = "-remap -tin", .null = 1},
                                         Remap{.name = "DryAtFirst", .options = "-remap -tin", .null = -1},
                                         Remap{.name = "FurtherGrids", .options = "-remap -tin", .furtherGrids = 2}),
                         [](const auto& one) { return one.param.name; });

// --- What sends a remap step by step ---------------------------------------------------------------------------------

class OddTerrain : public Remaps {};

INSTANTIATE_TEST_SUITE_P(Methods, OddTerrain, testing::Values(Remap{"Plain", "-remap -tin"}),
                         [](const auto& one) { return one.param.name; });

TEST_P(OddTerrain, WithRowsOverSeveralLinesIsReadStepByStep)
{
    const std::string line = giveAll(".asc");
    const Outcome ordinary = runOperationOn(files_, line);
    std::string& text = files_["d.asc"];
    const std::size_t firstRow = text.find('\n', text.find("NODATA")) + 1;
    text[text.find(' ', firstRow)] = '\n';
    const std::size_t odd = waysGone(run::Way::oddText);
    const Outcome found = runOperationOn(files_, line);
    EXPECT_EQ(waysGone(run::Way::oddText), odd + 1);
    EXPECT_EQ(found.console, ordinary.console);
    EXPECT_EQ(found.files.at("l_remap_d.asc"), ordinary.files.at("l_remap_d.asc"));
    EXPECT_EQ(found.files.at("l_remap_h.asc"), ordinary.files.at("l_remap_h.asc"));
}

// The name of a terrain that is not there, answered by that of the one that is.
TEST_P(OddTerrain, ThatIsAskedForIsReadStepByStep)
{
    const std::string line = giveAll(".asc");
    const Outcome ordinary = runOperationOn(files_, line);
    files_["e.asc"] = files_["d.asc"];
    files_.erase("d.asc");
    const std::size_t odd = waysGone(run::Way::oddInput);
    const std::size_t ahead = waysGone(run::Way::ahead);
    giveMemoryAnswers("e.asc\n");
    const Outcome found = runOperationOn(files_, line);
    EXPECT_EQ(waysGone(run::Way::oddInput), odd + 1);
    EXPECT_EQ(waysGone(run::Way::ahead), ahead);
    EXPECT_EQ(found.files.at("l_remap_d.asc"), ordinary.files.at("l_remap_d.asc"));
    EXPECT_EQ(found.files.at("l_remap_h.asc"), ordinary.files.at("l_remap_h.asc"));
}

TEST_P(OddTerrain, WithoutRoomForCellsThatWaitIsTakenStepByStep)
{
    const std::string line = giveAll(".flt") + " -asc";
    const Outcome ordinary = runOperationOn(files_, line);
    const Environment environment({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_SCRATCH", "/nowhere"}});
    const std::size_t noRoom = waysGone(run::Way::noRoom);
    const Outcome found = runOperationOn(files_, line);
    EXPECT_EQ(waysGone(run::Way::noRoom), noRoom + 1);
    EXPECT_EQ(found, ordinary);
}

// --- By IDW: grids stay in memory, several threads work on their rows ------------------------------------------------

using IdwRemaps = Remaps;

TEST_P(IdwRemaps, DoNotDependOnThreads)
{
    for (const std::string extension : {".flt", ".asc"}) {
        const std::string line = giveAll(extension);
        const Outcome one = [&] {
            const Environment environment({{"GRIDFORGE_THREADS", "1"}});
            return runOperationOn(files_, line);
        }();
        ASSERT_GT(one.files.size(), files_.size() + 2) << one.console;
        expectSameInPieces(one, line, [&](const auto&) { return runOperationOn(files_, line); });
    }
}

INSTANTIATE_TEST_SUITE_P(Methods, IdwRemaps,
                         testing::Values(Remap{.name = "Buffer", .options = "-remap -bd30 -idw_npt4"},
                                         Remap{.name = "Freeboard", .options = "-remap -fb0.3 -bd12"},
                                         Remap{.name = "WetAtFirst", .options = "-remap -bd30", .null = 1},
                                         Remap{.name = "FurtherGrids", .options = "-remap -bd30", .furtherGrids = 2}),
                         [](const auto& one) { return one.param.name; });

} // namespace
} // namespace gridforge::test
