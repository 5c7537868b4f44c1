// All of core and plane without any other library of ours: large arrays come from the heap.
#include "core/huge_array.h"

#include <algorithm>
#include <cstddef>

int main()
{
    constexpr std::size_t kSize = std::size_t{8} << 20;
    gridforge::HugeArray<char> array;
    const bool zero =
        array.allocate(kSize) && std::ranges::count(array.all(), '\0') == static_cast<std::ptrdiff_t>(kSize);
    array.release();
    return zero && array.size() == 0 ? 0 : 1;
}
