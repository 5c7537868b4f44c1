// Runs that are killed at each call that changes a file: no .asc or .flt that they leave looks whole but is not, and of all
// other files there is what docs/reliability.md says.
#include "faults/left_files.h"
#include "faults/system_run.h"
#include "faults/whole_grids.h"

#include "support/gdal.h"
#include "support/grids.h"
#include "support/paths.h"
#include "support/sanitizers.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <csignal>
#include <gmock/gmock.h>
#include <netcdf.h>
#include <tuple>

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

// In the quick part, runs that write no grids are killed at one of several calls, in turn.
bool isKilledAt(const SystemCall& call, const FaultRun& run)
{
    constexpr std::size_t kOneOf = 4;
    return call.event > 0 && (run.writesGrids || isWholeAsked() || call.function == "link" ||
                              (static_cast<std::size_t>(call.event) + numberOf(run)) % kOneOf == 0);
}

bool hasPassingName(const SystemRun& killed, const SystemRun& finished)
{
    return std::ranges::any_of(killed.files,
                               [&](const auto& file) { return isPassingName(file.first, finished.files); });
}

// What kills leave that is wrong: grids, and with the tool, whose files are known, all else.
std::vector<WrongFile> killEverywhere(const FaultRun& run, const std::string& program = "")
{
    const SystemRun finished = runSystem(run, "watch", program);
    EXPECT_EQ(finished.status, 0) << commandOf(run, "watch", program);
    countRun();
    GridsLeft grids(finished.given, finished.files);
    FilesLeft others(finished.given, finished.files);
    for (const SystemCall& call : finished.calls) {
        if (!isKilledAt(call, run)) {
            continue;
        }
        for (const std::string& moment : momentsOf(call)) {
            const std::string mission = "kill " + std::to_string(call.event) + " " + moment;
            const SystemRun killed = runSystem(run, mission, program);
            EXPECT_TRUE(isKillOf(call, killed))
                << "status " << killed.status << " and not a kill of " << call.function << " " << call.number << "\n"
                << commandOf(run, mission, program);
            if (program.empty()) { // others have names of their own
                EXPECT_EQ(hasPassingName(killed, finished), (call.function == "link" && moment == "after") ||
                                                                (call.function == "rename" && moment == "before"))
                    << commandOf(run, mission, program);
            }
            const std::string how =
                "a kill " + moment + " " + call.function + " " + std::to_string(call.number) + " of " + call.file;
            grids.add(killed.files, mission, how);
            others.add(killed.files, mission, how);
            countKill();
        }
    }
    std::vector<WrongFile> wrong = grids.wrong(Readers::toolAndGdal);
    if (program.empty()) {
        wrong.insert(wrong.end(), others.wrong().begin(), others.wrong().end());
    }
    return wrong;
}

class Kills : public testing::TestWithParam<FaultRun> {};

