// -nbc builds a network from branches and sections as a control file tells.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runNbc(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
