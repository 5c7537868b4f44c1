// -classify: each cell becomes the number of the class it falls in.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runClassify(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
