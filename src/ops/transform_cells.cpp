#include "ops/transform_cells.h"

#include "core/computed.h"
#include "core/map_cells.h"

namespace gridforge::ops {

void transformCells(std::span<const float> cells, float m, float c, float null, std::span<float> output)
{
    mapCells(cells, output, [m, c, null](float cell) {
        const float transformed = stored(cell * m + c);
        return cell != null ? transformed : null;
    });
}

} // namespace gridforge::ops
