// The plane under its plain names.
#include "core/product.h"
#include "exports/boundary.h"
#include "exports/lattice_cells.h"
#include "exports/plane_for_callers.h"
#include "host/ends.h"
#include "plane/geometry.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gridforge/gridforge.h>
#include <span>
#include <vector>

using gridforge::exports::answer;

namespace {

// A count below 0 counts as 0.
std::int32_t held(std::int32_t count)
{
    return std::max(count, 0);
}

// The caller's array of `count` values.
template <typename Value>
std::span<Value> array(Value* values, std::int32_t count)
{
    return {values, static_cast<std::size_t>(held(count))};
}

template <typename Value>
std::span<const Value, 3> corners(const Value* values)
{
    return std::span<const Value, 3>(values, 3);
}

std::int32_t logical(bool value)
{
    return static_cast<std::int32_t>(value);
}

// For a region whose rings end before its vertices.
[[noreturn]] void failRings(std::string_view routine, int form)
{
    gridforge::fail("Invalid number of polygons in region sent to ", routine, " routine [", form, "] - contact ",
                    gridforge::kSupportContact);
}

void requireRings(std::int32_t np, const std::int32_t* ir, std::int32_t nr, int form)
{
    if (!gridforge::exports::isWholeRegion(held(np), array(ir, nr), held(nr))) {
        failRings("inside_polygon", form);
    }
}

// Returns for `done` only.
void requireGridline(gridforge::exports::GridlineEnd end, std::int32_t limit)
{
    switch (end) {
    case gridforge::exports::GridlineEnd::done: return;
    case gridforge::exports::GridlineEnd::noPlace:
        gridforge::fail("should not be here - gridline - intersection point - contact ", gridforge::kSupportContact);
    case gridforge::exports::GridlineEnd::pastLimit:
        gridforge::fail("SORRY - Exceeded limit of ", limit, " HX cells per HX polyline segment.  Contact ",
                        gridforge::kSupportContact, ".");
    }
}

void put(const gridforge::exports::HydraulicParameters& part, float* area, float* width, float* perimeter)
{
    *area = part.area;
    *width = part.width;
    *perimeter = part.perimeter;
}

} // namespace

extern "C" {

// --- Points and segments ---------------------------------------------------------------------------------------------

float DISTANCE(float x1, float y1, float x2, float y2)
{
    return gridforge::DISTANCE(x1, y1, x2, y2);
}

float DISTANCE_8(double x1, double y1, double x2, double y2)
{
    return gridforge::DISTANCE_8(x1, y1, x2, y2);
}

std::int32_t SAME_POINT(float x1, float y1, float x2, float y2, float tolerance)
{
    return logical(gridforge::exports::SAME_POINT(x1, y1, x2, y2, tolerance));
}

std::int32_t SAME_POINT_8(double x1, double y1, double x2, double y2, double tolerance)
{
    return logical(gridforge::exports::SAME_POINT_8(x1, y1, x2, y2, tolerance));
}

float SAME_SIDE(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by)
{
    return gridforge::SAME_SIDE(x1, y1, x2, y2, ax, ay, bx, by);
}

float SAME_SIDE_8(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by)
{
    return gridforge::SAME_SIDE_8(x1, y1, x2, y2, ax, ay, bx, by);
}

std::int32_t INTERSECT_POINT(float x1, float y1, float x2, float y2, float px, float py)
{
    return logical(gridforge::exports::INTERSECT_POINT(x1, y1, x2, y2, px, py));
}

std::int32_t INTERSECT_LINE(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4)
{
    return logical(gridforge::INTERSECT_LINE(x1, y1, x2, y2, x3, y3, x4, y4));
}

std::int32_t INTERSECT_LINE_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    return logical(gridforge::INTERSECT_LINE_8(x1, y1, x2, y2, x3, y3, x4, y4));
}

std::int32_t INTERSECT_LINE_V2(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4)
{
    return gridforge::INTERSECT_LINE_V2(x1, y1, x2, y2, x3, y3, x4, y4);
}

std::int32_t INTERSECT_LINE_V2_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    return gridforge::INTERSECT_LINE_V2_8(x1, y1, x2, y2, x3, y3, x4, y4);
}

std::int32_t INTERSECTION_POINT(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4,
                                float* xi, float* yi)
{
    return logical(gridforge::INTERSECTION_POINT(x1, y1, x2, y2, x3, y3, x4, y4, *xi, *yi));
}

std::int32_t INTERSECTION_POINT_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                                  double y4, double* xi, double* yi)
{
    return logical(gridforge::INTERSECTION_POINT_8(x1, y1, x2, y2, x3, y3, x4, y4, *xi, *yi));
}

float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4)
{
    return gridforge::exports::ANGLE2D(x1, y1, x2, y2, x3, y3, x4, y4);
}

float VECTOR_MAGNITUDE(float u, float v)
{
    return gridforge::exports::VECTOR_MAGNITUDE(u, v);
}

// --- Regions, triangles, elements ------------------------------------------------------------------------------------

std::int32_t INSIDE_POLYGON(float px, float py, const float* x, const float* y, std::int32_t np, float xmin,
                            const std::int32_t* ir, std::int32_t nr)
{
    return answer([&] {
        requireRings(np, ir, nr, 1);
        return logical(
            gridforge::INSIDE_POLYGON(px, py, array(x, np), array(y, np), held(np), xmin, array(ir, nr), held(nr)));
    });
}

