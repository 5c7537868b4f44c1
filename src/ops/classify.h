// -classify: each cell becomes the number of the class it falls in.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge {

void runClassify(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
