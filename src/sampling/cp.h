// -cp: observed points against a modelled grid.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runCalibrationPoints(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
