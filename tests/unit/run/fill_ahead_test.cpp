#include "run/fill_ahead.h"

#include "core/huge_array.h"
#include "host/system.h"
#include "support/environment.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <numeric>
#include <span>
#include <vector>

namespace gridforge::test {
namespace {

// Bytes of the largest array that was taken since it was last 0.
std::size_t largestArray = 0;

PageSource watchedPages()
{
    return {[](std::size_t bytes) {
                largestArray = std::max(largestArray, bytes);
                return nativePages().take(bytes);
            },
            nativePages().release};
}

// Numbers cells that wait in a file, in pieces of so many; returns how many cells the largest array has that this takes.
std::size_t roomToFill(std::size_t cells, std::size_t pieceCells)
{
    const ScratchFolder folder;
    const Environment oneThread({{"GRIDFORGE_MEMORY", "1"}, {"GRIDFORGE_THREADS", "1"}});
    grid::CellStore store;
    EXPECT_TRUE(store.take(cells, folder.path().string()));
    EXPECT_TRUE(store.isInFile());
    usePages(watchedPages());
    largestArray = 0;
    const run::Way way = run::fillAhead(store, pieceCells, [](std::size_t first, std::span<float> piece, std::size_t) {
        std::iota(piece.begin(), piece.end(), static_cast<float>(first));
        return run::Way::ahead;
    });
    usePages(nativePages());
    EXPECT_EQ(way, run::Way::ahead);
    std::vector<float> filled(cells);
    EXPECT_TRUE(store.get(0, filled));
    std::vector<float> numbers(cells);
    std::iota(numbers.begin(), numbers.end(), 0.0F);
    EXPECT_EQ(filled, numbers);
    return largestArray / sizeof(float);
}

TEST(FillAhead, TakesRoomForOnePieceOfCellsThatWaitInAFile)
{
    const std::size_t room = roomToFill(100'100, 1000);
    EXPECT_GE(room, 1000U);
    EXPECT_LT(room, 2000U);
}

TEST(FillAhead, TakesNoMoreRoomThanThereAreCells)
{
    const std::size_t room = roomToFill(1000, 100'000);
    EXPECT_GE(room, 1000U);
    EXPECT_LT(room, 2000U);
}

} // namespace
} // namespace gridforge::test
