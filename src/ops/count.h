// -count: how many cells of a grid are wet.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstdint>
#include <span>

namespace gridforge {

void runCount(const RunSettings& settings, const InputFileList& inputs);

// The cells that are not null.
std::int64_t countActive(std::span<const float> cells, float null);
// The cells that are not null and greater than the cutoff, unlike -cd, where a cell of exactly the cutoff stays.
std::int64_t countAbove(std::span<const float> cells, float null, float cutoff);

} // namespace gridforge
