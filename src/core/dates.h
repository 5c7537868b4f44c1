// Dates as text.
#pragma once

#include <cstdint>
#include <string_view>

namespace gridforge::inline core {

// Days of a date YYYYMMDD since the start of 2000, by years of 365 days; -1 when it cannot be read.
std::int32_t NUMBEROFDAYS(std::string_view date);

} // namespace gridforge::inline core
