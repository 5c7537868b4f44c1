// -conv: each input grid in the other file format.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runConv(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
