// -cp: observed points against a modelled grid.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::sampling {

void runCalibrationPoints(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::sampling
