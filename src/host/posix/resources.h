// What the process may use of the machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::inline host {

// Processors, at least one.
std::size_t processorsToUse();
// Bytes that the machine, the limits of the process and its control groups still allow.
std::uint64_t memoryLeftToTake();
// Bytes by which the system reads the files of a device (`st_dev`) ahead itself; 0 where it does not say.
std::int64_t readAheadOf(std::uint64_t device);

} // namespace gridforge::inline host
