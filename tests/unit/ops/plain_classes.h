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

// As many limits, among the values of oddCells, some of them equal.
inline std::vector<float> manyLimits(std::size_t count)
{
    std::vector<float> limits;
    for (std::size_t i = 0; i < count; ++i) {
        limits.push_back(-3.0F + static_cast<float>(i - i % 2) * (9.0F / static_cast<float>(count)));
    }
    return limits;
}

// Counts of limits for which kernels find classes in different ways, and those next to them.
inline constexpr std::size_t kCountsOfLimits[] = {2, 7, 8, 9, 15, 16, 17, 18, 40, 62, 63, 64, 65, 200};

} // namespace gridforge::test
