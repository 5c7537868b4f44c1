// -brkline: lines with vertices put along them and ground elevations at each.
#pragma once

#include "run/inputs.h"

#include <string>

namespace gridforge::sampling {

struct BrklineOptions {
    std::string layer;
    bool check = false; // writes a check layer

    friend bool operator==(const BrklineOptions&, const BrklineOptions&) = default;
};

void runBreaklines(const BrklineOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::sampling
