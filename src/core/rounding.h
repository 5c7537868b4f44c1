// Reals to integers, held at the 32-bit limits; not-a-number gives 0.
#pragma once

#include <cstdint>

namespace gridforge::inline core {

std::int32_t truncateToInt(double value);
std::int32_t roundToInt(double value); // halves away from zero
std::int32_t ceilToInt(double value);
std::int32_t floorToInt(double value);

} // namespace gridforge::inline core
