// The module that stands before the calls of the system, on a program of several threads.
#include "faults/system_run.h"

#include "support/grids.h"
#include "support/paths.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>
#include <numeric>

namespace gridforge::test {
namespace {

constexpr long kWrites = 8000; // four threads, each of which writes 2000 cells

const FaultRun kByThreads = {"ByThreads", "by-threads", [](ToolRun&) {}, true};

TEST(SystemModule, CountsTheCallsOfAllThreads)
{
    const SystemRun run = runSystem(kByThreads, "watch", gridWritersPath());
    EXPECT_EQ(run.status, 0) << run.error;
    std::vector<long> numbers;
    std::vector<long> events;
    for (const SystemCall& call : run.calls) {
        if (call.function == "pwrite") {
            numbers.push_back(call.number);
            EXPECT_EQ(call.file, "g.flt");
        }
        if (call.event > 0) {
            events.push_back(call.event);
        }
    }
    std::vector<long> all(kWrites);
    std::iota(all.begin(), all.end(), 1);
    EXPECT_EQ(numbers, all);
    all.resize(kWrites + 5); // both files are opened and closed, and one write makes the header
    std::iota(all.begin(), all.end(), 1);
    EXPECT_EQ(events, all);
}

TEST(SystemModule, FailsOneCallOfAllThreads)
{
    const SystemRun run = runSystem(kByThreads, "fail pwrite 5000 28", gridWritersPath());
    EXPECT_EQ(run.status, 1);
    ASSERT_EQ(run.calls.size(), 1U);
    EXPECT_EQ(run.calls[0].number, 5000);
}

// Allocations are failed by their number, which may not depend on the digits of the process.
TEST(SystemModule, GivesEveryProcessTheSameNumber)
{
    const FaultRun conversion = {"Conversion", "-b -conv a.asc",
                                 [](ToolRun& run) { run.give("a.asc", ascGrid({{5}})); }, true};
    const SystemRun run = runSystem(conversion, "watch");
    const auto link = std::ranges::find(run.calls, "link", &SystemCall::function);
    ASSERT_NE(link, run.calls.end());
    EXPECT_EQ(link->file, "a.flt.54321.part");
}

// A thread may make a call while another is killed, so there may be cells too many.
TEST(SystemModule, KillsAllThreads)
{
    const SystemRun run = runSystem(kByThreads, "kill 5000 after", gridWritersPath());
    EXPECT_EQ(run.status, 128 + SIGKILL);
    ASSERT_EQ(run.calls.size(), 1U);
    EXPECT_EQ(run.calls[0].event, 5000);
    EXPECT_THAT(run.files, testing::SizeIs(1)); // no header
}

} // namespace
} // namespace gridforge::test
