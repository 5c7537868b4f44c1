// Cells into text, four at a time.
#pragma once

#include "core/simd.h"

#include <cstdint>
#include <span>

namespace gridforge::grid {

// Whether fields of this form are short enough.
bool fitsFourAbreast(std::int32_t width, std::int32_t decimals);

// formatAscRow for fields that are.
GRIDFORGE_AVX2 void formatFourAbreast(std::span<const float> row, std::int32_t width, std::int32_t decimals, char* out);

} // namespace gridforge::grid
