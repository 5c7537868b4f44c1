// -fuzzy: the fraction of a list of grids in which each cell is active.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

void runFuzzy(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::ops
