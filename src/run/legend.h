// The table beside a source grid: which file each of its values stands for.
#pragma once

#include "run/inputs.h"

#include <string_view>

namespace gridforge::run {

// Announces and writes the legend `name`: a heading, then the number and the name of each input in list order.
void writeSourceLegend(std::string_view name, const InputFileList& inputs);

} // namespace gridforge::run
