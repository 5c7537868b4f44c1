#include "ops/cutoff_cells.h"

#include "core/map_cells.h"

namespace gridforge::ops {

void keepFrom(std::span<const float> cells, float cutoff, float null, std::span<float> output)
{
    mapCells(cells, output, [cutoff, null](float cell) { return cell >= cutoff ? cell : null; });
}

void filterFrom(std::span<const float> test, float cutoff, std::span<const float> values, float valuesNull, float null,
                std::span<float> output)
{
    mapCells(test, values, output, [cutoff, valuesNull, null](float tested, float value) {
        return ((tested >= cutoff) & (value != valuesNull)) ? value : null;
    });
}

} // namespace gridforge::ops
