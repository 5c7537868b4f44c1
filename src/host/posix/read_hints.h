// When the system is told what will be read.
#pragma once

#include "host/system.h"

#include <cstdint>

namespace gridforge::inline host {

// Bytes by which the system reads the files of a device (`st_dev`) ahead itself; 0 where it does not say.
std::int64_t readAheadOf(std::uint64_t device);
// The same, kept for the next question.
std::int64_t knownReadAheadOf(std::uint64_t device);

// Whether a hint about `count` bytes makes reading faster. What it names is read by single pages, what the system reads ahead itself
// by large ones, which takes half the time; but it reads little ahead where only parts are read. `readAhead()` gives the bytes that
// the device is read ahead, and is asked last.
template <typename ReadAhead>
bool isHintOfUse(std::int64_t count, ReadOf of, ReadAhead readAhead)
{
    constexpr std::int64_t kSmall = std::int64_t{1} << 18; // any system reads about as much at once
    constexpr std::int64_t kFar = std::int64_t{1} << 20;
    return count >= kSmall && (of == ReadOf::parts || readAhead() < kFar);
}

} // namespace gridforge::inline host
