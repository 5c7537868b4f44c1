#include "host/posix/resources.h"

#include "host/console.h"
#include "support/child_run.h"
#include "support/process_limits.h"
#include "support/scratch_folder.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <sys/resource.h>

namespace gridforge::test {
namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();

const std::string kMountOfVersion2 =
    "30 23 0:26 / /sys/fs/cgroup rw,nosuid shared:4 - cgroup2 cgroup2 rw,nsdelegate,memory_recursiveprot\n";

// A tree of version 1, as a line of the mounts. `topmost` is the group that its folder shows.
std::string mountOf(const std::string& controllers, const std::string& topmost = "/")
{
    return "33 30 0:30 " + topmost + " /sys/fs/cgroup/" + controllers +
           " rw,nosuid shared:9 master:2 - cgroup cgroup rw," + controllers + "\n";
}

// The files by which a system tells of the groups of a process.
class Groups {
public:
    explicit Groups(const std::string& ofProcess, const std::string& mounts = kMountOfVersion2)
    {
        folder_.give("proc/self/cgroup", ofProcess);
        folder_.give("proc/self/mountinfo", "21 1 0:19 / /proc rw shared:13 - proc proc rw\n" + mounts);
    }

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

// --- Version 1, with a tree for each controller ----------------------------------------------------------------------

// Limits the memory of a group in the tree of that controller.
void limitMemory(const Groups& groups, const std::string& group, const std::string& limit, const std::string& taken)
{
    groups.give("/memory" + group, "memory.limit_in_bytes", limit + "\n");
    groups.give("/memory" + group, "memory.usage_in_bytes", taken + "\n");
}

void limitProcessors(const Groups& groups, const std::string& group, const std::string& quota,
                     const std::string& period)
{
    groups.give(group, "cpu.cfs_quota_us", quota + "\n");
    groups.give(group, "cpu.cfs_period_us", period + "\n");
}

TEST(MemoryLeftInGroups, OfVersion1IsWhatIsNotTakenYet)
{
    const Groups groups("9:name=systemd:/memory\n4:memory:/jobs/one\n1:cpu:/other\n",
                        mountOf("cpu") + mountOf("memory"));
    EXPECT_EQ(groups.memoryLeft(), kNoLimit);
    limitMemory(groups, "/other", "5", "0"); // by the tree of another controller
    limitMemory(groups, "/memory", "6", "0");
    EXPECT_EQ(groups.memoryLeft(), kNoLimit);
    limitMemory(groups, "/jobs/one", "1000", "300");
    EXPECT_EQ(groups.memoryLeft(), 700U);
    // Cached files of the group and those below it.
    groups.give("/memory/jobs/one", "memory.stat", "cache 60\nrss 200\ntotal_cache 90\ntotal_rss 210\n");
    EXPECT_EQ(groups.memoryLeft(), 790U);
    groups.give("/memory/jobs/one", "memory.stat", "cache 60\nrss 200\n");
    EXPECT_EQ(groups.memoryLeft(), 760U);
    limitMemory(groups, "/jobs/one", "1000", "1500");
    EXPECT_EQ(groups.memoryLeft(), 0U);
}

TEST(MemoryLeftInGroups, OfVersion1IsTheLeastOfAllGroupsUpToTheTopmost)
{
    const Groups groups("4:memory:/jobs/one\n", mountOf("memory"));
    for (const char* const none : {"9223372036854771712", "9223372036854710272", "18446744073709551615"}) {
        limitMemory(groups, "/jobs/one", none, "300");
        EXPECT_EQ(groups.memoryLeft(), kNoLimit) << none;
    }
    limitMemory(groups, "", "101", "1");
    EXPECT_EQ(groups.memoryLeft(), 100U);
    limitMemory(groups, "/jobs", "51", "1");
    EXPECT_EQ(groups.memoryLeft(), 50U);
    limitMemory(groups, "/jobs/one", "201", "1");
    EXPECT_EQ(groups.memoryLeft(), 50U);
}

TEST(MemoryLeftInGroups, OfATreeThatIsSeenFromAGroupOn)
{
    const Groups groups("4:memory:/box/7/job\n", mountOf("memory", "/box/7"));
    limitMemory(groups, "", "101", "1");
    EXPECT_EQ(groups.memoryLeft(), 100U);
    limitMemory(groups, "/job", "51", "1");
    EXPECT_EQ(groups.memoryLeft(), 50U);
    limitMemory(groups, "/box/7/job", "5", "1"); // a group of that name below it
    EXPECT_EQ(groups.memoryLeft(), 50U);
}

TEST(MemoryLeftInGroups, OfAGroupThatIsNotSeenIsThatOfItsMount)
{
    for (const char* const group : {"/box/77", "/box", "/", "/elsewhere/job", "/box/7/../8", "/../8"}) {
        const Groups groups(std::string("4:memory:") + group + "\n", mountOf("memory", "/box/7"));
        limitMemory(groups, "", "101", "1");
        limitMemory(groups, "7", "11", "1");
        limitMemory(groups, "/../8", "12", "1"); // beside the mount
        EXPECT_EQ(groups.memoryLeft(), 100U) << group;
    }
    const Groups groups("4:memory:/box/7/job\n", mountOf("memory")); // whose folder is missing
    limitMemory(groups, "", "101", "1");
    EXPECT_EQ(groups.memoryLeft(), 100U);
}

// A container may be shown more than one part of a tree.
TEST(MemoryLeftInGroups, IsLookedForWhereTheGroupIsSeen)
{
    const std::string other = "40 30 0:30 /box/8 /mnt/other rw - cgroup cgroup rw,memory\n";
    const Groups groups("4:memory:/box/7\n", other + mountOf("memory", "/box/7"));
    groups.give("/../../../mnt/other", "memory.limit_in_bytes", "11\n");
    groups.give("/../../../mnt/other", "memory.usage_in_bytes", "1\n");
    limitMemory(groups, "", "101", "1");
    EXPECT_EQ(groups.memoryLeft(), 100U);
}

TEST(ProcessorsOfGroups, OfVersion1AreWholeAndAtLeastOne)
{
    const Groups groups("2:cpuacct,cpu:/jobs/one\n", mountOf("cpuset") + mountOf("cpu,cpuacct"));
    EXPECT_EQ(groups.processors(), std::numeric_limits<std::size_t>::max());
    const auto processors = [&groups](const std::string& quota, const std::string& period) {
        limitProcessors(groups, "/cpu,cpuacct/jobs/one", quota, period);
        return groups.processors();
    };
    EXPECT_EQ(processors("-1", "100000"), std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(processors("400000", "100000"), 4U);
    EXPECT_EQ(processors("400001", "100000"), 5U);
    EXPECT_EQ(processors("1000", "100000"), 1U);
    EXPECT_EQ(processors("400000", "0"), std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(processors("400000", ""), std::numeric_limits<std::size_t>::max());
    processors("800000", "100000");
    limitProcessors(groups, "/cpu,cpuacct/jobs", "600000", "100000");
    EXPECT_EQ(groups.processors(), 6U);
    limitProcessors(groups, "/cpu,cpuacct", "200000", "100000");
    EXPECT_EQ(groups.processors(), 2U);
}

TEST(ProcessorsOfGroups, AreNotThoseOfOtherControllers)
{
    const Groups groups("3:cpuset:/one\n2:cpuacct:/one\n", mountOf("cpuset") + mountOf("cpuacct"));
    limitProcessors(groups, "/cpuset/one", "200000", "100000");
    limitProcessors(groups, "/cpuacct/one", "200000", "100000");
    EXPECT_EQ(groups.processors(), std::numeric_limits<std::size_t>::max());
}

// --- Both versions ---------------------------------------------------------------------------------------------------

TEST(Groups, OfBothVersionsCount)
{
    const std::string unified = "41 31 0:38 / /sys/fs/cgroup/unified rw - cgroup2 cgroup2 rw\n";
    const Groups groups("4:memory:/one\n1:cpu:/two\n0::/three\n", mountOf("memory") + mountOf("cpu") + unified);
    limitMemory(groups, "/one", "101", "1");
    limitProcessors(groups, "/cpu/two", "300000", "100000");
    EXPECT_EQ(groups.memoryLeft(), 100U);
    EXPECT_EQ(groups.processors(), 3U);
    groups.give("/unified/three", "memory.max", "51\n");
    groups.give("/unified/three", "memory.current", "1\n");
    groups.give("/unified/three", "cpu.max", "200000 100000\n");
    EXPECT_EQ(groups.memoryLeft(), 50U);
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

TEST(Groups, AreNoneWhereNoTreeIsSeen)
{
    const Groups groups("4:memory:/one\n1:cpu:/one\n0::/one\n", "");
    limitMemory(groups, "/one", "5", "0");
    limitProcessors(groups, "/cpu/one", "300000", "100000");
    groups.give("/one", "memory.max", "5\n");
    EXPECT_EQ(groups.processors(), std::numeric_limits<std::size_t>::max());
    EXPECT_EQ(groups.memoryLeft(), kNoLimit);
}

// --- The process -----------------------------------------------------------------------------------------------------

TEST(MemoryLeft, IsWithinWhatALimitOfTheProcessLeaves)
{
    if (!canLimitMemory()) {
        GTEST_SKIP() << "memory is not limited here";
    }
    constexpr rlim_t kLimit = rlim_t{512} << 20;
    ASSERT_GT(memoryLeftToTake(), kLimit);
    for (const auto resource : {RLIMIT_AS, RLIMIT_DATA}) {
        const ScratchFolder folder;
        const ChildRun child = runInChild(folder, [&] {
            rlimit limit = {};
            getrlimit(resource, &limit);
            limit.rlim_cur = kLimit;
            setrlimit(resource, &limit);
            say(memoryLeftToTake() < kLimit ? "within" : "beyond");
        });
        EXPECT_EQ(child.console, "within\n");
    }
}

} // namespace
} // namespace gridforge::test
