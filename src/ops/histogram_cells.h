// How many cells fall in each of a row of bins.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::ops {

// Adds the cells that are not null to the counts of their bins: those of findClasses, so `counts` is one longer than `limits`,
// which are as risingLimits gives them. The counts of pieces of a grid add up.
void countBins(std::span<const float> cells, float null, std::span<const float> limits, std::span<std::int64_t> counts);

} // namespace gridforge::ops
