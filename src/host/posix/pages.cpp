// Memory for large arrays, in huge pages; where that is used up, in a file without a name.
#include "host/page_room.h"
#include "host/system.h"

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

void* takeMapped(std::size_t bytes)
{
    return isMapped(bytes) ? takeRoomForPages({takeMemory, takeFileIn}, bytes) : std::calloc(bytes, 1);
}

void releaseMapped(void* pages, std::size_t bytes)
{
    if (isMapped(bytes)) {
        munmap(pages, bytes);
        countOutPages(bytes);
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
