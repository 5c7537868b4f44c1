#include "support/consoles.h"
#include "support/sanitizers.h"
#include "support/tool_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

using testing::ElementsAre;

constexpr double n = -999;

TEST(XyzCli, MakesAGridOfPointsInAnyOrder)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "102 204 12.5\n100 200 11\n104 202 23\n102 200 21\n104 204 -33.25\n100 202 1.5\n");
    run.start();
    EXPECT_EQ(run.status(), 0);
    EXPECT_EQ(run.error(), "");
    EXPECT_CONSOLE(run, joined({startOf({"p.xyz"}),
                                {"Processing \"-xyz\" option.",
                                 "Opening input .xyz file: p.xyz",
                                 "Scanning to determine size...",
                                 openedInput("p.xyz"),
                                 openedUnit(1001),
                                 "   Done.",
                                 "Total number of points: 6",
                                 "Allocating memory for processing of input...",
                                 "   Done.",
                                 "Rewinding input file...",
                                 "   Done.",
                                 "   Done.",
                                 closedUnit(1001),
                                 "Determing extents...",
                                 "   Done",
                                 "X Minimum: 100.",
                                 "X Maximum: 104.",
                                 "Y Minimum: 200.",
                                 "Y Maximum: 204.",
                                 "dx:        2.",
                                 "dy:        2.",
                                 "number rows: 2",
                                 "number cols: 2",
                                 "Allocating memory for output grid...",
                                 "   Done.",
                                 "Initialising grids...",
                                 "Sorting data into grid...",
                                 "   Done",
                                 "Setting output grid to .asc by default.  To set use -asc or -flt.",
                                 "Writing output to: p_xyz_to_grid"},
                                writtenAsc("p_xyz_to_grid"),
                                {kFinished}}));
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{n, 12.5, -33.25}, {1.5, n, 23}, {11, 21, n}});
    const WrittenGrid grid = run.grid("p_xyz_to_grid.asc");
    EXPECT_EQ(grid.xll, 99);
    EXPECT_EQ(grid.yll, 199);
    EXPECT_EQ(grid.cellsize, 2);
    EXPECT_EQ(grid.null, -999);
    EXPECT_NO_OTHER_FILES(run);
}

TEST(XyzCli, TakesAnyFreeFormValuesAndWhateverStandsBehindThem)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0,0,11\r\n1\t0\t.12D2 rest 'of the line\n  0 , 1 , 21 # remark\n+1 1.0 nan\r\n,2,31\n1 2,");
    run.start();
    // The last line ends without a value, and so does the run.
    EXPECT_CONSOLE_HOLDS(run, {"Total number of points: 6"});
    EXPECT_CONSOLE_HOLDS(run, errorEnd("ERROR - Reading following line in classes file:", "1 2,"));

    ToolRun whole("-b -xyz p.xyz");
    whole.give("p.xyz", "0,0,11\r\n1\t0\t.12D2 rest 'of the line\n  0 , 1 , 21 # remark\n+1 1.0 2.2e1\r\n,2,31\n1 2,,");
    whole.start();
    EXPECT_GRID(whole, "p_xyz_to_grid.asc", {{31, 0}, {21, 22}, {11, 12}});
}

TEST(XyzCli, ALineThatCannotBeReadEndsTheRun)
{
    for (const std::string line : {"", "1 2", "1 2 x", "x,y,z", "# 1 2 3", "1 2 '3'", "1;2;3", "1 2 1e39"}) {
        ToolRun run("-xyz p.xyz");
        run.give("p.xyz", "0 0 1\n1 0 2\n" + line + "\n0 1 3\n1 1 4\n");
        run.start();
        EXPECT_EQ(run.status(), 0);
        EXPECT_CONSOLE_HOLDS(run, errorEnd("Rewinding input file...", "   Done.",
                                           "ERROR - Reading following line in classes file:", line));
        EXPECT_NO_OTHER_FILES(run);
    }
}

TEST(XyzCli, AFileThatCannotBeReadEndsTheRunWhileItIsCounted)
{
    ToolRun run("-xyz p.xyz");
    std::filesystem::create_symlink("/proc/self/mem", run.folder() / "p.xyz");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(openedUnit(1001), "ERROR - Reading following line in classes file:", ""));
}

TEST(XyzCli, ADeviceWithoutEndEndsTheRun)
{
    ToolRun run("-b -xyz p.xyz");
    std::filesystem::create_symlink("/dev/zero", run.folder() / "p.xyz");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd(openedUnit(1001), "ERROR - Reading following line in classes file:", ""));
}

TEST(XyzCli, ALineIsCutAtItsWidth)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n" + std::string(993, ' ') + "1 0 2345\n");
    run.start();
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{1, 234}}) << "1 0 234 fills the line of 1000 characters";
}

// --- The spacing -----------------------------------------------------------------------------------------------------

