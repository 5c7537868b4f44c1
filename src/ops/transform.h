// -trans_m and -trans_c: y = m x + c on one grid. -multiply: two grids multiplied cell by cell.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runTransform(const run::RunSettings& settings, const run::InputFileList& inputs);
void runMultiply(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
