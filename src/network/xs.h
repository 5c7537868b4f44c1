// -xs makes section tables, and with -branch a network, from a section layer and elevation grids.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::network {

void runXs(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::network
