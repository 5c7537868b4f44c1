// -dif: the first grid less the second, and where only one of the two is active.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runDif(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
