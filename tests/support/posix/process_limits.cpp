#include "support/process_limits.h"

#include "support/sanitizers.h"

#include <csignal>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace gridforge::test {

bool canLimitMemory()
{
    return !kSanitized;
}

void limitMemory(std::size_t megabytes)
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t bytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + (megabytes << 20U);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
}

bool canLimitFiles()
{
    return true;
}

void limitFiles(std::size_t bytes)
{
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

std::size_t peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss);
}

} // namespace gridforge::test
