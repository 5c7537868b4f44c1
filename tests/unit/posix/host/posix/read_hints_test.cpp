#include "host/posix/read_hints.h"

#include "host/system.h"
#include "support/scratch_folder.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/sysmacros.h>
#include <system_error>
#include <unistd.h>

namespace gridforge::test {
namespace {

namespace fs = std::filesystem;

// Of a name such as "253:1".
std::uint64_t deviceNamed(const std::string& name)
{
    unsigned first = 0;
    unsigned second = 0;
    EXPECT_EQ(std::sscanf(name.c_str(), "%u:%u", &first, &second), 2) << name;
    return makedev(first, second);
}

std::int64_t kilobytesIn(const fs::path& file)
{
    std::ifstream in(file);
    std::int64_t kilobytes = -1;
    in >> kilobytes;
    return kilobytes;
}

// Empty where the system does not show its devices.
fs::directory_iterator entriesOf(const fs::path& folder)
{
    std::error_code error;
    return {folder, error};
}

TEST(ReadHints, KnowHowFarTheSystemReadsADeviceAhead)
{
    for (const auto& device : entriesOf("/sys/class/bdi")) {
        const std::string name = device.path().filename();
        if (name.find(':') != std::string::npos) {
            EXPECT_EQ(readAheadOf(deviceNamed(name)), kilobytesIn(device.path() / "read_ahead_kb") * 1024) << name;
        }
    }
}

// A part of a disk is read ahead as the disk is.
TEST(ReadHints, KnowHowFarTheSystemReadsAPartOfADiskAhead)
{
    for (const auto& part : entriesOf("/sys/class/block")) {
        if (fs::exists(part.path() / "partition")) {
            std::string name;
            std::ifstream(part.path() / "dev") >> name;
            const fs::path disk = fs::canonical(part.path()).parent_path();
            EXPECT_EQ(readAheadOf(deviceNamed(name)), kilobytesIn(disk / "queue" / "read_ahead_kb") * 1024) << name;
        }
    }
}

TEST(ReadHints, AreOfUseWhereTheSystemReadsLittleAhead)
{
    constexpr std::int64_t kKilobytes = 1024;
    const auto isOfUse = [](std::int64_t count, ReadOf of, std::int64_t readAhead) {
        return isHintOfUse(count * kKilobytes, of, [=] { return readAhead * kKilobytes; });
    };
    EXPECT_TRUE(isOfUse(4096, ReadOf::all, 0));
    EXPECT_TRUE(isOfUse(256, ReadOf::all, 128));
    EXPECT_FALSE(isOfUse(255, ReadOf::all, 128));
    EXPECT_TRUE(isOfUse(4096, ReadOf::all, 1023));
    EXPECT_FALSE(isOfUse(4096, ReadOf::all, 1024));
    EXPECT_TRUE(isOfUse(4096, ReadOf::parts, 8192));
    EXPECT_FALSE(isOfUse(4, ReadOf::parts, 0));
}

TEST(ReadHints, AskNothingOfTheSystemForSmallFiles)
{
    bool isAsked = false;
    const auto readAhead = [&] {
        isAsked = true;
        return 0;
    };
    EXPECT_FALSE(isHintOfUse(1000, ReadOf::all, readAhead));
    EXPECT_FALSE(isAsked);
    EXPECT_TRUE(isHintOfUse(1'000'000, ReadOf::all, readAhead));
    EXPECT_TRUE(isAsked);
}

TEST(ReadHints, KeepWhatTheyKnowOfEachDevice)
{
    for (const auto& device : entriesOf("/sys/class/bdi")) {
        const std::string name = device.path().filename();
        if (name.find(':') != std::string::npos) {
            const std::uint64_t number = deviceNamed(name);
            for (const std::uint64_t other : {number, number + 16, number, number}) {
                EXPECT_EQ(knownReadAheadOf(other), readAheadOf(other)) << name;
            }
        }
    }
}

TEST(ReadHints, KnowNothingOfADeviceThatIsNotThere)
{
    EXPECT_EQ(readAheadOf(makedev(4000, 77)), 0);
}

void expectSameAfterAHint(const std::string& name)
{
    constexpr std::int64_t kHinted = 1'000'000;
    std::ofstream(name) << std::string(kHinted, 'a') << "bcd";
    const SystemFile file = nativeSystem().open(name, OpenFor::reading);
    nativeSystem().willRead(file, 0, kHinted, ReadOf::all);
    nativeSystem().willRead(file, 0, kHinted, ReadOf::parts);
    std::array<char, 3> end{};
    EXPECT_EQ(nativeSystem().readAt(file, kHinted, end), 3) << name;
    EXPECT_EQ(std::string(end.data(), end.size()), "bcd") << name;
    EXPECT_TRUE(nativeSystem().close(file));
    fs::remove(name);
}

TEST(ReadHints, ReadTheSameAfterAHint)
{
    const ScratchFolder scratch;
    expectSameAfterAHint(scratch.path() / "hinted");
}

// No device reads such a folder ahead.
TEST(ReadHints, ReadTheSameAfterAHintInAFolderInMemory)
{
    const fs::path memory = "/dev/shm";
    if (!fs::is_directory(memory)) {
        GTEST_SKIP() << "there is no folder in memory";
    }
    expectSameAfterAHint(memory / ("gridforge_hinted_" + std::to_string(getpid())));
}

} // namespace
} // namespace gridforge::test
