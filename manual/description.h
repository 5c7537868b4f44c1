// The description of the tool for programs (gridforge.json): its operations with their inputs, outputs and options.
#pragma once

#include <ostream>

namespace gridforge {

void writeDescription(std::ostream& file);

} // namespace gridforge
