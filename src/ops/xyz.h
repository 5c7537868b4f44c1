// -xyz: a grid out of a text file of points, its spacing found from the points themselves.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

void runXyz(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::ops
