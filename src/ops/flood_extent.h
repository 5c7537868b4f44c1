// -fe: a mask of the wet cells of a grid.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runFloodExtent(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
