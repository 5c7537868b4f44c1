#include "run/windows_ahead.h"

#include "host/system.h"
#include "run/cells_ahead.h"
#include "support/environment.h"
#include "support/grids.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <thread>
#include <vector>

namespace gridforge::test {
namespace {

constexpr std::int32_t kRows = 400;
constexpr std::int32_t kColumns = 90;

double valueAt(std::int32_t row, std::int32_t column)
{
    return row * 1000 + column;
}

// A grid whose cells tell their place.
class WindowsAhead : public testing::Test {
protected:
    WindowsAhead()
    {
        Cells cells;
        for (std::int32_t row = kRows; row >= 1; --row) {
            cells.emplace_back();
            for (std::int32_t column = 1; column <= kColumns; ++column) {
                cells.back().push_back(valueAt(row, column));
            }
        }
        folder_.give("g.hdr", hdr(cells));
        folder_.give("g.flt", fltCells(cells));
        look_ = *grid::lookAtGrid((folder_.path() / "g.flt").string());
    }

    // How often each window was given, where its cells were right.
    std::vector<int> visits(const std::vector<run::ObjectWindow>& windows) const
    {
        std::vector<std::atomic<int>> seen(windows.size());
        const bool ahead = run::windowsAhead(
            look_, windows, [&](const CellPart& cells, std::span<const run::ObjectWindow> part, std::size_t) {
                for (const auto& [object, window] : part) {
                    seen[object] += holds(cells, window) ? 1 : -100;
                }
            });
        EXPECT_TRUE(ahead);
        return {seen.begin(), seen.end()};
    }

    static bool holds(const CellPart& cells, const CellWindow& window)
    {
        for (std::int32_t row = window.firstRow; row <= window.lastRow; ++row) {
            std::int32_t column = window.firstColumn;
            for (const float value : cells.row(row, column, window.lastColumn - column + 1)) {
                if (static_cast<double>(value) != valueAt(row, column) || cells(row, column) != value) {
                    return false;
                }
                ++column;
            }
        }
        return true;
    }

    ScratchFolder folder_;
    grid::GridLook look_;
};

TEST_F(WindowsAhead, EachHasItsCellsOnce)
{
    std::mt19937 random(5);
    const auto number = [&](std::int32_t least, std::int32_t most) {
        return std::uniform_int_distribution<std::int32_t>(least, most)(random);
    };
    for (const std::string threads : {"1", "2", "7"}) {
        for (const std::string piece : {"1", "700", "10000", ""}) {
            const Environment environment({{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_PIECE", piece}});
            std::vector<run::ObjectWindow> windows;
            for (std::size_t i = 0; i < 150; ++i) {
                const std::int32_t row = number(1, kRows);
                const std::int32_t column = number(1, kColumns);
                windows.push_back(
                    {i,
                     {row, std::min(kRows, row + number(0, 12)), column, std::min(kColumns, column + number(0, 20))}});
            }
            EXPECT_EQ(visits(windows), std::vector<int>(windows.size(), 1)) << threads << " threads, piece " << piece;
        }
    }
    EXPECT_TRUE(visits({}).empty());
}

std::atomic<std::int64_t>& bytesRead()
{
    static std::atomic<std::int64_t> bytes = 0;
    return bytes;
}

TEST_F(WindowsAhead, FarApartReadNoMoreThanTheirOwnCells)
{
    System counting = nativeSystem();
    counting.readAt = [](SystemFile file, std::int64_t position, std::span<char> target) {
        const std::int64_t count = nativeSystem().readAt(file, position, target);
        bytesRead() += count;
        return count;
    };
    useSystem(counting);
    bytesRead() = 0;
    EXPECT_EQ(visits({{0, {5, 6, 3, 5}}, {1, {120, 121, 80, 82}}, {2, {300, 301, 40, 42}}}),
              (std::vector<int>{1, 1, 1}));
    useSystem(nativeSystem());
    EXPECT_EQ(bytesRead(), 3 * 2 * 3 * 4);
}

// Each in a room of its own would take a room of the whole grid for each thread.
TEST_F(WindowsAhead, LargeOnesTakeTurnsInRoomForTheGrid)
{
    constexpr std::int32_t kMargin = 3;
    const Environment environment({{"GRIDFORGE_THREADS", "7"}, {"GRIDFORGE_PIECE", "100"}});
    const CellWindow whole{1, kRows, 1, kColumns};
    const CellWindow half{1, kRows / 2 - kMargin, 1, kColumns};
    std::atomic<std::size_t> cellsInWork = 0;
    std::atomic<bool> tooMany = false;
    const auto work = [&](const CellPart&, std::span<const run::ObjectWindow> part, std::size_t) {
        for (const auto& [object, window] : part) {
            const auto cells = static_cast<std::size_t>(window.lastRow) * kColumns;
            tooMany = tooMany || (cellsInWork += cells) > look_.header.cells();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            cellsInWork -= cells;
        }
    };
    EXPECT_TRUE(run::windowsAhead(look_, {{0, whole}, {1, whole}}, work));
    EXPECT_TRUE(run::windowsAhead(look_, {{0, half}, {1, half}, {2, half}, {3, half}}, work));
    EXPECT_FALSE(tooMany);
    EXPECT_EQ(visits({{0, whole}, {1, half}, {2, {7, 9, 2, 5}}}), std::vector<int>(3, 1));
}

TEST_F(WindowsAhead, NoneWhereAReadIsRefused)
{
    System refusing = nativeSystem();
    refusing.readAt = [](SystemFile, std::int64_t, std::span<char>) { return std::int64_t{-1}; };
    useSystem(refusing);
    const std::size_t refused = waysGone(run::Way::readRefused);
    EXPECT_FALSE(run::windowsAhead(look_, {{0, {1, 2, 1, 2}}}, [](const auto&, auto, std::size_t) { FAIL(); }));
    useSystem(nativeSystem());
    EXPECT_EQ(waysGone(run::Way::readRefused), refused + 1);
}

} // namespace
} // namespace gridforge::test
