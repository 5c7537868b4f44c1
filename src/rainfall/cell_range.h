#pragma once

#include <cstdint>

namespace gridforge::rainfall {

// Rows or columns from 1, both ends included; empty where `from` is greater.
struct CellRange {
    std::int32_t from = 1;
    std::int32_t to = 0;
};

} // namespace gridforge::rainfall
