// -trim: each input grid cut to each region of a layer.
#pragma once

#include "grid/cell_source.h"
#include "grid/grid.h"
#include "run/cell_window.h"
#include "run/common.h"
#include "run/inputs.h"
#include "run/inside_runs.h"

#include <cstddef>
#include <span>
#include <string>

namespace gridforge::ops {

// The window's cells whose north-east corner is inside the region, and null for the others, into `output`, which is as large
// as the window. False where cells cannot be had.
[[nodiscard]] bool copyInside(const run::SampledRegion& region, const GridHeader& header, const grid::GetCells& cells,
                              const run::CellWindow& window, std::span<float> output);

struct TrimOptions {
    std::string layer;

    friend bool operator==(const TrimOptions&, const TrimOptions&) = default;
};

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
