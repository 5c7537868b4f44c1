#include "host/page_room.h"

#include "host/environment.h"
#include "host/limits.h"
#include "host/system.h"

#include <atomic>
#include <cstdint>

namespace gridforge::inline host {

namespace {

// Bytes of all arrays that are in pages.
std::atomic<std::uint64_t>& bytesInPages()
{
    static std::atomic<std::uint64_t> bytes = 0;
    return bytes;
}

// How many of them may be in memory: what a run needs for its buffers besides what was asked for, or else most of what is free.
std::uint64_t mostInMemory()
{
    constexpr std::uint64_t kBuffers = std::uint64_t{64} << 20;
    const auto asked = environmentNumber("GRIDFORGE_MEMORY");
    return asked ? kBuffers + *asked : memoryToTake() - memoryToTake() / 8;
}

void* takeInAFile(const PageRoom& room, std::size_t bytes)
{
    void* pages = nullptr;
    for (const std::string& folder : scratchFolders(nativeSystem(), ".")) {
        if (pages == nullptr) {
            pages = room.inFile(folder, bytes);
        }
    }
    return pages;
}

} // namespace

void* takeRoomForPages(const PageRoom& room, std::size_t bytes)
{
    const bool fits = bytesInPages() + bytes <= mostInMemory();
    void* pages = fits ? room.inMemory(bytes) : takeInAFile(room, bytes);
    if (pages == nullptr) {
        pages = fits ? takeInAFile(room, bytes) : room.inMemory(bytes);
    }
    if (pages != nullptr) {
        bytesInPages() += bytes;
    }
    return pages;
}

void countOutPages(std::size_t bytes)
{
    bytesInPages() -= bytes;
}

} // namespace gridforge::inline host
