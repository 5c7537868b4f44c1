// -dif: the first grid less the second, and where only one of the two is active.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runDif(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
