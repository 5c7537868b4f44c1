// The table beside a source grid, which tells the file behind each value in it.
#pragma once

#include "run/inputs.h"

#include <string_view>

namespace gridforge::run {

// Announces and writes the legend `name`: a heading, then the number and the name of each input in list order.
void writeSourceLegend(std::string_view name, const InputFileList& inputs);

} // namespace gridforge::run
