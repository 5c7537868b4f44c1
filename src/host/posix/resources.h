// What the process may take of the machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace gridforge::inline host {

// Processors, at least one.
std::size_t processorsToUse();
// Bytes that can be taken before the machine, a limit of the process or one of its control groups refuses.
std::uint64_t memoryLeftToTake();

} // namespace gridforge::inline host
