// -na: tables of height and plan area of the terrain inside regions.
#pragma once

#include "run/inputs.h"

#include <string>

namespace gridforge::sampling {

struct NaOptions {
    std::string layer;

    friend bool operator==(const NaOptions&, const NaOptions&) = default;
};

void runNodalArea(const NaOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::sampling
