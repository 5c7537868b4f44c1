// -cd: a grid's cells where they reach a cutoff, or a second grid's cells where the first reaches it.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

struct CutoffOptions {
    float cutoff = 0.0F;

    friend bool operator==(const CutoffOptions&, const CutoffOptions&) = default;
};

void runCutoff(const run::Common& common, const CutoffOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
