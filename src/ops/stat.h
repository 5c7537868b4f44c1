// -stat...: minimum, maximum, mean, median, ranks and fraction wet of each cell over 2 to 10 grids.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runStat(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
