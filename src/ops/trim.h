// -trim: each input grid cut to each region of a layer.
#pragma once

#include "grid/grid.h"
#include "run/cell_window.h"
#include "run/common.h"
#include "run/inputs.h"
#include "run/inside_runs.h"

#include <string>

namespace gridforge::ops {

// Copies the cells of the window whose north-east corner is inside the region to `output`, which has the window's size;
// other cells of `output` stay as they are.
void copyInside(const run::SampledRegion& region, const GridHeader& header, const Grid& cells,
                const run::CellWindow& window, Grid& output);

struct TrimOptions {
    std::string layer;

    friend bool operator==(const TrimOptions&, const TrimOptions&) = default;
};

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
