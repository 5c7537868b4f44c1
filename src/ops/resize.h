// -resize: a coarser grid, each of whose cells is the average, minimum or maximum of a square of input cells.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runResize(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
