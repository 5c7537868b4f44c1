// -fe: a mask of the wet cells of a grid.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runFloodExtent(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
