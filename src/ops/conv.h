// -conv: each input grid in the other file format.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runConv(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
