#include "ops/multiply_cells.h"

#include "core/computed.h"
#include "core/map_cells.h"

namespace gridforge::ops {

void multiplyCells(std::span<const float> first, float firstNull, std::span<const float> second, float secondNull,
                   std::span<float> output)
{
    mapCells(first, second, output, [firstNull, secondNull](float a, float b) {
        const float product = stored(a * b);
        return ((a != firstNull) & (b != secondNull)) ? product : firstNull;
    });
}

} // namespace gridforge::ops
