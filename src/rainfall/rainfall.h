// -rf interpolates rainfall depths at points or over areas to a grid for each time step, and sums them up.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::rainfall {

void runRainfall(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::rainfall
