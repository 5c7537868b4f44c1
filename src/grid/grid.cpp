#include "grid/grid.h"

#include "core/numbers.h"
#include "host/ends.h"

#include <algorithm>

namespace gridforge::grid {

std::int32_t gridKilobytes(std::int32_t nrows, std::int32_t ncols)
{
    // The figure is meant to wrap at 32 bits: it is printed only.
    const std::uint32_t bytes = static_cast<std::uint32_t>(nrows) * static_cast<std::uint32_t>(ncols) * 4U;
    return static_cast<std::int32_t>(bytes) / 1000;
}

void sayAllocation(const GridHeader& header, std::string_view purpose)
{
    say("Allocating ", AINTEGER(gridKilobytes(header.nrows, header.ncols)), "Kb memory for ", purpose);
}

void allocateGrid(Grid& grid, const GridHeader& header, std::string_view purpose)
{
    sayAllocation(header, purpose);
    if (grid.nrows() == header.nrows && grid.ncols() == header.ncols) {
        std::ranges::fill(grid.cells(), 0.0F); // cheaper than fresh memory
    } else if (!grid.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
}

} // namespace gridforge::grid
