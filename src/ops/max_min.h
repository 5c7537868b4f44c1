// -max and -min: the extreme value of each cell over a list of grids, and the number of the grid it came from.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runMaxMin(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
