#include "host/windows/clock.h"

#include <algorithm>
#include <limits>
#include <windows.h>

namespace gridforge::inline host {

std::int64_t nanosecondsFrom1970(std::int64_t hundredsFrom1601)
{
    constexpr std::int64_t kFrom1970 = 116'444'736'000'000'000;
    constexpr std::int64_t kNanoseconds = 100;
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / kNanoseconds;
    return (std::clamp(hundredsFrom1601, kFrom1970 - kMost, kFrom1970 + kMost) - kFrom1970) * kNanoseconds;
}

std::int64_t timeNow()
{
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    return nanosecondsFrom1970(static_cast<std::int64_t>(std::uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime));
}

// The system waits for whole milliseconds, in 32 bits. A part of one is rounded up, as a wait for none would not give the
// processor away.
void waitFor(std::int64_t nanoseconds)
{
    constexpr std::int64_t kMillisecond = 1'000'000;
    constexpr std::int64_t kMost = MAXDWORD - 1;
    const std::int64_t whole = nanoseconds / kMillisecond + (nanoseconds % kMillisecond > 0 ? 1 : 0);
    Sleep(static_cast<DWORD>(std::clamp<std::int64_t>(whole, 0, kMost)));
}

CalendarDate dateOfToday()
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay};
}

} // namespace gridforge::inline host
