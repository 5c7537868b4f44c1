// A system that refuses to read or write by position, for the rest of a process that a test has started.
#pragma once

#include "host/system.h"

#include <atomic>
#include <cstdint>
#include <span>

namespace gridforge::test {

// Refuses all such reads after the first `count`, of all threads together.
inline void refuseReadsAfter(int count)
{
    static std::atomic<int> left;
    left = count;
    static System refusing = nativeSystem();
    refusing.readAt = [](SystemFile file, std::int64_t position, std::span<char> target) {
        return left-- > 0 ? nativeSystem().readAt(file, position, target) : std::int64_t{-1};
    };
    useSystem(refusing);
}

// Refuses all such writes after the first `count`.
inline void refuseWritesAfter(int count)
{
    static std::atomic<int> left;
    left = count;
    static System refusing = nativeSystem();
    refusing.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        return left-- > 0 ? nativeSystem().writeAt(file, position, bytes) : std::int64_t{-1};
    };
    useSystem(refusing);
}

} // namespace gridforge::test
