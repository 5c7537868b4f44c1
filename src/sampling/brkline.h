// -brkline: lines with vertices put along them and ground elevations at each.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::sampling {

void runBreaklines(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::sampling
