#include "rainfall/polygons.h"

#include "core/rounding.h"
#include "gis/layer_objects.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"
#include "rainfall/point_search.h"
#include "rainfall/single_rings.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace gridforge::rainfall {

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
