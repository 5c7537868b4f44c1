// Memory for large arrays, in huge pages; where that is used up, in a file without a name.
#include "host/environment.h"
#include "host/system.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/mman.h>
#include <sys/statvfs.h>

#if defined(__SANITIZE_ADDRESS__)
#define GRIDFORGE_CHECKED_MEMORY 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define GRIDFORGE_CHECKED_MEMORY 1
#endif
#endif

namespace gridforge::inline host {

namespace {

#ifdef GRIDFORGE_CHECKED_MEMORY
constexpr bool kMapPages = false; // the sanitizer checks bounds on the heap only
#else
constexpr bool kMapPages = true;
#endif

constexpr std::size_t kHugePage = std::size_t{1} << 21;

bool isMapped(std::size_t bytes)
{
    return kMapPages && bytes >= 2 * kHugePage;
}

// Bytes of all arrays that are mapped.
std::atomic<std::uint64_t>& mappedBytes()
{
    static std::atomic<std::uint64_t> bytes = 0;
    return bytes;
}

// How many of them may be in memory: what a run needs for its buffers besides what was asked for, or else most of what is free.
std::uint64_t mostInMemory()
{
    constexpr std::uint64_t kBuffers = std::uint64_t{64} << 20;
    static const std::uint64_t free = nativeSystem().memoryLeft();
    const auto asked = environmentNumber("GRIDFORGE_MEMORY");
    return asked ? kBuffers + *asked : free - free / 8;
}

void* takeMemory(std::size_t bytes)
{
    void* const pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        return nullptr;
    }
    madvise(pages, bytes, MADV_HUGEPAGE); // a hint: otherwise the pages are small
    return pages;
}

// Room that is there before it is mapped: a full disk must not be met by a store to memory. Never more than is free, so that
// an absurd size does not fill the disk first.
bool setAside([[maybe_unused]] int descriptor, [[maybe_unused]] std::size_t bytes)
{
#ifdef __linux__
    struct statvfs disk = {};
    return fstatvfs(descriptor, &disk) == 0 && bytes / disk.f_frsize < disk.f_bavail &&
           fallocate(descriptor, 0, 0, static_cast<off_t>(bytes)) == 0;
#else
    return false;
#endif
}

// The file is one of this system itself, whatever a test has put in its place: its descriptor is mapped.
void* takeFileIn(const std::string& folder, std::size_t bytes)
{
    const SystemFile file = nativeSystem().openUnnamed(folder);
    if (file == SystemFile::none) {
        return nullptr;
    }
    const auto descriptor = static_cast<int>(file);
    void* pages = MAP_FAILED;
    if (setAside(descriptor, bytes)) {
        pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    }
    nativeSystem().close(file); // the pages keep it
    return pages == MAP_FAILED ? nullptr : pages;
}

void* takeFile(std::size_t bytes)
{
    void* pages = nullptr;
    for (const std::string& folder : scratchFolders(nativeSystem(), ".")) {
        if (pages == nullptr) {
            pages = takeFileIn(folder, bytes);
        }
    }
    return pages;
}

void* takeMapped(std::size_t bytes)
{
    if (!isMapped(bytes)) {
        return std::calloc(bytes, 1);
    }
    const bool fits = mappedBytes() + bytes <= mostInMemory();
    void* pages = fits ? takeMemory(bytes) : takeFile(bytes);
    if (pages == nullptr) {
        pages = fits ? takeFile(bytes) : takeMemory(bytes);
    }
    if (pages != nullptr) {
        mappedBytes() += bytes;
    }
    return pages;
}

void releaseMapped(void* pages, std::size_t bytes)
{
    if (isMapped(bytes)) {
        munmap(pages, bytes);
        mappedBytes() -= bytes;
    } else {
        std::free(pages);
    }
}

} // namespace

PageSource nativePages() noexcept
{
    return {takeMapped, releaseMapped};
}

} // namespace gridforge::inline host
