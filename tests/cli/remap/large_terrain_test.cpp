// A terrain that is larger than the memory that the run may take.
#include "support/grids.h"
#include "support/layer_files.h"
#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/tool_run.h"

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {
namespace {

constexpr std::int64_t kRows = 2500;
constexpr std::int64_t kColumns = 4000;
constexpr std::uintmax_t kBytes = kRows * kColumns * 4; // 40 MB

// Less than the ground alone takes; a grid that is held whole does not fit.
std::string underLimit()
{
    return "ulimit -d 36000; exec \"$0\" \"$@\"";
}

// Levels of 2.5 on cells of 5 m, all over the terrain.
void giveLevels(ToolRun& run)
{
    const Cells levels(kRows / 5, std::vector<double>(kColumns / 5, 2.5));
    run.give("wl.hdr", hdr(levels, {.cellsize = 5}));
    run.give("wl.flt", fltCells(levels));
}

// Ground of height 0, in a file without a block of its own.
void giveTerrain(ToolRun& run)
{
    run.give("dem.hdr", hdr(kColumns, kRows));
    run.give("dem.flt", "");
    std::filesystem::resize_file(run.folder() / "dem.flt", kBytes);
}

float cellOf(const std::string& bytes, std::int64_t row, std::int64_t column)
{
    float value = 0;
    std::memcpy(&value, bytes.data() + ((kRows - row) * kColumns + column - 1) * 4, sizeof value);
    return value;
}

class LargeTerrain : public testing::Test {
protected:
    void SetUp() override
    {
        if (kSanitized) {
            GTEST_SKIP() << "a sanitizer has memory of its own";
        }
    }
};

TEST_F(LargeTerrain, IsRemappedByTin)
{
    ToolRun run({"-c", underLimit(), toolPath(), "-b", "-remap", "-wl", "wl.flt", "-dem", "dem.flt"});
    run.program("/bin/sh");
    run.environment("GRIDFORGE_THREADS", "2");
    giveTerrain(run);
    giveLevels(run);
    run.start();
    ASSERT_TRUE(run.reachedEnd()) << run.console();
    for (const char* name : {"wl_remap_h.flt", "wl_remap_d.flt"}) {
        const std::string bytes = run.read(name);
        ASSERT_EQ(bytes.size(), kBytes);
        EXPECT_EQ(cellOf(bytes, 3, 3), 2.5F); // at the centre of the first coarse cell
        EXPECT_EQ(cellOf(bytes, 2, 3), -9999.0F);
        EXPECT_EQ(cellOf(bytes, 1234, 2345), 2.5F);
    }
}

// Water may grow from any cell to any other, so ground, levels and states of all cells are held: in a file.
TEST_F(LargeTerrain, IsRemappedByIdw)
{
    ToolRun run({"-c", underLimit(), toolPath(), "-b", "-remap", "-bd50", "-wl", "wl.flt", "-dem", "dem.flt"});
    run.program("/bin/sh");
    giveTerrain(run);
    giveLevels(run);
    run.start();
    ASSERT_TRUE(run.reachedEnd()) << run.console();
    const std::string bytes = run.read("wl_remap_h.flt");
    ASSERT_EQ(bytes.size(), kBytes);
    EXPECT_EQ(cellOf(bytes, 1, 1), 2.5F);
    EXPECT_EQ(cellOf(bytes, 1234, 2345), 2.5F);
}

TEST_F(LargeTerrain, IsSampledAtPoints)
{
    ToolRun run({"-c", underLimit(), toolPath(), "-b", "-cp", "p.mif", "dem.flt", "-cpsd20"});
    run.program("/bin/sh");
    giveTerrain(run);
    run.give("p.mif", mifHeader({"Observed Float", "Label Char(9)"}) + "Point 3000.25 2000\nPoint 40 50\n");
    run.give("p.mid", "1.5,\"a\"\n0,\"b\"\n");
    run.start();
    ASSERT_TRUE(run.reachedEnd()) << run.console();
    EXPECT_EQ(run.read("p.csv"), "\"Label\",\"Observed\",\"Modelled\",\"Difference\",\"Distance\"\r\n"
                                 "\"a\",    1.500,    0.000,   -1.500,    0.250\r\n"
                                 "\"b\",    0.000,    0.000,    0.000,    0.000\r\n");
}

} // namespace
} // namespace gridforge::test
