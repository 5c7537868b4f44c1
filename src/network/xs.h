// -xs makes section tables, and with -branch a network, from a section layer and elevation grids.
#pragma once

#include "run/inputs.h"

#include <optional>
#include <string>
#include <vector>

namespace gridforge::network {

struct XsOptions {
    std::string sectionLayer;
    std::string branchLayer; // blank: no network is made
    std::vector<std::string> materialGrids;
    std::optional<float> defaultN; // of points that no material grid gives one

    friend bool operator==(const XsOptions&, const XsOptions&) = default;
};

void runXs(const XsOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::network
