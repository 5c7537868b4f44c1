#include "run/inside_runs.h"

#include "core/numbers.h"

#include <cstddef>

namespace gridforge::run {

SampledRegion sampledRegion(const gis::Coordinates& read, double farthest)
{
    SampledRegion region;
    region.x.assign(read.vertexX().begin(), read.vertexX().end());
    region.y.assign(read.vertexY().begin(), read.vertexY().end());
    region.box = boxAround(region.x, region.y, farthest);
    return region;
}

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

double placeAlong(double origin, std::int32_t cell, const GridHeader& header, CellPlace place)
{
    const auto number = static_cast<float>(cell);
    const double corner = origin + static_cast<double>(number) * header.cellsize8;
    switch (place) {
    case CellPlace::northEastCorner: break;
    case CellPlace::centre: return corner - 0.5 * header.cellsize8;
    case CellPlace::centreInSingle:
        return origin + static_cast<double>(number * header.cellsize) - static_cast<double>(0.5F * header.cellsize);
    }
    return corner;
}

} // namespace

void placeColumns(const GridHeader& header, const CellWindow& window, CellPlace place, InsideWalk& walk)
{
    walk.x.clear();
    for (std::int32_t column = window.firstColumn; column <= window.lastColumn; ++column) {
        walk.x.push_back(placeAlong(header.xll, column, header, place));
    }
}

void walkRow(const GridHeader& header, std::int32_t row, CellPlace place, InsideWalk& walk)
{
    insideRegionRuns(walk.region, placeAlong(header.yll, row, header, place), walk.x, walk.runs);
}

} // namespace gridforge::run
