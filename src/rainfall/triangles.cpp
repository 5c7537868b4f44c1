#include "rainfall/triangles.h"

#include "core/huge_array.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"
#include "rainfall/point_search.h"
#include "rainfall/single_rings.h"

#include <array>
#include <span>
#include <utility>

namespace gridforge::rainfall {

namespace {

constexpr std::int32_t kProgressTriangles = 10000;

} // namespace

void requireInGrid(bool inGrid)
{
    if (!inGrid) {
        shouldNotBeHere("nn>gin or mm>gim");
    }
}

void rf_tin_factors(const std::vector<RfTriangle>& triangles, const RfTinPoints& points, const GridHeader& grid,
                    RfTinTables& tables)
{
    say("Calculating grid interpolation factors...");
    sayOpen("Element: ");
    std::int32_t number = 0;
    for (const RfTriangle& triangle : triangles) {
        if (++number % kProgressTriangles == 0) {
            progress(number);
        }
        requireInGrid(paintTriangle(number, rfCorners(triangle, points, grid), grid, tables));
    }
    say("Finished calculating grid interpolation factors.");
}

// --- Triangles and points --------------------------------------------------------------------------------------------

namespace {

// A vertex without a point ends the run.
RfTriangle readTriangle(const gis::Coordinates& read, const RfPoints& points, std::span<float> distances)
{
    RfTriangle triangle{};
    for (std::size_t v = 0; v < triangle.size(); ++v) {
        triangle[v] = snappedPoint(read.x[v], read.y[v], points, distances);
        if (triangle[v] == 0) {
            fail("ERROR - No point found snapped to triangle vertex");
        }
    }
    return triangle;
}

// What the pass reads with and finds.
struct TrianglePass {
    const RfPoints& points;
    std::span<float> distances; // one for each point
    std::vector<RfTriangle> triangles;
};

void readTriangleLayer(const ControlLine& line, TrianglePass& pass)
{
    // Three vertices, the first again, and the slot that the reader adds.
    constexpr std::int32_t kTriangleVertices = 5;
    forEachRing(line.value, [&pass](const gis::Coordinates& read, const std::string&) {
        if (read.np != kTriangleVertices) {
            fail("ERROR - Polygon object is not a triangle.");
        }
        if (pass.triangles.size() == static_cast<std::size_t>(kMaxRfTriangles)) {
            fail("ERROR - Number of rainfall triangles exceeds maximum: ", kMaxRfTriangles);
        }
        pass.triangles.push_back(readTriangle(read, pass.points, pass.distances));
    });
}

constexpr std::array kTriangleCommands{ControlCommand<TrianglePass>{"Read GIS RF Triangle", readTriangleLayer}};

} // namespace

void allocateTables(const GridHeader& grid, RfTinTables& tables)
{
    if (!tables.triangle.allocate(grid.nrows, grid.ncols) || !tables.ratioA.allocate(grid.nrows, grid.ncols) ||
        !tables.ratioB.allocate(grid.nrows, grid.ncols)) {
        failMemory();
    }
}

std::vector<RfTriangle> rf_read_triangles(const std::string& controlFile, const RfPoints& points)
{
    say("Allocating array for storing distances.");
    HugeArray<float> distances;
    if (!distances.allocate(points.records.size())) {
        fail("Could not allocate memory.");
    }
    say("   Done.");
    say("Searching rainfall control file for triangles: ", controlFile);
    Unit unit = 0;
    OPENER(unit, "I ", controlFile);
    TrianglePass pass{points, distances.all(), {}};
    runCommands(unit, {}, kTriangleCommands, pass);
    // The word polygons stands here too; it stays as it is.
    say(" Finished reading rainfall polygons.");
    CLOSER(unit);
    return std::move(pass.triangles);
}

RfTinPoints rfTinPoints(const RfPoints& points)
{
    if (points.count() > kMaxRfTinPoints) {
        fail("ERROR - Number of rainfall TIN points exceeds maximum: ", kMaxRfTinPoints);
    }
    RfTinPoints tin;
    for (const RfPoint& point : points.records) {
        tin.x.push_back(point.x);
        tin.y.push_back(point.y);
        tin.hyetograph.push_back(point.hyetograph);
    }
    return tin;
}

} // namespace gridforge::rainfall
