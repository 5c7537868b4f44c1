// The class of each cell in a row of classes, eight at a time. For processors with AVX2 only; elsewhere this does nothing.
#pragma once

#include <cstddef>
#include <span>

namespace gridforge::ops {

// classifyCells of the first cells; returns how many these are. None if there are too many limits.
std::size_t classifyLanes(std::span<const float> cells, float null, std::span<const float> limits,
                          std::span<float> output);

} // namespace gridforge::ops
