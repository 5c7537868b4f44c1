#include "remap/places.h"

#include "core/rounding.h"

#include <cmath>

namespace gridforge::remap {

Axis columnAxis(const GridHeader& header)
{
    return {header.xll, header.cellsize8, header.ncols};
}

Axis rowAxis(const GridHeader& header)
{
    return {header.yll, header.cellsize8, header.nrows};
}

std::vector<QuadPlace> placesInQuads(const Axis& fine, const Axis& coarse)
{
    std::vector<QuadPlace> places(static_cast<std::size_t>(fine.count));
    std::int32_t i = 0;
    for (QuadPlace& place : places) {
        place.centre = fine.centre(++i);
        const std::int32_t base =
            truncateToInt(((place.centre - coarse.origin) + 0.5 * coarse.cellsize) / coarse.cellsize);
        if (base < 1 || base > coarse.count - 1) {
            continue;
        }
        place.base = base;
        place.nearest = (place.centre - coarse.centre(base)) / coarse.cellsize > 0.5 ? base + 1 : base;
    }
    return places;
}

std::vector<NearestCell> placesInCells(const Axis& fine, const Axis& coarse)
{
    std::vector<NearestCell> places(static_cast<std::size_t>(fine.count));
    std::int32_t i = 0;
    for (NearestCell& place : places) {
        const double centre = fine.centre(++i);
        const std::int32_t cell = roundToInt(((centre - coarse.origin) + 0.5 * coarse.cellsize) / coarse.cellsize);
        if (cell < 1 || cell > coarse.count) {
            continue;
        }
        place.cell = cell;
        place.offset = centre - coarse.centre(cell);
    }
    return places;
}

bool isNearCell(const NearestCell& column, const NearestCell& row, double cellsize)
{
    return std::sqrt(column.offset * column.offset + row.offset * row.offset) <= cellsize;
}

} // namespace gridforge::remap
