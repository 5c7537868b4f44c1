// Runs of an operation whose cells are computed ahead, by however many threads and in whatever pieces, beside the run step by
// step.
#pragma once

#include "grid/cell_store.h"
#include "run/cells_ahead.h"
#include "support/environment.h"
#include "support/operation_run.h"

#include <gtest/gtest.h>
#include <string>

namespace gridforge::test {

struct PieceSetting {
    std::string threads;
    std::string piece;
    std::string memory;
};

// Threads, pieces and memory for waiting cells that a run must not depend on.
inline const PieceSetting kPieceSettings[] = {
    {"1", "", ""}, {"2", "777", ""}, {"7", "13", "1"}, {"3", "100000", "70000"}};

// Calls `run` under each of them, and compares what it returns.
template <typename Run>
void expectSameInPieces(const Outcome& expected, const std::string& line, Run run)
{
    for (const auto& setting : kPieceSettings) {
        const Environment environment({{"GRIDFORGE_THREADS", setting.threads},
                                       {"GRIDFORGE_PIECE", setting.piece},
                                       {"GRIDFORGE_MEMORY", setting.memory}});
        const Outcome found = run(setting);
        EXPECT_EQ(found.console, expected.console) << line;
        EXPECT_TRUE(found.files == expected.files)
            << line << ": " << setting.threads << " threads, pieces of " << setting.piece << " cells, memory of "
            << setting.memory << " bytes";
    }
}

// The way step by step, which a run goes when reads by position are refused, and the fast way are the same. With
// `waitInFiles` cells are known to wait in files where there is no memory for them.
inline void expectBothWaysTheSame(const GivenFiles& given, const std::string& line, bool waitInFiles)
{
    const auto refusals = [] { return waysGone(run::Way::readRefused) + waysGone(run::Way::oddText); };
    const std::size_t refused = refusals();
    const Outcome plain = runOperationOn(given, line, true);
    ASSERT_GT(refusals(), refused) << line;
    ASSERT_GT(plain.files.size(), given.size()) << line << '\n' << plain.console;
    expectSameInPieces(plain, line, [&](const PieceSetting& setting) {
        const std::size_t ahead = waysGone(run::Way::ahead);
        const std::size_t spilled = grid::filesOfCells();
        Outcome fast = runOperationOn(given, line);
        EXPECT_GT(waysGone(run::Way::ahead), ahead) << line;
        EXPECT_TRUE(!waitInFiles || setting.memory != "1" || grid::filesOfCells() > spilled) << line;
        return fast;
    });
}

} // namespace gridforge::test
