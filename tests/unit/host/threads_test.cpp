#include "host/threads.h"

#include "host/console.h"
#include "host/system.h"
#include "support/child_run.h"
#include "support/environment.h"
#include "support/process_limits.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <vector>

namespace gridforge {
namespace {

using test::Environment;

TEST(ThreadCount, IsThatOfTheProcessorsOrLess)
{
    const std::size_t processors = theSystem().processors();
    EXPECT_EQ(threadCount(), processors);
    {
        const Environment one({{"GRIDFORGE_THREADS", "1"}});
        EXPECT_EQ(threadCount(), 1U);
    }
    const Environment more({{"GRIDFORGE_THREADS", std::to_string(processors + 1)}});
    EXPECT_EQ(threadCount(), processors);
}

TEST(ThreadCount, IsThatOfTheEnvironmentInTests)
{
    const Environment seven({{"GRIDFORGE_THREADS", "7"}, {"GRIDFORGE_PIECE", "100"}});
    EXPECT_EQ(threadCount(), 7U);
    const Environment many({{"GRIDFORGE_THREADS", "1000000"}});
    EXPECT_EQ(threadCount(), 1024U);
}

TEST(WorkersOf, AreNoMoreThanPiecesOrThreads)
{
    const Environment environment({{"GRIDFORGE_THREADS", "4"}, {"GRIDFORGE_PIECE", "1"}});
    EXPECT_EQ(workersOf(0), 1U);
    EXPECT_EQ(workersOf(3), 3U);
    EXPECT_EQ(workersOf(100), 4U);
}

TEST(ParallelFor, DoesEachPieceOnceWithAWorkerOfItsOwn)
{
    for (const char* const threads : {"1", "2", "7"}) {
        const Environment environment({{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_PIECE", "1"}});
        std::vector<int> done(1000);
        std::vector<std::atomic<int>> busy(workersOf(done.size()));
        std::atomic<bool> shared = false;
        parallelFor(done.size(), [&](std::size_t piece, std::size_t worker) {
            shared = shared || busy.at(worker)++ != 0;
            ++done[piece];
            --busy.at(worker);
        });
        EXPECT_EQ(done, std::vector<int>(1000, 1));
        EXPECT_FALSE(shared);
    }
}

TEST(ParallelFor, DoesWithoutThreadsThatCannotBeStarted)
{
    if (!test::canLimitMemory()) {
        GTEST_SKIP() << "the sanitizer has taken its memory already";
    }
    const test::ScratchFolder folder;
    const test::ChildRun run = test::runInChild(folder, [] {
        const Environment environment({{"GRIDFORGE_THREADS", "1000"}, {"GRIDFORGE_PIECE", "1"}});
        std::vector<int> done(2000);
        std::atomic<std::size_t> most = 0;
        test::limitMemory(100); // the stacks of a thousand threads take more
        parallelFor(done.size(), [&](std::size_t piece, std::size_t worker) {
            ++done[piece];
            most = std::max<std::size_t>(most, worker);
        });
        say(std::ranges::count(done, 1), most < 999 ? " done by fewer" : " done by all");
    });
    EXPECT_EQ(run.console, "2000 done by fewer\n");
}

TEST(ParallelFor, SeveralPiecesAreDoneAtATime)
{
    const Environment environment({{"GRIDFORGE_THREADS", "2"}, {"GRIDFORGE_PIECE", "1"}});
    std::atomic<int> started = 0;
    // Either piece waits for the other one.
    parallelFor(2, [&](std::size_t, std::size_t) {
        ++started;
        while (started < 2) {
        }
    });
    EXPECT_EQ(started, 2);
}

TEST(ParallelFor, HasNothingToDoWithoutPieces)
{
    bool called = false;
    parallelFor(0, [&](std::size_t, std::size_t) { called = true; });
    EXPECT_FALSE(called);
}

TEST(ParallelFor, MemoryThatAPieceCannotHaveIsMissingInTheCaller)
{
    for (const char* const threads : {"1", "3"}) {
        const Environment environment({{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_PIECE", "1"}});
        std::atomic<int> running = 0;
        const auto work = [&](std::size_t piece, std::size_t) {
            ++running;
            if (piece == 5) {
                --running;
                throw std::bad_alloc();
            }
            --running;
        };
        EXPECT_THROW(parallelFor(100, work), std::bad_alloc);
        EXPECT_EQ(running, 0);
    }
}

TEST(PieceTurns, ComeInOrder)
{
    const Environment environment({{"GRIDFORGE_THREADS", "4"}, {"GRIDFORGE_PIECE", "1"}});
    constexpr std::size_t kPieces = 2000;
    PieceTurns turns;
    std::vector<std::size_t> order;
    parallelFor(kPieces, [&](std::size_t piece, std::size_t) {
        turns.await(piece);
        order.push_back(piece);
        turns.pass();
    });
    ASSERT_EQ(order.size(), kPieces);
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(PieceTurns, ReachAllThatHaveBegunWhereOneRunsOutOfMemory)
{
    const Environment environment({{"GRIDFORGE_THREADS", "7"}, {"GRIDFORGE_PIECE", "1"}});
    for (std::size_t failing = 0; failing < 1000; ++failing) {
        PieceTurns turns;
        const auto work = [&](std::size_t piece, std::size_t) {
            turns.await(piece);
            turns.pass();
            if (piece == failing % 10) {
                throw std::bad_alloc();
            }
        };
        EXPECT_THROW(parallelFor(30, work), std::bad_alloc);
    }
}

TEST(CellsPerPiece, AreThoseOfTheEnvironmentOrTheUsual)
{
    EXPECT_EQ(cellsPerPiece(100), 100U);
    const Environment environment({{"GRIDFORGE_PIECE", "7"}});
    EXPECT_EQ(cellsPerPiece(100), 7U);
}

TEST(CellsPerPiece, AreNeverSoManyThatSumsWithThemOverflow)
{
    for (const char* const most : {"18446744073709551615", "18446744073709551516", "9223372036854775807"}) {
        const Environment environment({{"GRIDFORGE_PIECE", most}});
        EXPECT_EQ(cellsPerPiece(100), std::size_t{1} << 40U);
    }
}

} // namespace
} // namespace gridforge
