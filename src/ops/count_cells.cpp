#include "ops/count_cells.h"

#include "core/map_cells.h"

namespace gridforge::ops {

std::int64_t countActive(std::span<const float> cells, float null)
{
    return countCells(cells, [null](float cell) { return cell != null; });
}

std::int64_t countAbove(std::span<const float> cells, float null, float cutoff)
{
    return countCells(cells, [null, cutoff](float cell) { return (cell != null) & (cell > cutoff); });
}

} // namespace gridforge::ops
