#include "grid/asc_decode.h"

#include "host/system.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <thread>
#include <vector>

namespace gridforge {
namespace {

using test::Environment;
using test::ScratchFolder;
using testing::ElementsAre;

const std::string kHead = "ncols 3\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -9999\n";

// The cells of the text grid with these rows; none where they were not decoded.
std::optional<std::vector<float>> decoded(const std::string& rows)
{
    const ScratchFolder folder;
    folder.give("a.asc", kHead + rows);
    const auto look = grid::lookAtGrid((folder.path() / "a.asc").string());
    grid::CellStore cells;
    if (!look || !cells.take(look->header.cells(), folder.path().string()) || !decodeAsc(*look, cells)) {
        return std::nullopt;
    }
    std::vector<float> got(cells.size());
    EXPECT_TRUE(cells.get(0, got));
    return got;
}

TEST(DecodeAsc, TakesRowsThatStandOnALineEach)
{
    for (const char* const rows : {"1 2 3\n4 5 6\n", "1 2 3\n4 5 6", "1 2 3 \r\n 4 5 6\r\n", "1 2 3\n4 5 6\nmore\n\n",
                                   "1,2,3\n4, 5 ,6\n", "\t1 2 3 rest of the line\n4 5 6 7 8\n"}) {
        const auto cells = decoded(rows);
        ASSERT_TRUE(cells) << rows;
        EXPECT_THAT(*cells, ElementsAre(1, 2, 3, 4, 5, 6)) << rows;
    }
}

TEST(DecodeAsc, LeavesAllElseToTheReaderOfLines)
{
    for (const char* const rows : {"1 2\n3\n4 5 6\n", "1 2 3 4 5 6\n", "1 2 3\n\n4 5 6\n", "1 2 x\n4 5 6\n",
                                   "1 2 3\n4 5\n", "1 2 3\n4 5", "1 2 3\n", "1,,3\n4 5 6\n", ",2,3\n4,5,6\n"}) {
        EXPECT_FALSE(decoded(rows)) << rows;
    }
}

TEST(DecodeAsc, EmptyLinesMayFollowTheLastRowButNotStandBetweenRows)
{
    const std::string lines(20000, '\n'); // more than rows could begin in so many bytes
    EXPECT_TRUE(decoded("1 2 3\n4 5 6\n" + lines));
    EXPECT_FALSE(decoded("1 2 3\n" + lines + "4 5 6\n"));
    EXPECT_FALSE(decoded("1 2 3\n" + lines));
}

// A piece that never learns its rows passes its turn on, or the others would wait for ever.
TEST(DecodeAsc, EndsWhereThereIsNoMemoryForAPiece)
{
    std::string rows;
    for (int row = 0; row < 9000; ++row) {
        rows += "1 2 3\n";
    }
    const ScratchFolder folder;
    folder.give("a.asc", "ncols 3\nnrows 9000\nxllcorner 0\nyllcorner 0\ncellsize 1\n" + rows);
    const auto look = grid::lookAtGrid((folder.path() / "a.asc").string());
    ASSERT_TRUE(look);
    static std::atomic<int> reads;
    System failing = nativeSystem();
    failing.readAt = [](SystemFile file, std::int64_t position, std::span<char> target) {
        if (++reads == 3) {
            std::this_thread::sleep_for(std::chrono::milliseconds(30)); // while others come to later pieces
            throw std::bad_alloc();
        }
        return nativeSystem().readAt(file, position, target);
    };
    for (const char* const threads : {"1", "2", "7"}) {
        const Environment environment({{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_PIECE", "4096"}});
        grid::CellStore cells;
        ASSERT_TRUE(cells.take(look->header.cells(), folder.path().string()));
        reads = 0;
        useSystem(failing);
        EXPECT_THROW(static_cast<void>(decodeAsc(*look, cells)), std::bad_alloc) << threads;
        useSystem(nativeSystem());
    }
}

std::vector<float> manyCells(std::size_t count)
{
    std::mt19937 random(17);
    std::uniform_int_distribution<int> value(-99999, 99999);
    std::vector<float> cells(count);
    for (float& cell : cells) {
        cell = static_cast<float>(value(random)) / 8;
    }
    return cells;
}

// Lines that are longer than the chunks of the text, and ones that end where a chunk does.
TEST(DecodeAsc, TakesLinesOfAnyLengthAmongChunks)
{
    const Environment environment({{"GRIDFORGE_THREADS", "3"}, {"GRIDFORGE_PIECE", "1"}});
    for (const std::size_t columns : {1UL, 2UL, 511UL, 512UL, 513UL, 1023UL, 1024UL, 1025UL, 5000UL, 20000UL}) {
        const std::size_t rows = 40000 / columns + 3;
        std::string text = "ncols " + std::to_string(columns) + "\nnrows " + std::to_string(rows) +
                           "\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
        std::vector<float> cells;
        for (std::size_t i = 0; i < rows * columns; ++i) {
            const bool ends = i % columns + 1 == columns;
            cells.push_back(static_cast<float>(i % 10000));
            std::string value = std::to_string(i % 10000);
            value.insert(0, 7 - value.size(), ' '); // eight bytes with what follows: 512 fill a chunk
            text += value + (ends ? "\n" : " ");
        }
        const ScratchFolder folder;
        folder.give("a.asc", text);
        const auto look = grid::lookAtGrid((folder.path() / "a.asc").string());
        ASSERT_TRUE(look);
        grid::CellStore store;
        ASSERT_TRUE(store.take(cells.size(), folder.path().string()));
        ASSERT_TRUE(decodeAsc(*look, store)) << columns;
        EXPECT_TRUE(std::ranges::equal(store.inMemory(), cells)) << columns;
    }
}

TEST(DecodeAsc, LeavesTextThatEndsTooEarlyInAnyChunk)
{
    const Environment environment({{"GRIDFORGE_THREADS", "2"}, {"GRIDFORGE_PIECE", "1"}});
    std::string text = "ncols 2\nnrows 5000\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
    for (int row = 0; row < 4999; ++row) {
        text += "12.5 7\n";
    }
    const ScratchFolder folder;
    folder.give("a.asc", text);
    folder.give("b.asc", text + "1 x\n");
    folder.give("c.asc", text + "1 2\n");
    for (const char* const name : {"a.asc", "b.asc", "c.asc"}) {
        const auto look = grid::lookAtGrid((folder.path() / name).string());
        grid::CellStore store;
        ASSERT_TRUE(look && store.take(10000, folder.path().string()));
        EXPECT_EQ(decodeAsc(*look, store), name == std::string("c.asc"));
    }
}

// Many chunks, by several threads, in memory and in a file.
TEST(DecodeAsc, IsTheSameForAnyNumberOfThreads)
{
    constexpr std::size_t kRows = 3000;
    constexpr std::size_t kColumns = 400;
    const std::vector<float> cells = manyCells(kRows * kColumns);
    std::string text = "ncols 400\nnrows 3000\nxllcorner 0\nyllcorner 0\ncellsize 1\n";
    for (std::size_t i = 0; i < cells.size(); ++i) {
        text += std::to_string(cells[i]) + (i % kColumns + 1 == kColumns ? "\n" : " ");
    }
    ASSERT_GT(text.size(), std::size_t{1} << 23U);
    const ScratchFolder folder;
    folder.give("a.asc", text);
    const auto look = grid::lookAtGrid((folder.path() / "a.asc").string());
    ASSERT_TRUE(look);
    for (const char* const threads : {"1", "3"}) {
        for (const char* const memory : {"1", "1000000000"}) {
            const Environment environment(
                {{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_MEMORY", memory}, {"GRIDFORGE_PIECE", "500000"}});
            grid::CellStore store;
            ASSERT_TRUE(store.take(cells.size(), folder.path().string()));
            ASSERT_TRUE(decodeAsc(*look, store));
            std::vector<float> got(cells.size());
            ASSERT_TRUE(store.get(0, got));
            EXPECT_TRUE(got == cells) << threads << " threads, " << memory << " bytes";
        }
    }
}

} // namespace
} // namespace gridforge
