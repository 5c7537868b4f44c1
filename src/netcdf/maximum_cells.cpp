#include "netcdf/maximum_cells.h"

#include <cassert>

namespace gridforge::netcdf {

void raiseMaximum(std::span<const float> cells, float null, std::span<float> maximum)
{
    assert(cells.size() == maximum.size());
    const float above = null + 0.01F;
    // No branches on cells, so that the loop vectorises.
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const float cell = cells[i];
        maximum[i] = ((cell > above) & (cell > maximum[i])) ? cell : maximum[i];
    }
}

} // namespace gridforge::netcdf
