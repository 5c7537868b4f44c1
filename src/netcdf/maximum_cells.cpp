#include "netcdf/maximum_cells.h"

#include "core/map_cells.h"

namespace gridforge::netcdf {

void raiseMaximum(std::span<const float> cells, float null, std::span<float> maximum)
{
    const float above = null + 0.01F;
    updateCells(maximum, cells,
                [above](float kept, float cell) { return ((cell > above) & (cell > kept)) ? cell : kept; });
}

} // namespace gridforge::netcdf
