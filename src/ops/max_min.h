// -max and -min: the extreme value of each cell over a list of grids, and the number of the grid it came from.
#pragma once

#include "ops/max_min_cells.h"
#include "run/common.h"
#include "run/inputs.h"

namespace gridforge::ops {

struct MaxMinOptions {
    Extreme extreme = Extreme::minimum; // -max wins over -min
    bool src = false;                   // no source grid

    friend bool operator==(const MaxMinOptions&, const MaxMinOptions&) = default;
};

void runMaxMin(const run::Common& common, const MaxMinOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
