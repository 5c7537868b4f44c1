// -xs makes section tables, and with -branch a network, from a section layer and elevation grids.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runXs(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
