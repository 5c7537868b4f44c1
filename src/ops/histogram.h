// -histogram: how many cells of a grid fall in each of a table of bins.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstdint>
#include <span>

namespace gridforge {

void runHistogram(const RunSettings& settings, const InputFileList& inputs);

// Adds the cells that are not null to the counts of their bins: those of findClasses, so `counts` is one longer than
// `limits`.
void countBins(std::span<const float> cells, float null, std::span<const float> limits, std::span<std::int64_t> counts);

} // namespace gridforge
