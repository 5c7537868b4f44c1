#include "core/huge_array.h"

#include <cstdlib>

namespace gridforge::inline core {

namespace {

void* takeFromHeap(std::size_t bytes)
{
    return std::calloc(bytes, 1);
}

void releaseToHeap(void* pages, std::size_t)
{
    std::free(pages);
}

constinit PageSource pageSource{takeFromHeap, releaseToHeap};

} // namespace

bool usePages(PageSource source) noexcept
{
    pageSource = source;
    return true;
}

void* takePages(std::size_t bytes)
{
    return pageSource.take(bytes);
}

void releasePages(void* pages, std::size_t bytes)
{
    pageSource.release(pages, bytes);
}

} // namespace gridforge::inline core
