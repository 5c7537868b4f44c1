// -histogram: how many cells of a grid fall in each of a table of bins.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runHistogram(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