TEST(XyzCli, SpacingsOfHalfAUnitOrLessAreNotSeen)
{
    ToolRun half("-b -xyz p.xyz");
    half.give("p.xyz", "0 0 1\n0.5 0 2\n1 0.5 3\n1.5 0 4\n0 1 5\n");
    half.start();
    // The next multiple of the spacing is 1: points half a unit off share a cell with the one before them.
    EXPECT_CONSOLE_HOLDS(half, {"dx:        1.", "dy:        1."});
    EXPECT_GRID(half, "p_xyz_to_grid.asc", {{5, n}, {2, 4}});

    ToolRun small("-b -xyz p.xyz");
    small.give("p.xyz", "0 0 1\n0.25 0 2\n0.25 0.5 3\n");
    small.start();
    EXPECT_CONSOLE_HOLDS(small, {"dx:        9999.", "dy:        9999.", "number rows: 0", "number cols: 0"});
    EXPECT_GRID(small, "p_xyz_to_grid.asc", {{3}});
    EXPECT_EQ(small.grid("p_xyz_to_grid.asc").xll, -4999.5);
    EXPECT_EQ(small.grid("p_xyz_to_grid.asc").cellsize, 9999);
}

TEST(XyzCli, WhereTheSmallestSeparationIsMissingTheSpacingIsLarger)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n2 0 2\n3 0 3\n0 2 4\n5 3 6\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"dx:        2.", "dy:        2.", "number rows: 1", "number cols: 2"});
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{4, n, 6}, {1, 3, n}});
}

TEST(XyzCli, ARatioJustBelowAWholeNumberFallsACellShort)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n0.6 0.6 2\n1.2 0 3\n1.8 0 4\n");
    run.start();
    // In single precision 0.6 is a little more, so that 0.6, 1.2 and 1.8 are not quite 1, 2 and 3 spacings.
    EXPECT_CONSOLE_HOLDS(run, {"number rows: 0", "number cols: 2"});
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{2, 3, 4}});
}

TEST(XyzCli, ADxAboveDyEndsTheRun)
{
    ToolRun run("-xyz p.xyz");
    run.give("p.xyz", "0 0 1\n4 0 2\n0 2 3\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, errorEnd("dx:        4.", "dy:        2.", "ERROR - Detected dx and dy not the same."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(XyzCli, ADyAboveDxPasses)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n2 0 2\n0 5 3\n2 10 4\n");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"dx:        2.", "dy:        5.", "number rows: 2", "number cols: 1"});
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{n, 4}, {3, n}, {1, 2}});
    EXPECT_EQ(run.grid("p_xyz_to_grid.asc").cellsize, 2);
    EXPECT_EQ(run.grid("p_xyz_to_grid.asc").yll, -1) << "half of dx, not of dy";
}

TEST(XyzCli, ADxAboveDyByHalfAUnitPasses)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n2.5 0 2\n0 2 3\n");
    run.start();
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{3, n}, {1, 2}});
}

TEST(XyzCli, ALaterPointReplacesTheEarlierOneOfItsCell)
{
    ToolRun run("-b -xyz p.xyz");
    run.give("p.xyz", "0 0 1\n1 0 2\n1 1 3\n0 0 7\n1.2 0.3 8\n");
    run.start();
    EXPECT_GRID(run, "p_xyz_to_grid.asc", {{n, 3}, {7, 8}});
}

// --- No grid ---------------------------------------------------------------------------------------------------------

TEST(XyzCli, AnEmptyFileLeavesTheStartValuesAndNoGrid)
{
    ToolRun run("-xyz p.xyz");
    run.give("p.xyz", "");
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Total number of points: 0", "Allocating memory for processing of input...", "   Done.",
                               "Rewinding input file...", "   Done.", "   Done.", closedUnit(1001)});
    EXPECT_CONSOLE_HOLDS(run, errorEnd("X Minimum: ********************", "X Maximum: ********************",
                                       "Y Minimum: ********************", "Y Maximum: ********************",
                                       "dx:        9999.", "dy:        9999.", "number rows: 2147483647",
                                       "number cols: 2147483647", "Allocating memory for output grid...",
                                       "ERROR - Could not allocate enough memory (RAM)."));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(XyzCli, FarPointsEndTheRunForWantOfMemory)
{
    for (const std::string far : {"1e9 1e9 3", "1e30 0 3", "inf 0 3", "0 -inf 3"}) {
        if (kSanitized && far == "1e9 1e9 3") {
            continue; // a size that ends the process before the run can
        }
        ToolRun run("-xyz p.xyz");
        run.give("p.xyz", "0 0 1\n1 1 2\n" + far + "\n");
        run.start();
        EXPECT_CONSOLE_HOLDS(
            run, errorEnd("Allocating memory for output grid...", "ERROR - Could not allocate enough memory (RAM)."));
        EXPECT_NO_OTHER_FILES(run);
    }
}

