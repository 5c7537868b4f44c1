// What the process may use of the machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::inline host {

// Processors, at least one.
std::size_t processorsToUse();
// Bytes that the machine, the limits of the process and its control groups still allow.
std::uint64_t memoryLeftToTake();

// What the control groups of the process, of version 1 and 2, allow it: whole processors, rounded up, and bytes that are left; the
// largest number where they set no limit. The files of the system that say so are looked for below `root`, which is empty except in tests.
std::size_t processorsOfGroups(const std::string& root);
std::uint64_t memoryLeftInGroups(const std::string& root);

} // namespace gridforge::inline host
