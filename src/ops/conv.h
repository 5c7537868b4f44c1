// -conv: each input grid in the other file format.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

void runConv(const run::Common& common, const run::InputFileList& inputs);

} // namespace gridforge::ops
