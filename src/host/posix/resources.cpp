#include "host/posix/resources.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <optional>
#include <sched.h>
#include <string>
#include <sys/resource.h>
#include <thread>

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

// The limit in a file that holds one number; none if it holds "max" or is missing.
std::uint64_t limitIn(const std::string& file)
{
    std::ifstream in(file);
    std::uint64_t value = 0;
    return in >> value ? value : kNoLimit;
}

// Calls `work` with the folder of each control group of the process, from its own up to the topmost.
template <typename Work>
void forEachGroup(const std::string& root, Work work)
{
    std::ifstream in(root + "/proc/self/cgroup");
    std::string group;
    while (std::getline(in, group) && !group.starts_with("0::")) {
    }
    if (!group.starts_with("0::/")) {
        return;
    }
    group.erase(0, std::string("0::").size());
    const std::string topmost = root + "/sys/fs/cgroup";
    while (!group.empty()) {
        work(topmost + group);
        group.resize(group.size() > 1 ? std::max<std::size_t>(group.rfind('/'), 1) : 0);
        if (group == "/") {
            work(topmost);
            return;
        }
    }
}

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
    return std::max<std::size_t>(1, std::min<std::size_t>(count, processorsOfGroups("")));
}

} // namespace

std::size_t processorsOfGroups(const std::string& root)
{
    std::size_t processors = std::numeric_limits<std::size_t>::max();
    forEachGroup(root, [&processors](const std::string& group) {
        std::ifstream in(group + "/cpu.max");
        std::size_t quota = 0;
        std::size_t period = 0;
        if (in >> quota >> period && period > 0) {
            processors = std::min(processors, std::max<std::size_t>(1, (quota + period - 1) / period));
        }
    });
    return processors;
}

// The system drops cached files of the group when room is needed.
std::uint64_t memoryLeftInGroups(const std::string& root)
{
    std::uint64_t left = kNoLimit;
    forEachGroup(root, [&left](const std::string& group) {
        const std::uint64_t limit = limitIn(group + "/memory.max");
        if (limit == kNoLimit) {
            return;
        }
        const std::uint64_t files = valueAfter(group + "/memory.stat", "file").value_or(0);
        left = std::min(left, less(limit, less(limitIn(group + "/memory.current"), files)));
    });
    return left;
}

std::size_t processorsToUse()
{
    static const std::size_t kProcessors = countProcessors();
    return kProcessors;
}

std::uint64_t memoryLeftToTake()
{
    const std::uint64_t machine = valueAfter("/proc/meminfo", "MemAvailable:").value_or(0) * kKilobyte;
    return std::min({machine, memoryLeftInGroups(""), leftOf(RLIMIT_AS, "VmSize:"), leftOf(RLIMIT_DATA, "VmData:")});
}

} // namespace gridforge::inline host
