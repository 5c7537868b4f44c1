#include "plane/inside_runs.h"

#include "core/rounding.h"

#include <cstddef>

namespace gridforge::inline plane {

CellWindow regionWindow(const SampledRegion& region, const GridHeader& header)
{
    const double dx = header.cellsize8;
    CellWindow window;
    window.firstRow = truncateToInt((region.box.ymin - header.yll) / dx);
    window.lastRow = truncateToInt((region.box.ymax - header.yll) / dx + 1.0);
    window.firstColumn = truncateToInt((region.box.xmin - header.xll) / dx);
    window.lastColumn = truncateToInt((region.box.xmax - header.xll) / dx + 1.0);
    return window;
}

void prepareWalk(const SampledRegion& region, InsideWalk& walk)
{
    prepareRing(region.x, region.y, region.box.xmin, walk.region);
}

namespace {

// Calls `work` with the routine that gives the place of a cell by its number along an axis from `origin`. A row of cells
// asks once which it is.
template <typename Work>
void withPlaces(double origin, const GridHeader& header, CellPlace place, const Work& work)
{
    const double size = header.cellsize8;
    const auto corner = [origin, size](std::int32_t cell) {
        return origin + static_cast<double>(static_cast<float>(cell)) * size;
    };
    switch (place) {
    case CellPlace::northEastCorner: work(corner); break;
    case CellPlace::centre: work([corner, size](std::int32_t cell) { return corner(cell) - 0.5 * size; }); break;
    case CellPlace::centreInSingle:
        work([origin, single = header.cellsize](std::int32_t cell) {
            return origin + static_cast<double>(static_cast<float>(cell) * single) - static_cast<double>(0.5F * single);
        });
        break;
    }
}

} // namespace

void placeColumns(const GridHeader& header, const CellWindow& window, CellPlace place, InsideWalk& walk)
{
    const std::int32_t count = window.lastColumn < window.firstColumn ? 0 : window.lastColumn - window.firstColumn + 1;
    walk.x.resize(static_cast<std::size_t>(count));
    withPlaces(header.xll, header, place, [&](const auto& placeOf) {
        for (std::int32_t i = 0; i < count; ++i) {
            walk.x[static_cast<std::size_t>(i)] = placeOf(window.firstColumn + i);
        }
    });
}

void walkRow(const GridHeader& header, std::int32_t row, CellPlace place, InsideWalk& walk)
{
    withPlaces(header.yll, header, place,
               [&](const auto& placeOf) { insideRegionRuns(walk.region, placeOf(row), walk.x, walk.runs); });
}

} // namespace gridforge::inline plane
