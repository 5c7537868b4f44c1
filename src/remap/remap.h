// The water level of a coarse model on a finer terrain: fine levels, fine depths, and further grids cut to their extent.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <cstdint>

namespace gridforge::remap {

// The method that no flag selects; the others are in the settings record.
inline constexpr std::int32_t kInterpolateNearest = 1;

void runRemap(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::remap
