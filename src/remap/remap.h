// The water level of a coarse model on a finer terrain: fine levels, fine depths, and further grids cut to their extent.
#pragma once

#include "remap/remap_options.h"
#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::remap {

void runRemap(const run::Common& common, const RemapOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::remap
