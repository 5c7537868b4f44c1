// The time by the calls of Windows.
#pragma once

#include "host/system.h"

#include <cstdint>

namespace gridforge::inline host {

// Nanoseconds from 1970 of a time of the system, which counts 100 nanoseconds from 1601. Times that 64 bits cannot hold so, before
// 1678 and after 2262, are the first and the last; file systems without such a time give 1601.
std::int64_t nanosecondsFrom1970(std::int64_t hundredsFrom1601);

std::int64_t timeNow();
void waitFor(std::int64_t nanoseconds);
CalendarDate dateOfToday();

} // namespace gridforge::inline host
