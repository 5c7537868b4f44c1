// -nbc builds a network from branches and sections, as a control file asks for.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::network {

void runNbc(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::network
