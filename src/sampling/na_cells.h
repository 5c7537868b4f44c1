// The terrain inside a region, counted by height.
#pragma once

#include "plane/cell_array.h"
#include "plane/inside_runs.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::sampling {

// Adds the cells of the window, which lies within the grid, whose north-east corner is inside the region and that are not
// null to `values`: rows from the south, each from the west. False where there are more than `most`.
bool collectInside(const SampledRegion& region, const GridHeader& header, const Grid& cells, const CellWindow& window,
                   std::size_t most, std::vector<float>& values);

// The heights of a table, each from the one before: fine near `minimum`, coarse above, to the first one above `maximum`
// or, where that is out of reach, 100 of them. In single precision.
std::vector<float> heightLadder(float minimum, float maximum);

struct HeightCounts {
    std::vector<std::int64_t> upTo; // cells at or below each height; never below 1
    std::int64_t above = 0;         // cells above all of them
};
// Each value counts at the first height that it does not exceed.
HeightCounts countByHeight(std::span<const float> values, std::span<const float> heights);

} // namespace gridforge::sampling
