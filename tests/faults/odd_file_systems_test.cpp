// File systems that lack something: the runs do the same without it, or say so.
#include "faults/system_run.h"
#include "support/consoles.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

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

// What was written is refused when the file is closed, as by a full disk on the other side of a network.
TEST_P(OddFileSystems, ThatRefuseAtTheEnd)
{
    const SystemRun odd = runSystem(GetParam(), missionOf({"close", EIO}));
    EXPECT_EQ(odd.status, 0);
    EXPECT_EQ(odd.error, "");
    const bool writesFiles = GetParam().name != "Usage";
    const bool isReported = odd.console.ends_with(kExits) && odd.console.find("ERROR ") != std::string::npos;
    EXPECT_EQ(isReported, writesFiles) << odd.console;
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
