// File systems that lack something: the runs do the same without it, or say so.
#include "faults/left_files.h"
#include "faults/system_run.h"
#include "faults/whole_grids.h"
#include "support/consoles.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace gridforge::test {
namespace {

struct Lack {
    const char* function;
    int error; // by which network and FUSE file systems refuse it
};

const Lack kLacks[] = {{"fallocate", EOPNOTSUPP}, {"unnamed", EOPNOTSUPP}, {"link", EPERM},
                       {"rename", EEXIST},        {"lock", ENOSYS},        {"fadvise", ENOSYS}};

std::string missionOf(const Lack& lack)
{
    return std::string("lack ") + lack.function + ' ' + std::to_string(lack.error);
}

class OddFileSystems : public testing::TestWithParam<FaultRun> {};

TEST_P(OddFileSystems, ChangeNothing)
{
    const SystemRun good = runSystem(GetParam(), "watch");
    countRun();
    bool threads = false;
    std::size_t place = GetParam().name.size();
    for (const Lack& lack : kLacks) {
        if (place++ % 3 != 0 && !isWholeAsked()) {
            continue;
        }
        const FaultRun run = threads ? withThreads(GetParam(), threadsOf(place)) : GetParam();
        const SystemRun odd = runSystem(run, missionOf(lack));
        const bool isAsGood = odd.status == 0 && odd.error.empty() && odd.console == good.console &&
                              odd.files == good.files && odd.permissions == good.permissions;
        EXPECT_TRUE(isAsGood) << "status " << odd.status << ", standard error |" << odd.error << "|\n"
                              << odd.console << commandOf(run, missionOf(lack));
        threads = !threads;
    }
}

// The first file that could not be closed, or nullptr. Those without a name are memory, and nobody reads the room of one that
// is closed.
const SystemCall* refusedClose(const SystemRun& run)
{
    const auto found = std::ranges::find_if(
        run.calls, [](const SystemCall& call) { return call.role == 'w' && call.file != "(unnamed)"; });
    return found == run.calls.end() ? nullptr : &*found;
}

// The message about a file that could not be closed. Of layers, the .mif and the .prj are closed first.
Lines messageAbout(const std::string& file)
{
    if (file.ends_with(".mif")) {
        return {"ERROR 0439 - Writing .mif file object coordinates."};
    }
    if (file.ends_with(".nc")) {
        return {"ERROR - With nectdf call nf90_close", "Netcdf error message: NetCDF: HDF error"};
    }
    return {"ERROR - Could not write to file: " + file};
}

std::string joinedLines(const Lines& lines)
{
    std::string text;
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    return text;
}

// What was written is refused when the file is closed, as by a full disk on the other side of a network: the run ends with
// the message about the first such file, and leaves what a kill may leave.
TEST_P(OddFileSystems, ThatRefuseAtTheEnd)
{
    const SystemRun good = runSystem(GetParam(), "watch");
    const std::string mission = missionOf({"close", EIO});
    GridsLeft grids(good.given, good.files);
    FilesLeft others(good.given, good.files);
    std::vector<FaultRun> runs = {GetParam()};
    for (const int threads : kThreadsTried) {
        runs.push_back(withThreads(GetParam(), threads));
    }
    for (const FaultRun& run : runs) {
        const SystemRun odd = runSystem(run, mission);
        EXPECT_EQ(odd.status, 0);
        EXPECT_EQ(odd.error, "");
        const SystemCall* const refused = refusedClose(odd);
        EXPECT_EQ(refused != nullptr, run.name != "Usage") << commandOf(run, mission);
        if (refused != nullptr) {
            std::string file = refused->file;
            if (file.starts_with("./")) { // by a library
                file = file.substr(2);
            }
            EXPECT_THAT(odd.console, testing::EndsWith("\n" + joinedLines(errorEnd(messageAbout(file)))))
                << commandOf(run, mission);
        }
        grids.add(odd.files, mission, "refused closes");
        others.add(odd.files, mission, "refused closes");
    }
    std::vector<WrongFile> wrong = grids.wrong(Readers::tool);
    wrong.insert(wrong.end(), others.wrong().begin(), others.wrong().end());
    for (const WrongFile& file : wrong) {
        ADD_FAILURE() << file.what << '\n' << commandOf(GetParam(), mission);
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, OddFileSystems, testing::ValuesIn(startedRuns()),
                         [](const auto& one) { return one.param.name; });

TEST(OddFileSystem, IsMetByARun)
{
    for (const Lack& lack : kLacks) {
        // The last runs write NetCDF, and only its library locks.
        EXPECT_TRUE(std::any_of(faultRuns().rbegin(), faultRuns().rend(), [&](const FaultRun& run) {
            return !runSystem(run, missionOf(lack)).calls.empty();
        })) << lack.function;
    }
}

// The NetCDF-4 library locks its files, unless it is asked not to.
TEST(OddFileSystem, ThatRefusesLocksIsReported)
{
    FaultRun run = *std::ranges::find(faultRuns(), "SeriesBlock", &FaultRun::name);
    const std::string mission = missionOf({"lock", ENOLCK});
    const SystemRun refused = runSystem(run, mission);
    EXPECT_EQ(refused.status, 0);
    EXPECT_THAT(refused.console, testing::HasSubstr("\nERROR - With nectdf call nf90_create\nNetcdf error message: "));
    run.settings.emplace_back("HDF5_USE_FILE_LOCKING", "FALSE");
    EXPECT_EQ(runSystem(run, mission).files, runSystem(run, "watch").files);
}

} // namespace
} // namespace gridforge::test
