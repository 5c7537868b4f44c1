// What the scan makes of the command line.
#pragma once

#include "driver/settings.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::driver {

struct CommandLine {
    Settings settings;
    std::set<std::string_view> asked;      // the operations that flags ask for, by name
    std::vector<std::string> rawInputList; // names as typed, cut at 1000 characters
    std::int32_t operations = 0;           // how many flags count as an operation
};

// Appends a name to rawInputList; more than kMaxInputs end the run.
void addRawInput(CommandLine& line, std::string name);

} // namespace gridforge::driver
