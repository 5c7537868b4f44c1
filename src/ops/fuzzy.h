// -fuzzy: the fraction of a list of grids in which each cell is active.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runFuzzy(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
