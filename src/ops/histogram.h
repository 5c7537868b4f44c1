// -histogram: how many cells of a grid fall in each of a table of bins.
#pragma once

#include "run/common.h"
#include "run/inputs.h"

#include <string>

namespace gridforge::ops {

struct HistogramOptions {
    std::string binFile;

    friend bool operator==(const HistogramOptions&, const HistogramOptions&) = default;
};

void runHistogram(const run::Common& common, const HistogramOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
