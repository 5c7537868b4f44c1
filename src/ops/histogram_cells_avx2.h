// Cells in a row of bins, eight at a time. For processors with AVX2 only; elsewhere this does nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::ops {

// countBins of the first cells; returns how many these are. None if there are too many limits.
std::size_t countLanes(std::span<const float> cells, float null, std::span<const float> limits,
                       std::span<std::int64_t> counts);

} // namespace gridforge::ops
