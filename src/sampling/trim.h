// -trim: each input grid cut to each region of a layer.
#pragma once

#include "grid/grid.h"
#include "run/cell_window.h"
#include "run/inputs.h"
#include "run/run_settings.h"
#include "sampling/inside_cells.h"

namespace gridforge {

// Copies the cells of the window whose north-east corner is inside the region to `output`, which has the window's size;
// other cells of `output` stay as they are.
void copyInside(const SampledRegion& region, const GridHeader& header, const Grid& cells, const CellWindow& window,
                Grid& output);

void runTrim(const RunSettings& settings, const InputFileList& inputs);

} // namespace gridforge
