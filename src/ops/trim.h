// -trim: each input grid cut to each region of a layer.
#pragma once

#include "grid/grid.h"
#include "run/cell_window.h"
#include "run/common.h"
#include "run/inputs.h"
#include "run/inside_runs.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace gridforge::ops {

// Cells of a grid from `first` on, in the order of the files. False where they cannot be had.
using GetCells = std::function<bool(std::size_t first, std::span<float> cells)>;

// The window's cells whose north-east corner is inside the region, and null for the others, into `output`, which is as large
// as the window. False where cells cannot be had.
[[nodiscard]] bool copyInside(const run::SampledRegion& region, const GridHeader& header, const GetCells& cells,
                              const run::CellWindow& window, std::span<float> output);

struct TrimOptions {
    std::string layer;

    friend bool operator==(const TrimOptions&, const TrimOptions&) = default;
};

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs);

} // namespace gridforge::ops
