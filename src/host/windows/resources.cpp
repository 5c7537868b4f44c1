#include "host/windows/resources.h"

#include "host/system.h"
#include "host/windows/names.h"

#include <algorithm>
#include <bit>
#include <windows.h>

#include <psapi.h> // needs the types of windows.h

namespace gridforge::inline host {

namespace {

std::uint64_t takenByProcess()
{
    PROCESS_MEMORY_COUNTERS counters = {};
    return GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != 0 ? counters.PagefileUsage : 0;
}

// What a job that the process runs in leaves it, as a batch system sets it. What other processes of the job have taken is not known.
std::uint64_t leftByJob()
{
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    if (QueryInformationJobObject(nullptr, JobObjectExtendedLimitInformation, &limits, sizeof limits, nullptr) == 0) {
        return UINT64_MAX;
    }
    const DWORD kinds = limits.BasicLimitInformation.LimitFlags;
    std::uint64_t limit = UINT64_MAX;
    if ((kinds & JOB_OBJECT_LIMIT_PROCESS_MEMORY) != 0) {
        limit = limits.ProcessMemoryLimit;
    }
    if ((kinds & JOB_OBJECT_LIMIT_JOB_MEMORY) != 0) {
        limit = std::min<std::uint64_t>(limit, limits.JobMemoryLimit);
    }
    return limit == UINT64_MAX ? limit : limit - std::min(limit, takenByProcess());
}

} // namespace

std::size_t processorsToUse()
{
    DWORD_PTR own = 0;
    DWORD_PTR machine = 0;
    if (GetProcessAffinityMask(GetCurrentProcess(), &own, &machine) == 0) {
        return 1;
    }
    // Without a bit: a process in several groups of processors.
    return own == 0 ? std::max<std::size_t>(1, GetActiveProcessorCount(ALL_PROCESSOR_GROUPS))
                    : static_cast<std::size_t>(std::popcount(own));
}

std::string folderForTemporaryFiles()
{
    std::wstring path(GetTempPathW(0, nullptr), L'\0');
    path.resize(GetTempPathW(static_cast<DWORD>(path.size()), path.data()));
    return narrow(path);
}

std::uint64_t memoryLeftToTake()
{
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    if (GlobalMemoryStatusEx(&memory) == 0) {
        return 0;
    }
    return std::min<std::uint64_t>({memory.ullAvailPhys, memory.ullAvailPageFile, memory.ullAvailVirtual, leftByJob()});
}

bool nativeAvx2() noexcept
{
    return true;
}

} // namespace gridforge::inline host
