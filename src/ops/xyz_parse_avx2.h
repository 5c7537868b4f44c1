// Points out of short plain lines, four lines at a time.
#pragma once

#include "core/simd.h"
#include "ops/xyz_parse.h"

#include <span>
#include <string_view>

namespace gridforge::ops {

// parsePlainPoints.
GRIDFORGE_AVX2 PlainPoints parsePointGroups(std::string_view window, std::span<double> x, std::span<double> y,
                                            std::span<float> z);

} // namespace gridforge::ops
