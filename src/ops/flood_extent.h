// -fe: a mask of the wet cells of a grid.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

void runFloodExtent(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::ops
