// What a run may take of the machine, asked for once.
#pragma once

#include <cstdint>

namespace gridforge::inline host {

// Asks now, before a run opens its inputs: systems keep limits in files too, and later it may have as many open as it may.
void askForLimits();

// Bytes of memory that were left when they were first asked for.
std::uint64_t memoryToTake();

} // namespace gridforge::inline host
