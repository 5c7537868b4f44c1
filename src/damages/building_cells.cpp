#include "damages/building_cells.h"

#include "core/rounding.h"

#include <cmath>
#include <span>

namespace gridforge::damages {

namespace {

constexpr float kLeastMaximum = -998.0F;

void addRun(std::span<const float> values, float null, InsideCells& cells)
{
    for (const float value : values) {
        if (value != null) {
            cells.maximum = value > cells.maximum ? value : cells.maximum;
            cells.sum += value;
            ++cells.count;
        }
    }
}

} // namespace

CellWindow pointWindow(double x, double y, const GridHeader& header)
{
    const std::int32_t column = roundToInt((x - header.xll) / header.cellsize8);
    const std::int32_t row = roundToInt((y - header.yll) / header.cellsize8);
    return {row, row, column, column};
}

CellWindow buildingWindow(const Box& extent, const GridHeader& header)
{
    const auto cell = [&header](double coordinate, double origin, double margin) {
        return truncateToInt(std::trunc((coordinate - origin) / header.cellsize8) + margin);
    };
    CellWindow window;
    window.firstRow = cell(extent.ymin, header.yll, -1);
    window.lastRow = cell(extent.ymax, header.yll, 1);
    window.firstColumn = cell(extent.xmin, header.xll, -1);
    window.lastColumn = cell(extent.xmax, header.xll, 1);
    return window;
}

float maximumLevel(const InsideCells& cells, float null)
{
    return cells.maximum > kLeastMaximum ? cells.maximum : null;
}

float averageLevel(const InsideCells& cells, float null)
{
    return cells.count == 0 ? null : cells.sum / static_cast<float>(cells.count);
}

InsideCells cellsInside(const SampledRegion& outline, const CellWindow& window, const GridHeader& header,
                        const CellPart& cells, InsideWalk& walk)
{
    prepareWalk(outline, walk);
    InsideCells inside = {};
    forEachInsideRun(header, withinGrid(window, header), CellPlace::northEastCorner, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         addRun(cells.row(row, first, count), header.null, inside);
                     });
    return inside;
}

} // namespace gridforge::damages
