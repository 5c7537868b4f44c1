#include "host/posix/resources.h"

#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace gridforge::test {
namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

// The files by which a system tells of the groups of a process.
class Groups {
public:
    explicit Groups(const std::string& ofProcess) { folder_.give("proc/self/cgroup", ofProcess); }

    // `group` is empty or begins with a separator.
    void give(const std::string& group, const std::string& file, const std::string& text) const
    {
        folder_.give("sys/fs/cgroup" + group + "/" + file, text);
    }
    std::uint64_t memoryLeft() const { return memoryLeftInGroups(folder_.path().string()); }
    std::size_t processors() const { return processorsOfGroups(folder_.path().string()); }

private:
    ScratchFolder folder_;
};

TEST(MemoryLeftInGroups, IsWhatIsNotTakenYet)
{
    const Groups groups("0::/jobs/one\n");
    groups.give("/jobs/one", "memory.max", "1000\n");
    groups.give("/jobs/one", "memory.current", "300\n");
    EXPECT_EQ(groups.memoryLeft(), 700U);
    // Cached files of the group can go.
    groups.give("/jobs/one", "memory.stat", "anon 200\nfile 90\nkernel 10\n");
    EXPECT_EQ(groups.memoryLeft(), 790U);
    groups.give("/jobs/one", "memory.current", "1500\n");
    EXPECT_EQ(groups.memoryLeft(), 0U);
}

TEST(MemoryLeftInGroups, IsTheLeastOfAllGroupsUpToTheTopmost)
{
    const Groups groups("12:devices:/other\n0::/jobs/one\n");
    EXPECT_EQ(groups.memoryLeft(), kNoLimit); // no group tells
    const auto limit = [&groups](const std::string& group, const std::string& most) {
        groups.give(group, "memory.max", most);
        groups.give(group, "memory.current", "1\n");
    };
    limit("/jobs/one", "max\n");
    EXPECT_EQ(groups.memoryLeft(), kNoLimit);
    limit("/other", "5\n"); // not of this process
    limit("", "101\n");
    EXPECT_EQ(groups.memoryLeft(), 100U);
    limit("/jobs", "51\n");
    EXPECT_EQ(groups.memoryLeft(), 50U);
    limit("/jobs/one", "201\n");
    EXPECT_EQ(groups.memoryLeft(), 50U);
}

TEST(ProcessorsOfGroups, AreWholeAndAtLeastOne)
{
    const Groups groups("0::/one\n");
    EXPECT_EQ(groups.processors(), std::numeric_limits<std::size_t>::max());
    const auto processors = [&groups](const std::string& most) {
        groups.give("/one", "cpu.max", most);
        return groups.processors();
    };
    EXPECT_EQ(processors("max 100000\n"), std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(processors("400000 100000\n"), 4U);
    EXPECT_EQ(processors("400001 100000\n"), 5U);
    EXPECT_EQ(processors("1000 100000\n"), 1U);
    EXPECT_EQ(processors("0 100000\n"), 1U);
    EXPECT_EQ(processors("400000 0\n"), std::numeric_limits<std::size_t>::max());
}

TEST(ProcessorsOfGroups, AreTheFewestOfAllGroups)
{
    const Groups groups("0::/jobs/one\n");
    groups.give("/jobs/one", "cpu.max", "800000 100000\n");
    groups.give("/jobs", "cpu.max", "600000 100000\n");
    EXPECT_EQ(groups.processors(), 6U);
    groups.give("", "cpu.max", "200000 100000\n");
    EXPECT_EQ(groups.processors(), 2U);
}

TEST(Groups, OfTheTopmostAloneAreLookedAtToo)
{
    const Groups groups("0::/\n");
    groups.give("", "cpu.max", "300000 100000\n");
    EXPECT_EQ(groups.processors(), 3U);
}

TEST(Groups, AreNoneWhereTheSystemNamesNone)
{
    for (const char* const ofProcess : {"", "1:cpu:/one\n"}) {
        const Groups groups(ofProcess);
        groups.give("", "cpu.max", "300000 100000\n");
        groups.give("/one", "cpu.max", "300000 100000\n");
        groups.give("", "memory.max", "5\n");
        EXPECT_EQ(groups.processors(), std::numeric_limits<std::size_t>::max());
        EXPECT_EQ(groups.memoryLeft(), kNoLimit);
    }
}

} // namespace
} // namespace gridforge::test
