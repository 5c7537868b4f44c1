// -count: how many cells of a grid are wet.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runCount(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