TEST_P(Kills, LeaveWhatIsDocumented)
{
    for (const WrongFile& file : killEverywhere(GetParam())) {
        ADD_FAILURE() << file.what << '\n' << commandOf(GetParam(), file.mission);
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
    GridsLeft grids(finished.given, finished.files);
    FilesLeft others(finished.given, finished.files);
    const long step = run.writesGrids || isWholeAsked() ? 1 : 5;
    for (long event = 1; event <= changes; event += step) {
        for (const std::string& moment : moments) {
            const std::string mission = "kill " + std::to_string(event) + " " + moment;
            const SystemRun killed = runSystem(run, mission);
            EXPECT_TRUE(killed.status == kKilled || killed.files == finished.files) << commandOf(run, mission);
            const std::string how = "a kill with threads " + moment + " change " + std::to_string(event);
            grids.add(killed.files, mission, how);
            others.add(killed.files, mission, how);
            countKill();
        }
    }
    std::vector<WrongFile> wrong = grids.wrong(Readers::toolAndGdal);
    wrong.insert(wrong.end(), others.wrong().begin(), others.wrong().end());
    for (const WrongFile& file : wrong) {
        ADD_FAILURE() << file.what << '\n' << commandOf(run, file.mission);
    }
}

TEST_P(Kills, OfThreadsLeaveWhatIsDocumented)
{
    const std::size_t turn = numberOf(GetParam());
    killThreads(withThreads(GetParam(), threadsOf(turn)));
    if (isWholeAsked()) {
        killThreads(withThreads(GetParam(), threadsOf(turn + 1)));
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, Kills, testing::ValuesIn(startedRuns()), [](const auto& one) { return one.param.name; });

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
    for (const WrongFile& grid : killEverywhere({way, way, give, true}, gridWritersPath())) {
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

// --- The check of files other than grids -----------------------------------------------------------------------------

std::vector<std::string> wrongOf(const Files& before, const Files& finished, const Files& left)
{
    FilesLeft files(before, finished);
    files.add(left, "a mission", "a kill");
    std::vector<std::string> lines;
    for (const WrongFile& file : files.wrong()) {
        lines.push_back(file.what);
    }
    return lines;
}

TEST(KillsCheck, PassesTheBeginningsOfTextsAndTables)
{
    const Files finished = {{"a.asc", "in"}, {"t.csv", "a,b\n1,2\n"}, {"l.mif", "Version"}, {"l.mid", "1\n"}};
    EXPECT_THAT(wrongOf({{"a.asc", "in"}}, finished, {{"a.asc", "in"}, {"t.csv", "a,b\n1"}, {"l.mif", ""}}),
                testing::IsEmpty());
    EXPECT_THAT(
        wrongOf({{"a.asc", "in"}}, finished, {{"a.asc", "in"}, {"t.csv", ""}, {"l.mif", "Version"}, {"l.mid", ""}}),
        testing::IsEmpty());
}

TEST(KillsCheck, FindsOtherBytesOtherFilesAndLostInputs)
{
    const Files finished = {{"a.asc", "in"}, {"t.csv", "a,b\n1,2\n"}};
    EXPECT_THAT(wrongOf({{"a.asc", "in"}}, finished, {{"t.csv", "a,b\n2"}, {"u.tmp", ""}, {"t.csv.12.part", ""}}),
                testing::ElementsAre("t.csv does not begin as that of a finished run after a kill",
                                     "t.csv.12.part is left after a kill", "u.tmp is left after a kill",
                                     "the input a.asc is lost after a kill"));
}

TEST(KillsCheck, PassesGridsThatAreWholeMarkedOrEmpty)
{
    const Files finished = {{"a.asc", "ncols 2"}, {"m.hdr", "ncols 3"}, {"m.flt", "cells"}};
    for (const Files& left :
         {Files{{"a.asc", "ncols 2"}, {"m.hdr", "ncols 3"}, {"m.flt", "cells"}},
          Files{{"a.asc", "?cols"}, {"m.hdr", "?cols 3"}, {"m.flt", "other"}},
          Files{{"a.asc", std::string("?co\0\0 2", 7)}}, Files{{"a.asc", ""}, {"m.hdr", ""}, {"m.flt", ""}}}) {
        EXPECT_THAT(wrongOf({}, finished, left), testing::IsEmpty());
    }
}

TEST(KillsCheck, FindsOtherGrids)
{
    const std::string wrong = " is neither whole nor a part of that, marked as such after a kill";
    const Files finished = {{"a.asc", "ncols 2"}, {"m.hdr", "ncols 3"}, {"m.flt", "cells"}};
    EXPECT_THAT(wrongOf({}, finished, {{"a.asc", "ncols"}, {"m.hdr", "?rows"}, {"m.flt", "cells+"}}),
                testing::ElementsAre("a.asc" + wrong, "m.flt is longer than that of a finished run after a kill",
                                     "m.hdr" + wrong));
    EXPECT_THAT(wrongOf({}, finished, {{"a.asc", "?cols 2 "}, {"m.hdr", "rows"}}),
                testing::ElementsAre("a.asc" + wrong, "m.hdr" + wrong));
}

TEST(KillsCheck, KnowsTheNameOfAGridThatWaitsForItsOwn)
{
    const Files finished = {{"m.flt", "cells"}, {"m.hdr", "header"}};
    EXPECT_THAT(wrongOf({}, finished, {{"m.flt.123.part", "cells"}}), testing::IsEmpty());
    EXPECT_THAT(
        wrongOf({}, finished, {{"m.flt.124.part", "cell"}, {"m.flt.a.part", "cells"}, {"n.flt.1.part", "cells"}}),
        testing::ElementsAre("m.flt.124.part is not the whole m.flt after a kill", "m.flt.a.part is left after a kill",
                             "n.flt.1.part is left after a kill"));
}

TEST(KillsCheck, KnowsWhatIsCompletedInTheHeadersOfShapefiles)
{
    const std::string whole(100, 'w');
    for (const auto& [name, at, count] :
         {std::tuple("l.dbf", 4U, 4U), std::tuple("l.shp", 24U, 4U), std::tuple("l.shx", 36U, 32U)}) {
        std::string left = whole;
        left.replace(at, count, std::string(count, '\0'));
        EXPECT_THAT(wrongOf({}, {{name, whole}}, {{name, left}}), testing::IsEmpty());
        left[at - 1] = '\0';
        EXPECT_THAT(wrongOf({}, {{name, whole}}, {{name, left}}), testing::SizeIs(1));
    }
}

// A file of one variable over the dimension of steps; its fill is -1.
std::string netcdfOf(const std::vector<double>& values, int format = NC_NETCDF4)
{
    const ScratchFolder folder;
    const double fill = -1;
    const std::size_t start = 0;
    const std::size_t count = values.size();
    int file = -1;
    int dimension = -1;
    int variable = -1;
    EXPECT_EQ(nc_create((folder.path() / "f.nc").c_str(), format, &file), NC_NOERR);
    EXPECT_EQ(nc_def_dim(file, "time", NC_UNLIMITED, &dimension), NC_NOERR);
    EXPECT_EQ(nc_def_var(file, "v", NC_DOUBLE, 1, &dimension, &variable), NC_NOERR);
    EXPECT_EQ(nc_put_att_double(file, variable, "_FillValue", NC_DOUBLE, 1, &fill), NC_NOERR);
    EXPECT_EQ(nc_enddef(file), NC_NOERR);
    EXPECT_EQ(nc_put_vara_double(file, variable, &start, &count, values.data()), NC_NOERR);
    EXPECT_EQ(nc_close(file), NC_NOERR);
    return folder.read("f.nc");
}

TEST(KillsCheck, ReadsNetcdf)
{
    if (kSanitized) {
        GTEST_SKIP() << "the library is not asked there";
    }
    const Files finished = {{"f.nc", netcdfOf({1, 2, 3})}};
    for (const std::string& left : {netcdfOf({1, 2}), netcdfOf({1, -1, 3}), std::string("no NetCDF")}) {
        EXPECT_THAT(wrongOf({}, finished, {{"f.nc", left}}), testing::IsEmpty());
    }
    for (const std::string& left : {netcdfOf({1, 4}), netcdfOf({1, 2, 3, -1})}) {
        EXPECT_THAT(wrongOf({}, finished, {{"f.nc", left}}),
                    testing::ElementsAre("f.nc has other values of v than that of a finished run after a kill"));
    }
}

TEST(KillsCheck, KnowsWhatIsCutOffInTheClassicFormat)
{
    if (kSanitized) {
        GTEST_SKIP() << "the library is not asked there";
    }
    const std::string whole = netcdfOf({1, 2, 0.3}, NC_CLOBBER);
    const Files finished = {{"f.nc", whole}};
    for (const std::size_t cut : {1U, 7U, 12U}) {
        EXPECT_THAT(wrongOf({}, finished, {{"f.nc", whole.substr(0, whole.size() - cut)}}), testing::IsEmpty());
    }
    std::string damaged = whole;
    damaged[whole.size() - 16] = '\1';
    EXPECT_THAT(wrongOf({}, finished, {{"f.nc", damaged}}), testing::SizeIs(1));
    EXPECT_THAT(wrongOf({}, {{"f.nc", netcdfOf({1, 2})}}, {{"f.nc", netcdfOf({1, 0})}}), testing::SizeIs(1));
}

} // namespace
} // namespace gridforge::test
