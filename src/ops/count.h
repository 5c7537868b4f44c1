// -count: how many cells of a grid are wet.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runCount(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
