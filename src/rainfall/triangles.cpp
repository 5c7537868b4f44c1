#include "rainfall/triangles.h"

#include "core/huge_array.h"
#include "core/numbers.h"
#include "host/console.h"
#include "host/control_commands.h"
#include "host/ends.h"
#include "host/units.h"
#include "plane/geometry.h"
#include "plane/triangle.h"
#include "rainfall/single_rings.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace gridforge::rainfall {

namespace {

// Single precision widened, as the comparisons have always been made.
constexpr double kUpright = static_cast<double>(0.001F);
constexpr double kHair = static_cast<double>(1.0e-6F);
constexpr std::int32_t kProgressTriangles = 10000;

} // namespace

// --- Ratios of a cell ------------------------------------------------------------------------------------------------

namespace {

// Where the line from vertex 3 through the cell cuts the edge from vertex 1 to vertex 2. Unlike in the remap the
// comparisons have a tolerance.
TrianglePoint cutOfEdge(const RfCorners& corners, const TrianglePoint& cell)
{
    const auto& [x, y] = corners;
    const bool edgeUpright = std::abs(x[0] - x[1]) < kUpright;
    const bool lineUpright = std::abs(x[2] - cell.x) < kUpright;
    const double edgeSlope = (y[1] - y[0]) / (x[1] - x[0]);
    const double lineSlope = (cell.y - y[2]) / (cell.x - x[2]);
    if (edgeUpright) {
        return lineUpright ? TrianglePoint{x[0], y[0]} : TrianglePoint{x[0], lineSlope * (x[0] - x[2]) + y[2]};
    }
    if (lineUpright) {
        return {x[2], edgeSlope * (x[2] - x[0]) + y[0]};
    }
    const double cutX = ((((lineSlope * x[2]) - y[2]) + y[0]) - edgeSlope * x[0]) / (lineSlope - edgeSlope);
    return {cutX, lineSlope * (cutX - x[2]) + y[2]};
}

float ratioOf(double part, double whole)
{
    return whole < kDegenerateLength ? 0.5F : static_cast<float>(part / whole);
}

} // namespace

void rf_cell_factors(std::int32_t row, std::int32_t column, std::int32_t number, const RfCorners& corners,
                     const GridHeader& grid, RfTinTables& tables)
{
    if (row > grid.nrows || column > grid.ncols) {
        shouldNotBeHere("nn>gin or mm>gim");
    }
    const TrianglePoint cell{grid.cellsize8 * column, grid.cellsize8 * row};
    const TrianglePoint first{corners.x[0], corners.y[0]};
    const TrianglePoint second{corners.x[1], corners.y[1]};
    const TrianglePoint third{corners.x[2], corners.y[2]};
    const TrianglePoint cut = cutOfEdge(corners, cell);
    tables.ratioA(row, column) = ratioOf(triangleDistance(first, cut), triangleDistance(first, second));
    tables.ratioB(row, column) = ratioOf(triangleDistance(third, cell), triangleDistance(third, cut));
    tables.triangle(row, column) = number;
}

// --- Cells of a triangle ---------------------------------------------------------------------------------------------

namespace {

std::int32_t saturated(std::int64_t value)
{
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, 0, std::numeric_limits<std::int32_t>::max()));
}

// Rows or columns from 1, both ends included; empty where `from` is greater.
struct CellRange {
    std::int32_t from = 1;
    std::int32_t to = 0;
};

CellRange rangeOf(const std::array<double, 3>& ends, double size, std::int32_t cells)
{
    const auto [low, high] = std::ranges::minmax(ends);
    const std::int64_t first = truncateToInt(low / size);
    const std::int64_t last = truncateToInt(high / size);
    return {first < 0 ? 1 : saturated(first + 1), saturated(std::min<std::int64_t>(cells, last + 1))};
}

// The rows whose level an edge crosses.
CellRange rowsOfEdge(double y1, double y2, double size, const CellRange& rows)
{
    const auto rowOf = [&](double y) {
        return std::clamp<std::int64_t>(std::int64_t{truncateToInt(y / size)} + 1, rows.from,
                                        std::int64_t{rows.to} + 1);
    };
    const std::int64_t row1 = rowOf(y1);
    const std::int64_t row2 = rowOf(y2);
    // An edge of level ends gives an empty range.
    return {static_cast<std::int32_t>(std::min(row1, row2)), static_cast<std::int32_t>(std::max(row1, row2) - 1)};
}

// The column after the place where edge 1-2 crosses the level.
std::int64_t crossingColumn(double x1, double y1, double x2, double y2, double level, double size)
{
    double x = x1;
    if (!(std::abs(x1 - x2) < kUpright)) {
        const double slope = (y1 - y2) / (x1 - x2);
        x = ((slope * x1 - y1) + level) / slope;
    }
    return std::int64_t{truncateToInt(x / size)} + 1;
}

