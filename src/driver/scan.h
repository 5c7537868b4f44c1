// The scan of the command line: once, from left to right.
#pragma once

#include "driver/command_line.h"

#include <string>
#include <vector>

namespace gridforge::driver {

// The arguments without the program's own name. What cannot be a flag or its number ends the run with a message; a
// value that is still awaited at the end stays blank.
CommandLine scanArguments(const std::vector<std::string>& arguments);

} // namespace gridforge::driver
