#include "rainfall/triangle_cells.h"

#include "core/rounding.h"
#include "plane/triangle.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace gridforge::rainfall {

namespace {

// Single precision widened, as the comparisons have always been made.
constexpr double kUpright = static_cast<double>(0.001F);
constexpr double kHair = static_cast<double>(1.0e-6F);

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

bool rf_cell_factors(std::int32_t row, std::int32_t column, std::int32_t number, const RfCorners& corners,
                     const GridHeader& grid, RfTinTables& tables)
{
    if (row > grid.nrows || column > grid.ncols) {
        return false;
    }
    const TrianglePoint cell{grid.cellsize8 * column, grid.cellsize8 * row};
    const TrianglePoint first{corners.x[0], corners.y[0]};
    const TrianglePoint second{corners.x[1], corners.y[1]};
    const TrianglePoint third{corners.x[2], corners.y[2]};
    const TrianglePoint cut = cutOfEdge(corners, cell);
    tables.ratioA(row, column) = ratioOf(triangleDistance(first, cut), triangleDistance(first, second));
    tables.ratioB(row, column) = ratioOf(triangleDistance(third, cell), triangleDistance(third, cut));
    tables.triangle(row, column) = number;
    return true;
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

bool paintTriangle(std::int32_t number, const RfCorners& corners, const GridHeader& grid, RfTinTables& tables)
{
    const double size = grid.cellsize8;
    const CellRange rows = rangeOf(corners.y, size, grid.nrows);
    const CellRange columns = rangeOf(corners.x, size, grid.ncols);
    bool inGrid = true;
    if (rows.from > rows.to || columns.from > columns.to) {
        return inGrid;
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
                inGrid = rf_cell_factors(row, column, number, corners, grid, tables) && inGrid;
            }
        });
    }
    return inGrid;
}

} // namespace gridforge::rainfall
