#include "ops/flood_extent_cells.h"

#include "core/map_cells.h"

#include <cmath>

namespace gridforge::ops {

void markWet(std::span<const float> cells, float null, std::span<float> output)
{
    mapCells(cells, output,
             [null](float cell) { return ((cell == null) | (std::fabs(cell) < kWetFrom)) ? null : 1.0F; });
}

} // namespace gridforge::ops
