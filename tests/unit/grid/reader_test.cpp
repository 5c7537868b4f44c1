// Grids read and written in memory, with the dialogue over a missing file.
#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "support/memory_run.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <span>
#include <string>
#include <utility>

namespace gridforge {
namespace {

using testing::StartsWith;

TEST(GridsInMemory, AreReadAndWrittenThroughTheDialogue)
{
    const test::MemoryRun run;
    giveMemoryFile("in/A.asc", "ncols 2\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 5\nNODATA_value -9999\n"
                               "21 22\n11.5 -9999\n");
    giveMemoryAnswers("in\\a.asc\n");

    grid::OpenGrid grid = grid::openGrid("missing.asc");
    const GridHeader header = grid.header;
    Grid cells;
    ASSERT_TRUE(cells.allocate(header.nrows, header.ncols));
    grid::readCells(std::move(grid), cells);
    const auto want = std::to_array<float>({21, 22, 11.5, -9999});
    EXPECT_TRUE(std::ranges::equal(cells.cells(), want));
    EXPECT_THAT(test::MemoryRun::console(),
                StartsWith("Trying to open file missing.asc...\n"
                           "CHECK 0008 - \"missing.asc\" cannot be found\n"
                           "Check file exists and press enter or enter another file name: \n"
                           "Trying to open file in\\a.asc...OK.\n"));

    grid::writeGrid(grid::Format::flt, "in\\out", header, cells, "PROJCS[]");
    const std::string bytes = memoryFile("in/out.flt").value();
    ASSERT_EQ(bytes.size(), sizeof want);
    EXPECT_TRUE(std::ranges::equal(std::as_bytes(std::span(bytes)), std::as_bytes(std::span(want))));
    EXPECT_EQ(memoryFile("in/out.prj"), "PROJCS[]\r\n");
    EXPECT_EQ(memoryFile("out.flt"), std::nullopt);
}

TEST(GridsInMemory, ShowEachThousandthRowOfTheirTextAsItIsRead)
{
    const test::MemoryRun run;
    std::string text = "ncols 1\nnrows 2001\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n";
    for (int row = 2001; row >= 1; --row) {
        text += std::to_string(row) + '\n';
    }
    giveMemoryFile("a.asc", text);
    grid::OpenGrid grid = grid::openGrid("a.asc");
    Grid cells;
    ASSERT_TRUE(cells.allocate(2001, 1));
    grid::readCells(std::move(grid), cells);
    EXPECT_EQ(cells(1000, 1), 1000);
    EXPECT_THAT(test::MemoryRun::console(), testing::HasSubstr("\nReading ASCII grid...    2000    1000\n"));
}

} // namespace
} // namespace gridforge
