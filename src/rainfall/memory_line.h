// The memory lines of the methods.
#pragma once

#include "host/console.h"
#include "plane/grid_header.h"

#include <cstdint>

namespace gridforge::rainfall {

// Says what `cellBytes` for each cell come to, in the 32-bit arithmetic that memory figures have: it wraps. (The figure
// of the rainfall grids themselves is the one that is made in 64 bits.)
inline void sayMethodMemory(const GridHeader& grid, std::uint32_t cellBytes)
{
    const std::uint32_t bytes =
        static_cast<std::uint32_t>(grid.nrows) * static_cast<std::uint32_t>(grid.ncols) * cellBytes;
    say("Memory required: ", static_cast<std::int32_t>(bytes) / 1000, "kB");
}

} // namespace gridforge::rainfall
