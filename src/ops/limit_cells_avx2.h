// Cells among limits, eight at a time. For processors with AVX2 only; elsewhere these do nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::ops {

// classifyCells and countBins of the first cells; returns how many these are. None if there are too many limits.
std::size_t classifyLanes(std::span<const float> cells, float null, std::span<const float> limits,
                          std::span<float> output);
std::size_t countLanes(std::span<const float> cells, float null, std::span<const float> limits,
                       std::span<std::int64_t> counts);

} // namespace gridforge::ops
