// -classify: each cell becomes the number of the class it falls in.
#pragma once

#include "run/inputs.h"
#include "run/run_settings.h"

#include <span>

namespace gridforge {

void runClassify(const RunSettings& settings, const InputFileList& inputs);

// The class of each cell by findClasses; null cells stay null. `output` is as long as `cells`.
void classifyCells(std::span<const float> cells, float null, std::span<const float> limits, std::span<float> output);

} // namespace gridforge
