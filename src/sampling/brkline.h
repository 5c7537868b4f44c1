// -brkline: lines with vertices put along them and ground elevations at each.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runBreaklines(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
