// -trim: each input grid cut to each region of a layer.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::ops {

struct TrimOptions {
    std::string layer;

    friend bool operator==(const TrimOptions&, const TrimOptions&) = default;
};

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
