#include "ops/dif_cells.h"

#include "core/computed.h"
#include "core/map_cells.h"

#include <cassert>
#include <cstddef>

namespace gridforge::ops {

void subtractActive(const DifGrid& first, const DifGrid& second, std::span<float> difference)
{
    mapCells(first.cells, second.cells, difference, [nullA = first.null, nullB = second.null](float a, float b) {
        const float less = stored(a - b);
        return ((a != nullA) & (b != nullB)) ? less : nullA;
    });
}

void subtractChange(const DifGrid& first, const DifGrid& second, std::span<float> difference)
{
    mapCells(first.cells, second.cells, difference, [nullA = first.null, nullB = second.null](float a, float b) {
        const bool activeA = a != nullA;
        const float less = stored(a - b);
        const float fall = stored(0.0F - b);
        const float alone = activeA ? a : nullA;
        const float withB = activeA ? less : fall;
        return b != nullB ? withB : alone;
    });
}

void subtractWetDry(const DifGrid& first, const DifGrid& second, std::span<float> difference, std::span<float> wetDry)
{
    assert(first.cells.size() == difference.size() && second.cells.size() == difference.size());
    assert(wetDry.size() == difference.size());
    const float* const a = first.cells.data();
    const float* const b = second.cells.data();
    float* const out = difference.data();
    float* const classes = wetDry.data();
    const float nullA = first.null;
    const float nullB = second.null;
    for (std::size_t i = 0; i < difference.size(); ++i) {
        const bool activeA = a[i] != nullA;
        const bool activeB = b[i] != nullB;
        const float less = stored(a[i] - b[i]);
        const float onlyOne = activeA ? kOnlyFirstActive : kOnlySecondActive;
        out[i] = (activeA & activeB) ? less : nullA;
        classes[i] = activeA != activeB ? onlyOne : nullA;
    }
}

} // namespace gridforge::ops
