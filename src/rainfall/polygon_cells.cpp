#include "rainfall/polygon_cells.h"

#include "core/rounding.h"
#include "plane/inside_runs.h"

#include <algorithm>

namespace gridforge::rainfall {

namespace {

// The cells about the region, within the grid.
CellWindow windowOf(const Box& extent, const GridHeader& grid)
{
    const auto cell = [&grid](double coordinate, double origin) {
        return std::int64_t{truncateToInt((coordinate - origin) / grid.cellsize8)};
    };
    const auto first = [&](double low, double origin) {
        return static_cast<std::int32_t>(std::max<std::int64_t>(1, cell(low, origin) - 1));
    };
    const auto last = [&](double high, double origin, std::int32_t cells) {
        return static_cast<std::int32_t>(std::min<std::int64_t>(cells, cell(high, origin) + 1));
    };
    return {first(extent.ymin, grid.yll), last(extent.ymax, grid.yll, grid.nrows), first(extent.xmin, grid.xll),
            last(extent.xmax, grid.xll, grid.ncols)};
}

// How many of the places had a hyetograph before.
std::int64_t paintRun(std::int32_t hyetograph, float factor, std::span<std::int32_t> index, std::span<float> factors)
{
    const auto shared = std::ranges::count_if(index, [](std::int32_t before) { return before > 0; });
    std::ranges::fill(index, hyetograph);
    std::ranges::fill(factors, factor);
    return shared;
}

} // namespace

RfRegion rfRegion(std::span<const double> x, std::span<const double> y)
{
    return {x, y, extentOfRing(x, y)};
}

void prepareRfRegion(const RfRegion& region, const GridHeader& grid, PreparedRegion& prepared)
{
    prepareRing(region.x, region.y, std::min(region.extent.xmin, grid.xll), prepared);
}

std::int64_t paintRegion(const RfRegion& region, const GridHeader& grid, std::int32_t hyetograph, float factor,
                         RfPolygonTables& tables)
{
    const CellWindow window = windowOf(region.extent, grid);
    if (window.empty()) {
        return 0;
    }
    InsideWalk walk;
    prepareRfRegion(region, grid, walk.region);
    std::int64_t shared = 0;
    forEachInsideRun(grid, window, CellPlace::centreInSingle, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         shared += paintRun(hyetograph, factor, cellsOfRun(tables.index, row, first, count),
                                            cellsOfRun(tables.factor, row, first, count));
                     });
    return shared;
}

} // namespace gridforge::rainfall
