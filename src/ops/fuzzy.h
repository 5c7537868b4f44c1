// -fuzzy: the fraction of a list of grids in which each cell is active.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runFuzzy(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
