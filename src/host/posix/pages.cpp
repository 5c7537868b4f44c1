// Memory for large arrays, in huge pages.
#include "host/system.h"

#include <cstdlib>
#include <sys/mman.h>

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

void* takeMapped(std::size_t bytes)
{
    if (!isMapped(bytes)) {
        return std::calloc(bytes, 1);
    }
    void* pages = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED) {
        return nullptr;
    }
    madvise(pages, bytes, MADV_HUGEPAGE); // a hint: otherwise the pages are small
    return pages;
}

void releaseMapped(void* pages, std::size_t bytes)
{
    if (isMapped(bytes)) {
        munmap(pages, bytes);
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
