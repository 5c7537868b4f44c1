// -trans_m and -trans_c: y = m x + c on one grid. -multiply: two grids multiplied cell by cell.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runTransform(const RunSettings& settings, const InputFileList& inputs);
void runMultiply(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
