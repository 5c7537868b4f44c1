// -count: how many cells of a grid are wet.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <optional>

namespace gridforge::ops {

struct CountOptions {
    std::optional<float> cutoff; // of the cells that are counted; all active ones where none is given

    friend bool operator==(const CountOptions&, const CountOptions&) = default;
};

void runCount(const run::Common& common, const CountOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