// --- Names and formats -----------------------------------------------------------------------------------------------

constexpr const char* kSquare = "0 0 1\n1 0 2\n0 1 3\n1 1 4\n";

TEST(XyzCli, OutNamesTheGrid)
{
    ToolRun run("-b -xyz p.xyz -out made.flt");
    run.give("p.xyz", kSquare);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using specified output file name: \"made\"", "Using output format .flt as specified.",
                               "Writing output to: made"});
    EXPECT_GRID(run, "made.flt", {{3, 4}, {1, 2}});
    EXPECT_TRUE(run.has("made.hdr"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(XyzCli, AscAndDecimalsAsSpecified)
{
    ToolRun run("-b -xyz points/p.2.xyz -asc -decimal1");
    run.give("points/p.2.xyz", kSquare);
    run.start();
    EXPECT_CONSOLE_HOLDS(run, {"Using output format .asc as specified.", "Writing output to: points/p.2_xyz_to_grid"});
    // No cell is null, so 4 is the largest: "4." and 1 decimal and 2 make a width of 5.
    EXPECT_THAT(run.read("points/p.2_xyz_to_grid.asc"), testing::HasSubstr("\r\n  3.0  4.0\r\n  1.0  2.0\r\n"));
    EXPECT_NO_OTHER_FILES(run);
}

TEST(XyzCli, OnlyTheFirstInputIsRead)
{
    ToolRun run("-b -xyz p.xyz q.xyz");
    run.give("p.xyz", kSquare);
    run.give("q.xyz", "no points");
    run.start();
    EXPECT_THAT(run.changedFiles(), ElementsAre("p_xyz_to_grid.asc"));
}

// --- Many points -----------------------------------------------------------------------------------------------------

std::string written(const char* form, double value)
{
    std::vector<char> text(40);
    std::snprintf(text.data(), text.size(), form, value);
    return text.data();
}

TEST(XyzCli, ManyPointsInMixedFormsAreReadAsOne)
{
    constexpr int kSide = 400; // some megabytes of text, more than is read at once
    struct Line {
        int row;
        int column;
        double z;
        std::string text;
    };
    std::mt19937 random(7);
    std::vector<Line> lines;
    const std::vector<const char*> forms = {"%.3f", "%.0f", "%.9f", "%.4e", "%+.2f", "%.14f"};
    for (int row = 0; row < kSide; ++row) {
        for (int column = 0; column < kSide; ++column) {
            const double z = static_cast<double>(random() % 1000000) / 8 - 4000;
            const auto odd = random() % 64;
            const char* form = odd < forms.size() ? forms[odd] : "%.3f";
            const std::string gap(1 + (random() % 16 == 0 ? random() % 60 : 0), ' ');
            std::string text = written(form, 293000 + 2.0 * column) + gap + written("%.2f", 6178000 + 2.0 * row) +
                               (odd % 2 == 0 ? "," : " ") + written("%.3f", z) + (odd % 8 == 0 ? "\r\n" : "\n");
            const bool rounded = odd == 3; // few digits and an exponent: no longer on the lattice
            lines.push_back({row, column, z, rounded ? "" : text});
        }
    }
    std::shuffle(lines.begin() + 1, lines.end(), random);
    std::string text;
    Cells expected(kSide, std::vector<double>(kSide, n));
    for (const Line& line : lines) {
        if (!line.text.empty()) {
            text += line.text;
            expected[static_cast<std::size_t>(kSide - 1 - line.row)][static_cast<std::size_t>(line.column)] = line.z;
        }
    }
    for (const char* threads : {"1", "2", "7"}) {
        ToolRun run("-b -xyz p.xyz -flt");
        run.environment("GRIDFORGE_THREADS", threads);
        run.environment("GRIDFORGE_PIECE", "500000");
        run.give("p.xyz", text);
        run.start();
        EXPECT_GRID(run, "p_xyz_to_grid.flt", expected) << threads;
    }
}

TEST(XyzCli, TheFirstOfSeveralLinesThatCannotBeReadEndsTheRunWhateverTheThreads)
{
    std::string text;
    for (int i = 0; i < 60000; ++i) {
        text += i == 21000 ? "10 20 x\n" : i == 21001 || i == 50000 ? "10 20 y\n" : "293000.00 6178000.00 12.345\n";
    }
    for (const char* threads : {"1", "2", "7"}) {
        ToolRun run("-xyz p.xyz");
        run.environment("GRIDFORGE_THREADS", threads);
        run.environment("GRIDFORGE_PIECE", "500000");
        run.give("p.xyz", text);
        run.start();
        EXPECT_CONSOLE_HOLDS(run, {"ERROR - Reading following line in classes file:", "10 20 x", "", kClose});
        EXPECT_NO_OTHER_FILES(run);
    }
}

} // namespace
} // namespace gridforge::test
