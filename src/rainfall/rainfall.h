// -rf interpolates rainfall depths at points or over areas to a grid for each time step, and sums them up.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::rainfall {

void runRainfall(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::rainfall
