// -stat...: minimum, maximum, mean, median, ranks and fraction wet of each cell over 2 to 10 grids.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <cstdint>
#include <vector>

namespace gridforge::ops {

struct StatOptions {
    bool all = false; // except the ranks
    bool mean = false;
    bool median = false;
    bool minimum = false;
    bool maximum = false;
    bool fraction = false;
    bool allRanks = false;
    std::vector<std::int32_t> ranks;

    friend bool operator==(const StatOptions&, const StatOptions&) = default;
};

void runStat(const run::Common& common, const StatOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
