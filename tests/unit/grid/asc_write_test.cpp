#include "grid/asc_write.h"

#include "grid/cell_store.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/memory_run.h"
#include "support/refusing_system.h"

#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::ChildRun;
using test::Environment;
using test::kExits;
using test::MemoryRun;
using test::refuseReadsAfter;
using test::runInChild;
using test::ScratchFolder;
using testing::EndsWith;

// digits: row, column
const std::vector<float> kCells{31, 32, 21, 22, 11, 12};
const std::string kText = "  31.0  32.0\r\n  21.0  22.0\r\n  11.0  12.0\r\n";

Grid gridOfCells()
{
    Grid grid;
    EXPECT_TRUE(grid.allocate(3, 2));
    std::ranges::copy(kCells, grid.cells().begin());
    return grid;
}

// Writes the cells after a line of text, as after a header.
void writeCells(const std::string& name, const grid::CellSource& cells)
{
    Unit unit = 0;
    OPENER(unit, "O ", name);
    writeLine(unit, "head");
    grid::writeAscRows(unit, cells, grid::ascFieldWidth(cells, 1), 1);
    CLOSER(unit);
}

// A piece of each row, so that several threads could write.
Environment smallPieces()
{
    return {{"GRIDFORGE_PIECE", "2"}, {"GRIDFORGE_MEMORY", "1"}};
}

TEST(WriteAscRows, WritesRowsByPosition)
{
    const Environment pieces = smallPieces();
    const MemoryRun run;
    static std::atomic<int> calls = 0;
    static System counting = memorySystem(); // used as long as the run lasts
    counting.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        ++calls;
        return memorySystem().writeAt(file, position, bytes);
    };
    useSystem(counting);
    writeCells("a.asc", gridOfCells());
    EXPECT_EQ(memoryFile("a.asc"), "head\r\n" + kText);
    EXPECT_EQ(calls, 3);
}

// The usual message of a failed write is that of the rows one after the other.
TEST(WriteAscRows, WritesRowAfterRowWhereThatIsRefused)
{
    const Environment pieces = smallPieces();
    const MemoryRun run;
    static std::atomic<int> calls = 0;
    static System refusing = memorySystem();
    refusing.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        return ++calls == 3 ? std::int64_t{-1} : memorySystem().writeAt(file, position, bytes);
    };
    useSystem(refusing);
    writeCells("a.asc", gridOfCells());
    EXPECT_EQ(memoryFile("a.asc"), "head\r\n" + kText);
    EXPECT_EQ(calls, 3);
}

// A thread would need as much as several rows have.
TEST(WriteAscRows, WritesRowAfterRowWhereARowIsVeryLong)
{
    const Environment pieces = smallPieces();
    const MemoryRun run;
    static std::atomic<int> calls = 0;
    static System counting = memorySystem();
    counting.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        ++calls;
        return memorySystem().writeAt(file, position, bytes);
    };
    useSystem(counting);
    constexpr std::int32_t kColumns = 4196;
    constexpr std::int32_t kWidth = 4000; // rows of 16.8 MB
    Grid grid;
    ASSERT_TRUE(grid.allocate(2, kColumns));
    std::ranges::fill(grid.row(2), 2.0F);
    std::ranges::fill(grid.row(1), 1.0F);
    Unit unit = 0;
    OPENER(unit, "O ", "a.asc");
    grid::writeAscRows(unit, grid, kWidth, 1);
    CLOSER(unit);
    std::string text;
    for (const char* const cell : {"2.0", "1.0"}) {
        for (std::int32_t i = 0; i < kColumns; ++i) {
            text.append(kWidth - 3, ' ').append(cell);
        }
        text += "\r\n";
    }
    EXPECT_TRUE(memoryFile("a.asc") == text);
    EXPECT_EQ(calls, 0);
}

TEST(WriteAscRows, ShowsEachThousandthRow)
{
    const MemoryRun run;
    Grid grid;
    ASSERT_TRUE(grid.allocate(2001, 1));
    writeCells("a.asc", grid);
    EXPECT_THAT(MemoryRun::console(), testing::HasSubstr("    2000    1000\n"));
}

// Writes cells that wait in a file of which so many reads are done and all further ones refused.
ChildRun writeFromFile(int readsDone)
{
    const ScratchFolder folder;
    return runInChild(folder, [readsDone] {
        grid::CellStore store;
        EXPECT_TRUE(store.take(kCells.size(), "."));
        EXPECT_TRUE(store.isInFile());
        EXPECT_TRUE(store.put(0, kCells));
        refuseReadsAfter(readsDone);
        GridHeader lattice;
        lattice.nrows = 3;
        lattice.ncols = 2;
        writeCells("a.asc", grid::CellSource(store, lattice));
    });
}

TEST(WriteAscRows, EndsTheRunWhereCellsThatWaitedCannotBeReadBack)
{
    const Environment pieces = smallPieces();
    EXPECT_FALSE(writeFromFile(6).ended);
    // The first three reads settle the width, the others write: by position or, where one is refused, row after row.
    for (const int reads : {0, 2, 3, 5}) {
        const ChildRun run = writeFromFile(reads);
        EXPECT_TRUE(run.ended) << reads;
        EXPECT_THAT(run.console, EndsWith("\nERROR - Could not allocate enough memory (RAM).\n" + kExits)) << reads;
    }
}

} // namespace
} // namespace gridforge
