#include "rainfall/polygons.h"

#include "core/rounding.h"
#include "gis/layer_objects.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"
#include "plane/inside_runs.h"
#include "plane/region_rows.h"
#include "rainfall/single_rings.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace gridforge::rainfall {

// --- The kernel ------------------------------------------------------------------------------------------------------

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

void prepare(const RfRegion& region, double xOrigin, PreparedRegion& prepared)
{
    prepareRing(region.x, region.y, std::min(region.extent.xmin, xOrigin), prepared);
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
    RfRegion region{x, y, {}};
    if (!x.empty()) { // not boxAround: without vertices the extent is 0, and not-a-number counts where it stands
        const auto [xmin, xmax] = std::ranges::minmax(x);
        const auto [ymin, ymax] = std::ranges::minmax(y);
        region.extent = {xmin, ymin, xmax, ymax};
    }
    return region;
}

std::int64_t paintRegion(const RfRegion& region, const GridHeader& grid, std::int32_t hyetograph, float factor,
                         RfPolygonTables& tables)
{
    const CellWindow window = windowOf(region.extent, grid);
    if (window.empty()) {
        return 0;
    }
    InsideWalk walk;
    prepare(region, grid.xll, walk.region);
    std::int64_t shared = 0;
    forEachInsideRun(grid, window, CellPlace::centreInSingle, walk,
                     [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                         shared += paintRun(hyetograph, factor, cellsOfRun(tables.index, row, first, count),
                                            cellsOfRun(tables.factor, row, first, count));
                     });
    return shared;
}

RfPointsInside pointsInside(const RfRegion& region, const GridHeader& grid, const RfPoints& points)
{
    PreparedRegion ready;
    prepare(region, grid.xll, ready);
    RfPointsInside inside;
    for (const RfPoint& point : points.records) {
        if (insideRegion(ready, point.x, point.y)) {
            ++inside.count;
            inside.last = point.record;
        }
    }
    return inside;
}

// --- The pass over the control file ----------------------------------------------------------------------------------

namespace {

// The point inside gives name and factors; none, or one without a name, ends the run.
RfRecord recordOfPointInside(const RfRegion& region, const GridHeader& grid, const RfPoints& points)
{
    RfPointsInside inside = pointsInside(region, grid, points);
    for (std::int64_t i = 1; i < inside.count; ++i) {
        say("WARNING - More than one rainfall point inside region.");
    }
    if (inside.count == 0) {
        fail("ERROR - No rainfall points inside region.");
    }
    if (inside.last.name.empty()) {
        fail("ERROR - No Rainfall name for polygon / point.");
    }
    return std::move(inside.last);
}

RfRecord recordOfRegion(const std::string& dataLine, const RfRegion& region, const GridHeader& grid,
                        const RfPoints& points)
{
    RfRecord record = parseRfRecord(dataLine);
    if (record.name.empty()) {
        return recordOfPointInside(region, grid, points);
    }
    mendFactors(record);
    return record;
}

// Where no hyetograph has the name, `number` stays that of the region before, on purpose: old control files rely on it.
void matchRegion(const std::string& name, const RfHyetographs& hyetographs, std::int32_t& number)
{
    const std::int32_t found = findHyetograph(name, hyetographs);
    if (found == 0) {
        say("ERROR - Could not find rainfall hyetogpraph with name: ", name);
        return;
    }
    number = found;
}

// What the pass reads with and fills.
struct PolygonPass {
    const RfPoints& points;
    const RfHyetographs& hyetographs;
    const GridHeader& grid;
    RfPolygonTables& tables;
    std::int32_t number = 0; // of the hyetograph of the last region
};

void paintLayer(const ControlLine& line, PolygonPass& pass)
{
    forEachRing(line.value, [&pass](const gis::Coordinates& read, const std::string& dataLine) {
        const RfRegion region = rfRegion(read.vertexX(), read.vertexY());
        const RfRecord record = recordOfRegion(dataLine, region, pass.grid, pass.points);
        matchRegion(record.name, pass.hyetographs, pass.number);
        const std::int64_t shared = paintRegion(region, pass.grid, pass.number, record.f1 * record.f2, pass.tables);
        for (std::int64_t i = 0; i < shared; ++i) {
            say("WARNING - Overlapping rainfall areas.");
        }
    });
}

constexpr std::array kPolygonCommands{ControlCommand<PolygonPass>{"Read GIS RF Polygon", paintLayer}};

void writeTables(const GridHeader& grid, const RfPolygonTables& tables)
{
    constexpr std::int32_t kDecimals = 3;
    Grid numbers;
    if (!numbers.allocate(grid.nrows, grid.ncols)) {
        failMemory();
    }
    std::ranges::transform(tables.index.cells(), numbers.cells().begin(),
                           [](std::int32_t number) { return static_cast<float>(number); });
    grid::writeGrid(grid::Format::asc, "rf_index", grid, numbers, "", kDecimals);
    grid::writeGrid(grid::Format::asc, "rf_fac", grid, tables.factor, "", kDecimals);
}

} // namespace

void allocateTables(const GridHeader& grid, RfPolygonTables& tables)
{
    if (!tables.index.allocate(grid.nrows, grid.ncols) || !tables.factor.allocate(grid.nrows, grid.ncols)) {
        failMemory();
    }
    std::ranges::fill(tables.index.cells(), truncateToInt(static_cast<double>(grid.null)));
    std::ranges::fill(tables.factor.cells(), grid.null);
}

void rf_set_polygons(const std::string& controlFile, const RfPoints& points, const RfHyetographs& hyetographs,
                     const GridHeader& grid, RfPolygonTables& tables)
{
    say("Searching rainfall control file for polygons: ", controlFile);
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    PolygonPass pass{points, hyetographs, grid, tables};
    runCommands(unit, {}, kPolygonCommands, pass);
    writeTables(grid, tables);
    say(" Finished reading rainfall polygons.");
    CLOSER(unit);
}

} // namespace gridforge::rainfall