std::int32_t INSIDE_POLYGON_8(double px, double py, const double* x, const double* y, std::int32_t np, double xmin,
                              const std::int32_t* ir, std::int32_t nr)
{
    return answer([&] {
        requireRings(np, ir, nr, 2);
        return logical(
            gridforge::INSIDE_POLYGON_8(px, py, array(x, np), array(y, np), held(np), xmin, array(ir, nr), held(nr)));
    });
}

std::int32_t INTERPOLATE_TRIANGLE(float px, float py, const float* x, const float* y, const float* z, float* zi)
{
    return logical(gridforge::exports::INTERPOLATE_TRIANGLE(px, py, corners(x), corners(y), corners(z), *zi));
}

std::int32_t INTERPOLATE_TRIANGLE_8(double px, double py, const double* x, const double* y, const float* z, float* zi)
{
    return logical(gridforge::exports::INTERPOLATE_TRIANGLE_8(px, py, corners(x), corners(y), corners(z), *zi));
}

void INTERPOLATE_TRIANGLE_NO_CHECKS(float px, float py, const float* x, const float* y, const float* z, float* zi)
{
    *zi = gridforge::exports::INTERPOLATE_TRIANGLE_NO_CHECKS(px, py, corners(x), corners(y), corners(z));
}

void INTERPOLATE_TRIANGLE_NO_CHECKS_8(double px, double py, const double* x, const double* y, const float* z, float* zi)
{
    *zi = gridforge::exports::INTERPOLATE_TRIANGLE_NO_CHECKS_8(px, py, corners(x), corners(y), corners(z));
}

std::int32_t INTERPOLATE_ELEMENT_8(double px, double py, const double* x, const double* y, const float* z,
                                   std::int32_t n, double xmin, float* zi)
{
    return answer([&] {
        return logical(
            gridforge::exports::INTERPOLATE_ELEMENT_8(px, py, array(x, n), array(y, n), array(z, n), xmin, *zi));
    });
}

float POLYGON_AREA(const double* x, const double* y, std::int32_t n)
{
    return gridforge::exports::POLYGON_AREA(array(x, n), array(y, n));
}

// --- Channel sections ------------------------------------------------------------------------------------------------

float CIRCLE_WIDTH(float r, float d)
{
    return gridforge::exports::CIRCLE_WIDTH(r, d);
}

void HYD_PARAM(float x1, float z1, float x2, float z2, float level, float factor, float* area, float* width,
               float* perimeter)
{
    put(gridforge::exports::HYD_PARAM(x1, z1, x2, z2, level, factor), area, width, perimeter);
}

void HYD_PARAM2(float x1, float z1, float factor1, float x2, float z2, float factor2, float level, float* area1,
                float* area2, float* width1, float* width2, float* perimeter1, float* perimeter2)
{
    const gridforge::exports::HydraulicHalves halves =
        gridforge::exports::HYD_PARAM2(x1, z1, factor1, x2, z2, factor2, level);
    put(halves.first, area1, width1, perimeter1);
    put(halves.second, area2, width2, perimeter2);
}

// --- Grid axes -------------------------------------------------------------------------------------------------------

void GEO_SHIFT(const double* x, const double* y, std::int32_t n, double x0, double y0, double angle, float* u, float* v)
{
    gridforge::exports::GEO_SHIFT(array(x, n), array(y, n), x0, y0, angle, array(u, n), array(v, n));
}

void SET_SUB_GRID_AREA(const float* u, const float* v, std::int32_t n, float size, std::int32_t rows,
                       std::int32_t columns, std::int32_t* iLow, std::int32_t* jLow, std::int32_t* iHigh,
                       std::int32_t* jHigh, float* umin, float* umax, float* vmin, float* vmax)
{
    const gridforge::exports::SubGridArea area =
        gridforge::exports::SET_SUB_GRID_AREA(array(u, n), array(v, n), size, rows, columns);
    *iLow = area.iLow;
    *jLow = area.jLow;
    *iHigh = area.iHigh;
    *jHigh = area.jHigh;
    *umin = area.umin;
    *umax = area.umax;
    *vmin = area.vmin;
    *vmax = area.vmax;
}

std::int64_t grid_inside_polygon(const float* u, const float* v, std::int32_t np, const std::int32_t* ir,
                                 std::int32_t nr, float size, std::int32_t firstRow, std::int32_t lastRow,
                                 std::int32_t firstColumn, std::int32_t lastColumn, std::uint8_t* flags)
{
    return answer([&] {
        const gridforge::CellWindow window{firstRow, lastRow, firstColumn, lastColumn};
        const auto count = gridforge::exports::grid_inside_polygon(array(u, np), array(v, np), held(np), array(ir, nr),
                                                                   held(nr), size, window, {flags, window.cells()});
        if (!count) {
            failRings("grid_inside_polygon", 1);
        }
        return *count;
    });
}

std::int32_t gridline(float u1, float v1, float u2, float v2, float size, std::int32_t limit, std::int32_t* rows,
                      std::int32_t* columns)
{
    return answer([&] {
        std::vector<gridforge::exports::LatticeCell> cells;
        requireGridline(gridforge::exports::gridline(u1, v1, u2, v2, size, limit, cells), limit);
        for (const gridforge::exports::LatticeCell& cell : cells) {
            *rows++ = cell.row;
            *columns++ = cell.column;
        }
        return static_cast<std::int32_t>(cells.size());
    });
}
}
