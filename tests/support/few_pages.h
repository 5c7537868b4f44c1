// Large arrays that find no memory, while an object of this lives.
#pragma once

#include "host/system.h"

#include <atomic>
#include <cstddef>

namespace gridforge::test {

class FewPages {
public:
    // The next `count` arrays get their memory, of all threads together, and no other does.
    explicit FewPages(int count)
    {
        left() = count;
        const auto take = [](std::size_t bytes) { return left()-- > 0 ? nativePages().take(bytes) : nullptr; };
        usePages({take, nativePages().release});
    }
    ~FewPages() { usePages(nativePages()); }
    FewPages(const FewPages&) = delete;
    FewPages& operator=(const FewPages&) = delete;

private:
    static std::atomic<int>& left()
    {
        static std::atomic<int> arrays;
        return arrays;
    }
};

} // namespace gridforge::test
