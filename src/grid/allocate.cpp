#include "grid/allocate.h"

#include "core/number_text.h"
#include "host/ends.h"

#include <algorithm>

namespace gridforge::grid {

std::int32_t gridKilobytes(std::int32_t nrows, std::int32_t ncols)
{
    // Wraps at 32 bits on purpose: users know the number so, and it is only printed.
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
        std::ranges::fill(grid.cells(), 0.0F); // cheaper than new memory
    } else if (!grid.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
}

} // namespace gridforge::grid
