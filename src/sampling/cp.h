// -cp: observed points against a modelled grid.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::sampling {

struct CpOptions {
    std::string layer;
    std::string configFile; // of symbols; blank: none
    float searchDistance = 1000.0F;
    bool extremes = false; // finds the lowest and the highest cell too
    float extremesDistance = 100.0F;

    friend bool operator==(const CpOptions&, const CpOptions&) = default;
};

void runCalibrationPoints(const run::Common& common, const CpOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::sampling
