// -multiply: two grids multiplied cell by cell.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

void runMultiply(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::ops
