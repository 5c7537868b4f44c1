// The load pattern that operations on grids of one lattice share.
#pragma once

#include "grid/grid.h"
#include "run/inputs.h"

#include <cstdint>
#include <string_view>

namespace gridforge {

// "Reading: " and the name, then the cells of the grid whose header has just been read.
void readAnnounced(std::string_view name, GridHeader& header, Grid& cells);

// The header of a further grid of the run; ends the run when its size, corner or cell size is not that of `first`.
GridHeader readFurtherHeader(std::string_view name, const GridHeader& first);

// Reads the cells of input `i` into `cells` and gives that grid's header. The first input is the one whose header
// `first` has been read already; a later one has its header read here and must cover the same lattice.
GridHeader loadInput(const InputFileList& inputs, std::int32_t i, const GridHeader& first, Grid& cells);

} // namespace gridforge
