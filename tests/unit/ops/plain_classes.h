// Classes as they read in words.
#pragma once

#include "ops/class_table.h"

#include <cstdint>
#include <vector>

namespace gridforge::test {

inline ops::ClassTable tableOf(const std::vector<float>& limits)
{
    ops::ClassTable table;
    for (const float limit : limits) {
        table.push_back({.limit = limit, .name = "", .red = 0, .green = 0, .blue = 0});
    }
    return table;
}

// The first limit that holds the value, as it reads in words.
inline std::int32_t plainClass(float value, const std::vector<float>& limits)
{
    for (std::size_t i = 0; i < limits.size(); ++i) {
        if (value <= limits[i]) {
            return static_cast<std::int32_t>(i) + 1;
        }
    }
    return static_cast<std::int32_t>(limits.size()) + 1;
}

} // namespace gridforge::test
