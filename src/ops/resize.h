// -resize: a coarser grid, each of whose cells is the average, minimum or maximum of a square of input cells.
#pragma once

#include "ops/resize_cells.h"
#include "run/common.h"
#include "run/inputs.h"

#include <cstdint>

namespace gridforge::ops {

struct ResizeOptions {
    std::int32_t factor = 0;
    ResizeMethod method = ResizeMethod::average;

    friend bool operator==(const ResizeOptions&, const ResizeOptions&) = default;
};

void runResize(const run::Common& common, const ResizeOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
