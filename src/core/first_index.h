// Binary search among whole numbers.
#pragma once

#include <cstdint>

namespace gridforge::inline core {

// The first number from `first` to `last` that `holds`, or `last` + 1 if none does. All after it must hold too.
template <typename Holds>
std::int64_t firstThat(std::int32_t first, std::int32_t last, const Holds& holds)
{
    std::int64_t low = first;
    std::int64_t high = std::int64_t{last} + 1;
    while (low < high) {
        const std::int64_t middle = low + (high - low) / 2;
        if (holds(static_cast<std::int32_t>(middle))) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

} // namespace gridforge::inline core
