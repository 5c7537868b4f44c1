#include "netcdf/layout_cells.h"

#include <algorithm>

namespace gridforge::netcdf {

namespace {

// A square of cells, so that both sides go by whole lines.
void turnSquare(const float* north, std::size_t columns, float* target, std::size_t apart)
{
    for (std::size_t c = 0; c < kLineCells; ++c) {
        for (std::size_t r = 0; r < kLineCells; ++r) {
            target[c * apart + r] = north[(kLineCells - 1 - r) * columns + c];
        }
    }
}

} // namespace

void turnCells(std::span<const float> rows, std::size_t columns, float* target, std::size_t apart)
{
    const std::size_t count = rows.size() / columns;
    for (std::size_t row = 0; row < count; row += kLineCells) {
        const std::size_t taken = std::min(kLineCells, count - row);
        const float* const north = rows.data() + row * columns;
        float* const south = target + (count - row - taken); // where the southmost of these rows goes
        std::size_t column = 0;
        for (; taken == kLineCells && column + kLineCells <= columns; column += kLineCells) {
            turnSquare(north + column, columns, south + column * apart, apart);
        }
        for (; column < columns; ++column) {
            for (std::size_t r = 0; r < taken; ++r) {
                south[column * apart + taken - 1 - r] = north[r * columns + column];
            }
        }
    }
}

} // namespace gridforge::netcdf
