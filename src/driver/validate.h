// The checks between the scan and the run: exactly one operation, and options that belong to it.
#pragma once

#include "driver/command_line.h"

namespace gridforge::driver {

// Ends the run on a combination that cannot be run; warns of and mends one that can. The output name loses an extension
// that names a grid format.
void validate(CommandLine& line);

} // namespace gridforge::driver
