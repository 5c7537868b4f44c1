#include "host/posix/resources.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <sched.h>
#include <sstream>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <utility>
#include <vector>

namespace gridforge::inline host {

namespace {

constexpr std::uint64_t kNoLimit = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kKilobyte = 1024;

std::uint64_t less(std::uint64_t from, std::uint64_t taken)
{
    return from == kNoLimit ? kNoLimit : from - std::min(from, taken);
}

// The number after `key` in a file of lines with a key and a value.
std::optional<std::uint64_t> valueAfter(const std::string& file, const std::string& key)
{
    std::ifstream in(file);
    for (std::string word; in >> word;) {
        if (word == key) {
            std::uint64_t value = 0;
            return in >> value ? std::optional(value) : std::nullopt;
        }
    }
    return std::nullopt;
}

// The limit in a file that holds one number. None if it is missing, "max" or -1, or as large as version 1 of control groups has it
// where nothing is limited: as many whole pages as can be counted.
std::uint64_t limitIn(const std::string& file)
{
    constexpr std::int64_t kLeastThatLimitsNothing = std::int64_t{1} << 62;
    std::ifstream in(file);
    std::int64_t value = 0;
    return in >> value && value >= 0 && value < kLeastThatLimitsNothing ? static_cast<std::uint64_t>(value) : kNoLimit;
}

// --- Control groups: a tree of them for each controller (version 1), one tree for all (version 2), or both -----------

constexpr const char* kVersion2 = ""; // in the place of a controller

// The folder in which a tree is seen, from one of its groups on.
struct Mount {
    std::string controllers; // with commas between them, and maybe other words; none in version 2
    std::string topmost;     // the group that the folder itself is
    std::string folder;
};

bool names(const std::string& controllers, const std::string& controller)
{
    return ("," + controllers + ",").find("," + controller + ",") != std::string::npos;
}

// As it goes on after a folder: the topmost group is nothing.
std::string asPath(const std::string& group)
{
    return group.size() == 1 ? "" : group;
}

// Fields, some optional ones, and after a dash the kind of file system, its source and its options.
Mount mountIn(const std::string& line)
{
    Mount mount;
    std::istringstream in(line);
    std::string word;
    std::string topmost;
    in >> word >> word >> word >> topmost >> mount.folder;
    mount.topmost = asPath(topmost);
    while (in >> word && word != "-") {
    }
    std::string kind;
    in >> kind >> word >> word;
    mount.controllers = kind == "cgroup2" ? kVersion2 : word;
    return mount;
}

std::vector<Mount> mountsOfGroups(const std::string& root)
{
    std::vector<Mount> mounts;
    std::ifstream in(root + "/proc/self/mountinfo");
    for (std::string line; std::getline(in, line);) {
        if (line.find(" - cgroup") != std::string::npos) { // of which there are few
            mounts.push_back(mountIn(line));
        }
    }
    return mounts;
}

// The group of the process in a tree.
struct Group {
    std::string controllers; // as of a mount
    std::string path;
};

// From lines of a number, controllers and a path, with colons between them.
std::vector<Group> groupsOfProcess(const std::string& root)
{
    std::vector<Group> groups;
    std::ifstream in(root + "/proc/self/cgroup");
    Group group;
    for (std::string path; std::getline(in, group.controllers, ':') && std::getline(in, group.controllers, ':') &&
                           std::getline(in, path);) {
        group.path = asPath(path);
        groups.push_back(group);
    }
    return groups;
}

// All of it that limits need, of the system below `root`.
struct Trees {
    std::string root;
    std::vector<Mount> mounts;
    std::vector<Group> groups;
};

Trees treesBelow(const std::string& root)
{
    return {.root = root, .mounts = mountsOfGroups(root), .groups = groupsOfProcess(root)};
}

// They stay the same, and to list the mounts takes longer than to read a limit.
const Trees& treesOfProcess()
{
    static const Trees kTrees = treesBelow("");
    return kTrees;
}

// Where the group is below the folder of the mount. Nothing if it is not: a container may see its own tree but be told of the
// group by its place in the whole one, or by the way to it from that of the container.
std::optional<std::string> pathBelow(const Mount& mount, const std::string& group)
{
    if (!group.starts_with(mount.topmost)) {
        return std::nullopt;
    }
    std::string path = group.substr(mount.topmost.size());
    const bool isBelow = (path.empty() || path.starts_with('/')) && !path.starts_with("/..");
    return isBelow ? std::optional(std::move(path)) : std::nullopt;
}

// The folders of a group and of those above it in the tree of a controller, as far as a mount shows them: at least that of the
// mount itself.
std::vector<std::string> foldersOf(const std::string& group, const std::string& controller, std::vector<Mount> mounts)
{
    std::erase_if(mounts, [&](const Mount& mount) { return !names(mount.controllers, controller); });
    if (mounts.empty()) {
        return {};
    }
    const auto showing =
        std::ranges::find_if(mounts, [&](const Mount& mount) { return pathBelow(mount, group).has_value(); });
    const Mount& mount = showing != mounts.end() ? *showing : mounts.front();
    std::string path = pathBelow(mount, group).value_or("");
    std::vector<std::string> folders;
    for (; !path.empty(); path.resize(path.rfind('/'))) {
        folders.push_back(mount.folder + path);
    }
    folders.push_back(mount.folder);
    return folders;
}

// The system drops cached files of a group when room is needed.
std::uint64_t leftIn(std::uint64_t limit, const std::string& taken, std::optional<std::uint64_t> cached)
{
    return less(limit, less(limitIn(taken), cached.value_or(0)));
}

std::uint64_t memoryLeftByVersion1(const std::string& folder)
{
    const std::uint64_t limit = limitIn(folder + "/memory.limit_in_bytes");
    if (limit == kNoLimit) {
        return kNoLimit;
    }
    const std::string counts = folder + "/memory.stat";
    const auto ofAllBelow = valueAfter(counts, "total_cache");
    return leftIn(limit, folder + "/memory.usage_in_bytes", ofAllBelow ? ofAllBelow : valueAfter(counts, "cache"));
}

std::uint64_t memoryLeftByVersion2(const std::string& folder)
{
    const std::uint64_t limit = limitIn(folder + "/memory.max");
    if (limit == kNoLimit) {
        return kNoLimit;
    }
    return leftIn(limit, folder + "/memory.current", valueAfter(folder + "/memory.stat", "file"));
}

// Microseconds of processors in each period of so many.
std::uint64_t wholeProcessors(std::uint64_t quota, std::uint64_t period)
{
    const bool limited = quota != kNoLimit && period != kNoLimit && period > 0;
    return limited ? std::max<std::uint64_t>(1, (quota + period - 1) / period) : kNoLimit;
}

std::uint64_t processorsByVersion1(const std::string& folder)
{
    return wholeProcessors(limitIn(folder + "/cpu.cfs_quota_us"), limitIn(folder + "/cpu.cfs_period_us"));
}

std::uint64_t processorsByVersion2(const std::string& folder)
{
    std::ifstream in(folder + "/cpu.max");
    std::uint64_t quota = 0;
    std::uint64_t period = 0;
    return in >> quota >> period ? wholeProcessors(quota, period) : kNoLimit;
}

using LimitOfGroup = std::uint64_t (*)(const std::string& folder);

std::uint64_t leastOfGroups(const Trees& trees, const std::string& controller, LimitOfGroup byVersion1,
                            LimitOfGroup byVersion2)
{
    std::uint64_t least = kNoLimit;
    const auto take = [&](const Group& group, const std::string& tree, LimitOfGroup limitOf) {
        if (names(group.controllers, tree)) {
            for (const std::string& folder : foldersOf(group.path, tree, trees.mounts)) {
                least = std::min(least, limitOf(trees.root + folder));
            }
        }
    };
    for (const Group& group : trees.groups) {
        take(group, controller, byVersion1);
        take(group, kVersion2, byVersion2);
    }
    return least;
}

std::size_t processorsIn(const Trees& trees)
{
    return static_cast<std::size_t>(leastOfGroups(trees, "cpu", processorsByVersion1, processorsByVersion2));
}

std::uint64_t memoryLeftIn(const Trees& trees)
{
    return leastOfGroups(trees, "memory", memoryLeftByVersion1, memoryLeftByVersion2);
}

// --- The process -----------------------------------------------------------------------------------------------------

std::uint64_t leftOf(__rlimit_resource resource, const std::string& taken)
{
    rlimit limit = {};
    if (getrlimit(resource, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return kNoLimit;
    }
    return less(limit.rlim_cur, valueAfter("/proc/self/status", taken).value_or(0) * kKilobyte);
}

std::size_t countProcessors()
{
    cpu_set_t set;
    const bool known = sched_getaffinity(0, sizeof set, &set) == 0;
    const auto count = known ? static_cast<std::size_t>(CPU_COUNT(&set)) : std::thread::hardware_concurrency();
    return std::max<std::size_t>(1, std::min<std::size_t>(count, processorsIn(treesOfProcess())));
}

} // namespace

std::size_t processorsOfGroups(const std::string& root)
{
    return processorsIn(treesBelow(root));
}

std::uint64_t memoryLeftInGroups(const std::string& root)
{
    return memoryLeftIn(treesBelow(root));
}

std::size_t processorsToUse()
{
    static const std::size_t kProcessors = countProcessors();
    return kProcessors;
}

std::uint64_t memoryLeftToTake()
{
    const std::uint64_t machine = valueAfter("/proc/meminfo", "MemAvailable:").value_or(0) * kKilobyte;
    return std::min(
        {machine, memoryLeftIn(treesOfProcess()), leftOf(RLIMIT_AS, "VmSize:"), leftOf(RLIMIT_DATA, "VmData:")});
}

} // namespace gridforge::inline host
