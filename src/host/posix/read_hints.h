// When the system is told what will be read.
#pragma once

#include "host/system.h"

#include <cstdint>

namespace gridforge::inline host {

// Bytes by which the system reads the files of a device (`st_dev`) ahead itself; 0 where it does not say.
std::int64_t readAheadOf(std::uint64_t device);
// The same, kept for the next question.
std::int64_t knownReadAheadOf(std::uint64_t device);

// Whether a hint about `count` bytes makes reading faster on a device that is read ahead by so much.
bool isHintOfUse(std::int64_t count, ReadOf of, std::int64_t readAhead);

} // namespace gridforge::inline host
