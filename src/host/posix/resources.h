// What the process may use of the machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::inline host {

// Processors, at least one.
std::size_t processorsToUse();
// Bytes that the machine, the limits of the process and its control groups still allow.
std::uint64_t memoryLeftToTake();

} // namespace gridforge::inline host
