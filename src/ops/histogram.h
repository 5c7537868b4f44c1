// -histogram: how many cells of a grid fall in each of a table of bins.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runHistogram(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
