// Runs that are killed at each call that changes a file: no .asc or .flt that they leave looks whole but is not.
#include "faults/system_run.h"
#include "faults/whole_grids.h"

#include "support/gdal.h"
#include "support/grids.h"
#include "support/paths.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>

namespace gridforge::test {
namespace {

constexpr int kKilled = 128 + SIGKILL;

// The moments of a call at which the run is killed: for a write also within it, some of them just before its last bytes,
// which are those of the last cell. The quick part is without those before a call: they leave what a kill after the call
// before it leaves.
std::vector<std::string> momentsOf(const SystemCall& call)
{
    std::vector<std::string> moments = {"after"};
    if (isWholeAsked()) {
        moments.emplace_back("before");
    }
    if (call.bytes <= 1) {
        return moments;
    }
    std::vector<long> parts = {call.bytes / 2};
    if (isWholeAsked()) {
        parts.insert(parts.end(), {call.bytes / 4, call.bytes - 1, call.bytes - 2, call.bytes - 3, call.bytes - 5});
    } else {
        parts.push_back(call.bytes - 4);
    }
    for (const long part : parts) {
        if (part > 0) {
            moments.push_back("within " + std::to_string(part));
        }
    }
    return moments;
}

// Only the call that was meant was killed.
bool isKillOf(const SystemCall& call, const SystemRun& killed)
{
    return killed.status == kKilled && killed.calls.size() == 1 && killed.calls[0].what == "kill" &&
           killed.calls[0].function == call.function && killed.calls[0].number == call.number &&
           killed.calls[0].place == call.place;
}

// The grids that are wrong after the kills.
std::vector<WrongGrid> killEverywhere(const FaultRun& run, const std::string& program = "")
{
    const SystemRun finished = runSystem(run, "watch", program);
    EXPECT_EQ(finished.status, 0) << commandOf(run, "watch", program);
    countRun();
    GridsLeft left(finished.given, finished.files);
    for (const SystemCall& call : finished.calls) {
        if (call.event == 0) {
            continue;
        }
        for (const std::string& moment : momentsOf(call)) {
            const std::string mission = "kill " + std::to_string(call.event) + " " + moment;
            const SystemRun killed = runSystem(run, mission, program);
            EXPECT_TRUE(isKillOf(call, killed))
                << "status " << killed.status << " and not a kill of " << call.function << " " << call.number << "\n"
                << commandOf(run, mission, program);
            left.add(killed.files, mission,
                     "a kill " + moment + " " + call.function + " " + std::to_string(call.number) + " of " + call.file);
            countKill();
        }
    }
    return left.wrong(Readers::toolAndGdal);
}

class Kills : public testing::TestWithParam<FaultRun> {};

TEST_P(Kills, LeaveNoGridThatLooksWholeButIsNot)
{
    for (const WrongGrid& grid : killEverywhere(GetParam())) {
        ADD_FAILURE() << grid.what << '\n' << commandOf(GetParam(), grid.mission);
    }
}

// Which call is the n-th to change a file differs from run to run, and there may be fewer than in the run that is watched.
void killThreads(const FaultRun& run)
{
    const SystemRun finished = runSystem(run, "watch");
    ASSERT_EQ(finished.status, 0) << commandOf(run, "watch");
    countRun();
    const auto isChange = [](const SystemCall& call) { return call.event > 0; };
    const auto changes = std::ranges::count_if(finished.calls, isChange);
    const std::vector<std::string> moments =
        isWholeAsked() ? std::vector<std::string>{"after", "within 3"} : std::vector<std::string>{"after"};
    GridsLeft left(finished.given, finished.files);
    for (long event = 1; event <= changes; ++event) {
        for (const std::string& moment : moments) {
            const std::string mission = "kill " + std::to_string(event) + " " + moment;
            const SystemRun killed = runSystem(run, mission);
            EXPECT_TRUE(killed.status == kKilled || killed.files == finished.files) << commandOf(run, mission);
            left.add(killed.files, mission, "a kill with threads " + moment + " change " + std::to_string(event));
            countKill();
        }
    }
    for (const WrongGrid& grid : left.wrong(Readers::toolAndGdal)) {
        ADD_FAILURE() << grid.what << '\n' << commandOf(run, grid.mission);
    }
}

TEST_P(Kills, OfThreadsLeaveNoGridThatLooksWholeButIsNot)
{
    const std::size_t turn = numberOf(GetParam());
    killThreads(withThreads(GetParam(), threadsOf(turn)));
    if (isWholeAsked()) {
        killThreads(withThreads(GetParam(), threadsOf(turn + 1)));
    }
}

std::vector<FaultRun> runsWithGrids()
{
    std::vector<FaultRun> runs = startedRuns();
    std::erase_if(runs, [](const FaultRun& run) { return !run.writesGrids; });
    return runs;
}

INSTANTIATE_TEST_SUITE_P(Runs, Kills, testing::ValuesIn(runsWithGrids()),
                         [](const auto& one) { return one.param.name; });

// --- The check itself ------------------------------------------------------------------------------------------------

void giveOldCells(ToolRun& run)
{
    const Cells old = {{9, 8}, {7, 6}, {5, 4}};
    run.give("g.hdr", hdr(old));
    run.give("g.flt", fltCells(old));
}

std::vector<std::string> killWriter(const std::string& way, void (*give)(ToolRun&))
{
    std::vector<std::string> lines;
    for (const WrongGrid& grid : killEverywhere({way, way, give, true}, gridWritersPath())) {
        lines.push_back(grid.what);
    }
    return lines;
}

constexpr auto kGiveNothing = [](ToolRun&) {};

TEST(KillsCheck, PassesAWriterThatRenamesAWholeFile)
{
    EXPECT_THAT(killWriter("renamed-whole", kGiveNothing), testing::IsEmpty());
}

TEST(KillsCheck, FindsWritersThatLeaveWhatLooksWhole)
{
    const auto found = [](const std::string& reader, const std::string& how) {
        return testing::Contains(testing::AllOf(testing::HasSubstr(reader), testing::HasSubstr(how)));
    };
    EXPECT_THAT(killWriter("size-first", kGiveNothing), found("by the tool", "after ftruncate 1 of g.flt"));
    EXPECT_THAT(killWriter("header-first", giveOldCells), found("by the tool", "after write 1 of g.hdr"));
    EXPECT_THAT(killWriter("plain-text", kGiveNothing), found("by the tool", "write 1 of g.asc"));
    EXPECT_THAT(killWriter("renamed-early", kGiveNothing), found("by the tool", "after rename 1 of g.asc"));
}

// GDAL takes half of the bytes for cells of two bytes.
TEST(KillsCheck, AsksGdalToo)
{
    if (!hasGdal()) {
        GTEST_SKIP() << "no GDAL";
    }
    EXPECT_THAT(killWriter("header-first", kGiveNothing),
                testing::Contains("g.flt is read whole by GDAL after a kill within 12 write 2 of g.flt"));
}

} // namespace
} // namespace gridforge::test
