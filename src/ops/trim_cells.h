// The cells of a window that lie inside a region, copied into a grid of that window.
#pragma once

#include "plane/cell_window.h"
#include "plane/inside_runs.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::ops {

// A cell's place in the order of the files.
inline std::size_t placeOf(const GridHeader& header, std::int32_t row, std::int32_t column)
{
    return static_cast<std::size_t>(header.nrows - row) * static_cast<std::size_t>(header.ncols) +
           static_cast<std::size_t>(column - 1);
}

// Fills `output`, which is as large as the window, with null, and calls copy(first, target) for each run of cells whose
// north-east corner is inside the region: with the place of the first of them in the grid, and their part of the output.
template <typename Copy>
void copyInside(const SampledRegion& region, const GridHeader& header, const CellWindow& window,
                std::span<float> output, const Copy& copy)
{
    std::ranges::fill(output, header.null);
    InsideWalk walk;
    prepareWalk(region, walk);
    forEachInsideRun(header, window, CellPlace::northEastCorner, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         const auto fromNorth = static_cast<std::size_t>(window.lastRow - row);
                         const auto fromWest = static_cast<std::size_t>(first - window.firstColumn);
                         copy(placeOf(header, row, first),
                              output.subspan(fromNorth * window.columns() + fromWest, static_cast<std::size_t>(count)));
                     });
}

} // namespace gridforge::ops
