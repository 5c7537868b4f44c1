// -fe: a mask of the wet cells of a grid.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <span>

namespace gridforge {

void runFloodExtent(const RunSettings& settings, const InputFileList& inputs);

// Depths of a smaller magnitude are dry.
inline constexpr float kWetFrom = 0.0001F;

// 1.0 for cells of at least that magnitude, `null` for null and dry cells; `output` is as long as `cells`.
void markWet(std::span<const float> cells, float null, std::span<float> output);

} // namespace gridforge
