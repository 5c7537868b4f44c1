// The rules that name an output and choose its format.
#pragma once

#include "run/common.h"

#include <string>
#include <string_view>

namespace gridforge::run {

// The base name, without extension, of the main output: the name given with -out, or that of `source` without extension
// and with the operation's suffix.
std::string outputNameRule(const Common& common, std::string_view source, std::string_view suffix);

// The format wanted by -asc or -flt, or that of the first input grid.
grid::Format outputFormatRule(const Common& common, grid::Format firstFormat);
// The format wanted by -asc or -flt, or .asc whatever the inputs are.
grid::Format ascUnlessSpecified(const Common& common);

} // namespace gridforge::run
