#include "host/posix/read_hints.h"

#include <array>
#include <atomic>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <fcntl.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace gridforge::inline host {

namespace {

// The number that begins a file; 0 if there is none. It takes no memory: who asks can do without an answer.
std::int64_t numberIn(const char* file)
{
    std::array<char, 24> text{};
    std::int64_t number = 0;
    if (const int in = ::open(file, O_RDONLY | O_CLOEXEC); in >= 0) {
        const ssize_t count = ::read(in, text.data(), text.size());
        if (count > 0) {
            std::from_chars(text.data(), text.data() + count, number);
        }
        ::close(in);
    }
    return number;
}

} // namespace

std::int64_t readAheadOf(std::uint64_t device)
{
    constexpr std::int64_t kUnit = 1024; // of what the files say, in bytes
    std::array<char, 80> file{};
    std::snprintf(file.data(), file.size(), "/sys/class/bdi/%u:%u/read_ahead_kb", major(device), minor(device));
    std::int64_t units = numberIn(file.data());
    if (units == 0) { // a part of a disk has none of its own
        std::snprintf(file.data(), file.size(), "/sys/dev/block/%u:%u/../queue/read_ahead_kb", major(device),
                      minor(device));
        units = numberIn(file.data());
    }
    return units * kUnit;
}

// One device for each remainder: few are in use at a time. Threads that ask about two of one remainder may get the other's answer,
// which costs time and nothing else.
std::int64_t knownReadAheadOf(std::uint64_t device)
{
    constexpr std::size_t kDevices = 16;
    struct Known {
        std::atomic<std::uint64_t> device = ~std::uint64_t{0};
        std::atomic<std::int64_t> readAhead = 0;
    };
    static std::array<Known, kDevices> all;
    Known& known = all[device % kDevices];
    if (known.device != device) {
        known.readAhead = readAheadOf(device);
        known.device = device;
    }
    return known.readAhead;
}

} // namespace gridforge::inline host
