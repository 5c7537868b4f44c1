// -rf interpolates rainfall depths at points or over areas to a grid for each time step, and sums them up.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runRainfall(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
