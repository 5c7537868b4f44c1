// -lp: invert and banks along the lines of a layer.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::sampling {

struct LpOptions {
    std::string layer;
    float spacing = 100.0F; // of the points along a line
    float searchDistance = 1000.0F;
    bool check = false; // writes the found points as a layer

    friend bool operator==(const LpOptions&, const LpOptions&) = default;
};

void runLongProfile(const run::Common& common, const LpOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::sampling
