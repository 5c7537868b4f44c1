// A limit on the memory of a process that a test has started, so that an allocation fails at a known place.
#pragma once

#include "support/sanitizers.h"

#include <cstddef>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace gridforge::test {

// A sanitizer has taken its memory before any limit.
constexpr bool canLimitMemory()
{
    return !kSanitized;
}

// From now on the process gets no more than this many megabytes.
inline void limitMemory(std::size_t megabytes)
{
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t bytes = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + (megabytes << 20U);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_AS, &limit);
}

} // namespace gridforge::test
