// A system that refuses to read or write by position, for the rest of a process that a test has started.
#pragma once

#include "host/system.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <set>
#include <span>
#include <string>

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

// Refuses one such read after the first `count`, and no other: what comes after it goes well again.
inline void refuseOneReadAfter(int count)
{
    static std::atomic<int> left;
    left = count;
    static System refusing = nativeSystem();
    refusing.readAt = [](SystemFile file, std::int64_t position, std::span<char> target) {
        return left-- != 0 ? nativeSystem().readAt(file, position, target) : std::int64_t{-1};
    };
    useSystem(refusing);
}

// Refuses one such write after the first `count`, and no other.
inline void refuseOneWriteAfter(int count)
{
    static std::atomic<int> left;
    left = count;
    static System refusing = nativeSystem();
    refusing.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        return left-- != 0 ? nativeSystem().writeAt(file, position, bytes) : std::int64_t{-1};
    };
    useSystem(refusing);
}

// Refuses one file without a name after the first `count`, and no other.
inline void refuseOneUnnamedFileAfter(int count)
{
    static std::atomic<int> left;
    left = count;
    static System refusing = nativeSystem();
    refusing.openUnnamed = [](const std::string& folder) {
        return left-- != 0 ? nativeSystem().openUnnamed(folder) : SystemFile::none;
    };
    useSystem(refusing);
}

// Refuses to have more than `count` files open at a time, with a name or without.
inline void limitOpenFiles(int count)
{
    static std::atomic<int> left;
    left = count;
    static System limited = nativeSystem();
    limited.open = [](const std::string& name, OpenFor purpose) {
        const SystemFile file = left > 0 ? nativeSystem().open(name, purpose) : SystemFile::none;
        left -= file == SystemFile::none ? 0 : 1;
        return file;
    };
    limited.openUnnamed = [](const std::string& folder) {
        const SystemFile file = left > 0 ? nativeSystem().openUnnamed(folder) : SystemFile::none;
        left -= file == SystemFile::none ? 0 : 1;
        return file;
    };
    limited.close = [](SystemFile file) {
        ++left;
        return nativeSystem().close(file);
    };
    useSystem(limited);
}

// Refuses such reads of files that are written in this process: of cells that wait there.
inline void refuseReadsOfWaitingCells()
{
    static std::mutex guard;
    static std::set<SystemFile> written;
    static System refusing = nativeSystem();
    refusing.writeAt = [](SystemFile file, std::int64_t position, std::span<const char> bytes) {
        {
            const std::lock_guard lock(guard);
            written.insert(file);
        }
        return nativeSystem().writeAt(file, position, bytes);
    };
    refusing.readAt = [](SystemFile file, std::int64_t position, std::span<char> target) {
        const std::lock_guard lock(guard);
        return written.contains(file) ? std::int64_t{-1} : nativeSystem().readAt(file, position, target);
    };
    useSystem(refusing);
}

} // namespace gridforge::test
