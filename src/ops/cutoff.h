// -cd: a grid's cells where they reach a cutoff, or a second grid's cells where the first reaches it.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

namespace gridforge::ops {

void runCutoff(const run::RunSettings& settings, const run::InputFileList& inputs);

} // namespace gridforge::ops
