#include "support/process_limits.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <psapi.h> // needs the types of windows.h

namespace gridforge::test {

// A limit would hold for the tests that come after, too: see runInChild.
bool canLimitMemory()
{
    return false;
}

void limitMemory(std::size_t /*megabytes*/)
{
    ADD_FAILURE() << "no limit on memory here";
}

bool canLimitFiles()
{
    return false;
}

void limitFiles(std::size_t /*bytes*/)
{
    ADD_FAILURE() << "no limit on files here";
}

std::size_t peakKilobytes()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return counters.PeakWorkingSetSize / 1024;
}

} // namespace gridforge::test
