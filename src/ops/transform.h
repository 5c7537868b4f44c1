// -trans_m and -trans_c: y = m x + c on one grid.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

struct TransformOptions {
    float m = 1.0F;
    float c = 0.0F;

    friend bool operator==(const TransformOptions&, const TransformOptions&) = default;
};

void runTransform(const run::Common& common, const TransformOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
