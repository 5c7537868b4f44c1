// One run of the tool, from its arguments to its end.
#pragma once

#include <string>
#include <vector>

namespace gridforge::driver {

// The arguments without the program's own name. Every run ends the process, with status 0.
[[noreturn]] void runTool(const std::vector<std::string>& arguments);

} // namespace gridforge::driver
