#include "sampling/inside_runs.h"

#include "core/numbers.h"

#include <cstddef>

namespace gridforge::sampling {

SampledRegion sampledRegion(const gis::Coordinates& read, double farthest)
{
    const auto count = static_cast<std::ptrdiff_t>(read.np);
    SampledRegion region;
    region.x.assign(read.x.begin(), read.x.begin() + count);
    region.y.assign(read.y.begin(), read.y.begin() + count);
    region.box = boxAround(region.x, region.y, farthest);
    return region;
}

run::CellWindow regionWindow(const SampledRegion& region, const GridHeader& header)
{
    const double dx = header.cellsize8;
    run::CellWindow window;
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

void prepareWalk(const SearchPolygon& polygon, InsideWalk& walk)
{
    prepareRing(polygon.x, polygon.y, polygon.xmin, walk.region);
}

void placeColumns(const GridHeader& header, const run::CellWindow& window, CellPlace place, InsideWalk& walk)
{
    walk.x.clear();
    for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
        walk.x.push_back(place == CellPlace::centre ? run::centreX(header, column) : run::cornerX(header, column));
    }
}

void walkRow(const GridHeader& header, std::int32_t row, CellPlace place, InsideWalk& walk)
{
    const double y = place == CellPlace::centre ? run::centreY(header, row) : run::cornerY(header, row);
    insideRegionRuns(walk.region, y, walk.x, walk.runs);
}

} // namespace gridforge::sampling
