// What the scan makes of the command line.
#pragma once

#include "run/run_settings.h"

#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::driver {

struct CommandLine {
    run::RunSettings settings;
    std::vector<std::string> rawInputList; // names as typed, cut at 1000 characters
    std::int32_t operations = 0;           // how many flags asked for an operation
};

// Appends a name to rawInputList; more than kMaxInputs end the run.
void addRawInput(CommandLine& line, std::string name);

} // namespace gridforge::driver
