#include "ops/fuzzy_cells.h"

#include "core/computed.h"
#include "core/map_cells.h"

namespace gridforge::ops {

void countActiveCells(std::span<const float> cells, float null, std::span<float> counts)
{
    updateCells(counts, cells, [null](float count, float cell) {
        const float oneMore = count + 1.0F;
        const float next = count == null ? 1.0F : oneMore;
        return cell != null ? next : count;
    });
}

void scaleCounts(std::int32_t grids, float null, std::span<float> counts)
{
    updateCells(counts, [null, divisor = static_cast<float>(grids)](float count) {
        const float fraction = stored(count / divisor);
        return count != null ? fraction : null;
    });
}

} // namespace gridforge::ops