// The columns of one row where an edge is crossed, which are three at most; two in one column cancel out.
class Crossings {
public:
    Crossings() { columns_.fill(kNone); }

    void add(std::int32_t column)
    {
        const auto same = std::ranges::find(columns_, column);
        if (same != columns_.end()) {
            *same = kNone;
        } else {
            *std::ranges::find(columns_, kNone) = column;
        }
    }

    // Calls `work` with the first column of each stretch inside and the one after it: in from the first crossing, out
    // from the second on, in again from the third on, up to `end`.
    template <typename Work>
    void forStretches(std::int32_t end, Work&& work)
    {
        std::ranges::sort(columns_);
        for (std::size_t i = 0; i < columns_.size() && columns_[i] != kNone; i += 2) {
            work(columns_[i], std::min(columns_[i + 1], end));
        }
    }

private:
    static constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::max();
    std::array<std::int32_t, 4> columns_{};
};

} // namespace

RfCorners rfCorners(const RfTriangle& triangle, const RfTinPoints& points, const GridHeader& grid)
{
    std::array<double, 5> x{};
    std::array<double, 5> y{};
    for (std::size_t v = 0; v < x.size(); ++v) {
        const auto point = static_cast<std::size_t>(triangle[v % 3] - 1);
        x[v] = points.x[point] - grid.xll;
        y[v] = points.y[point] - grid.yll;
    }
    // Away from the opposite edge by a hair, so that cells on an edge are not lost.
    const auto grown = [](double at, double end1, double end2) { return at - kHair * ((end1 + end2) * 0.5 - at); };
    RfCorners corners;
    for (std::size_t v = 0; v < 3; ++v) {
        corners.x[v] = grown(x[v], x[v + 1], x[v + 2]) + 0.5 * grid.cellsize8;
        corners.y[v] = grown(y[v], y[v + 1], y[v + 2]) + 0.5 * grid.cellsize8;
    }
    return corners;
}

void paintTriangle(std::int32_t number, const RfCorners& corners, const GridHeader& grid, RfTinTables& tables)
{
    const double size = grid.cellsize8;
    const CellRange rows = rangeOf(corners.y, size, grid.nrows);
    const CellRange columns = rangeOf(corners.x, size, grid.ncols);
    if (rows.from > rows.to || columns.from > columns.to) {
        return;
    }
    std::array<CellRange, 3> edges;
    for (std::size_t k = 0; k < 3; ++k) {
        edges[k] = rowsOfEdge(corners.y[k], corners.y[(k + 1) % 3], size, rows);
    }
    for (std::int32_t row = rows.from; row <= rows.to; ++row) {
        Crossings crossings;
        for (std::size_t k = 0; k < 3; ++k) {
            if (row < edges[k].from || row > edges[k].to) {
                continue;
            }
            const std::size_t next = (k + 1) % 3;
            const std::int64_t column =
                crossingColumn(corners.x[k], corners.y[k], corners.x[next], corners.y[next], size * row, size);
            if (column <= columns.to) {
                crossings.add(static_cast<std::int32_t>(std::max<std::int64_t>(column, columns.from)));
            }
        }
        crossings.forStretches(columns.to + 1, [&](std::int32_t from, std::int32_t end) {
            for (std::int32_t column = from; column < end; ++column) {
                rf_cell_factors(row, column, number, corners, grid, tables);
            }
        });
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
        paintTriangle(number, rfCorners(triangle, points, grid), grid, tables);
    }
    say("Finished calculating grid interpolation factors.");
}

// --- Triangles and points --------------------------------------------------------------------------------------------

namespace {

// The point nearest to the vertex, the first of several; one that is not at the vertex ends the run.
std::int32_t snappedPoint(double x, double y, const RfPoints& points, std::span<float> distances)
{
    constexpr float kSnapped = 0.001F;
    std::ranges::transform(points.records, distances.begin(),
                           [&](const RfPoint& point) { return DISTANCE_8(x, y, point.x, point.y); });
    const auto nearest = std::ranges::min_element(distances);
    if (nearest == distances.end() || !(*nearest < kSnapped)) {
        fail("ERROR - No point found snapped to triangle vertex");
    }
    return static_cast<std::int32_t>(nearest - distances.begin()) + 1;
}

RfTriangle triangleFrom(const gis::Coordinates& read, const RfPoints& points, std::span<float> distances)
{
    RfTriangle triangle{};
    for (std::size_t v = 0; v < triangle.size(); ++v) {
        triangle[v] = snappedPoint(read.x[v], read.y[v], points, distances);
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
        pass.triangles.push_back(triangleFrom(read, pass.points, pass.distances));
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
