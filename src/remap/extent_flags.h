// Which cells of the coarse lattice are wet, and which may receive an extended level.
#pragma once

#include "plane/cell_array.h"

#include <cstdint>
#include <span>

namespace gridforge::remap {

// One byte a cell, 1 or 0.
using CellFlags = CellArray<std::uint8_t>;

// A value must stand above null by more than this to be one. A sum with it is single precision.
inline constexpr float kAboveNull = 0.01F;

// Sets the flag of each cell above null + 0.01 and clears the others; not-a-number is not above.
void flagValues(std::span<const float> values, float null, std::span<std::uint8_t> flags);

// The same, and the flagged cells rise by the freeboard.
void flagWetAndAddFreeboard(std::span<float> levels, float null, float freeboard, std::span<std::uint8_t> wetFlags);

struct ExtentCounts {
    std::int64_t wet = 0;
    std::int64_t buffered = 0;
};

// Flags the wet cells and the dry ones with a wet cell within `buffer`, centre to centre, in single precision. The
// distance is measured in units of `dx` on both axes. `extentFlags` has the size of `wetFlags`.
ExtentCounts bufferExtent(const CellFlags& wetFlags, float dx, float buffer, CellFlags& extentFlags);

} // namespace gridforge::remap
