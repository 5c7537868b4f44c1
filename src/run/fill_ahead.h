// Cells that are computed ahead for a grid of another lattice than its input.
#pragma once

#include "grid/cell_store.h"
#include "run/ways.h"

#include <cstddef>
#include <functional>
#include <span>

namespace gridforge::run {

// Fills cells from `first` on of the output, as worker `worker`. It may go another way.
using FillKernel = std::function<Way(std::size_t first, std::span<float> cells, std::size_t worker)>;

// Fills `output` in pieces of `pieceCells` cells, the last one with what is left, by all threads, until one of them goes
// another way than ahead.
Way fillAhead(grid::CellStore& output, std::size_t pieceCells, const FillKernel& kernel);

// A part of an input is what one thread does at a time: large, as disks want to be read. Its pieces stay in the cache of a
// processor.
inline constexpr std::size_t kCachedCells = std::size_t{1} << 18;
std::size_t cellsOfPart();

} // namespace gridforge::run
