// The search of the inverse distance method: from a dry coarse cell outwards, ring by ring, until there are wet cells
// enough, and the level that the nearest of them give.
#pragma once

#include "remap/extent_flags.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace gridforge::remap {

// The wet flags prepared for the search: in both directions in memory, so that the sides of a ring are stretches of
// bytes, and with the distance to the nearest wet cell, so that rings which hold none are not looked at.
struct WetIndex {
    const CellFlags* rows = nullptr; // as given
    CellFlags columns;               // row r, column c there is column r, row c of the lattice
    CellArray<std::int32_t> reach;   // the larger of the differences in rows and columns
};

// `wetFlags` must outlive the index. False when the memory cannot be had.
[[nodiscard]] bool indexWetCells(const CellFlags& wetFlags, WetIndex& index);

// A wet cell that the search has listed; distances are in cells.
struct ListedCell {
    float distance = 0;
    float level = 0;
    std::size_t order = 0; // place in the list
};
// Working space, kept from one search to the next.
using ListedCells = std::vector<ListedCell>;

inline constexpr float kIdwExponent = 2.0F;

// The level at the dry cell (row, column) from the `points` nearest listed cells, by inverse distance to the power
// `exponent`. Nothing where too few wet cells can be reached.
std::optional<float> idwPoint(std::int32_t points, std::int32_t row, std::int32_t column, const WetIndex& wet,
                              const Grid& levels, ListedCells& listed, float exponent);

} // namespace gridforge::remap
