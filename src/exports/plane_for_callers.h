// Routines in the plane that only outside callers use. As in plane/geometry.h, distances and sides drop to single
// partway in the routines of double coordinates, and callers rely on these roundings.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::exports {

// What is shorter has no direction.
inline constexpr float kNoLength = 1e-6F;

// --- Points and segments ---------------------------------------------------------------------------------------------

// The angle between two segments, 0 to 180. 0 where either spans less than 1e-6 in x, so also for upright ones.
float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);

// Both differences are below the tolerance, strictly.
bool SAME_POINT(float x1, float y1, float x2, float y2, float tolerance);
bool SAME_POINT_8(double x1, double y1, double x2, double y2, double tolerance);

// p lies on the line through points 1 and 2.
bool INTERSECT_POINT(float x1, float y1, float x2, float y2, float px, float py);

// The length of (u, v); 0 when neither exceeds 1e-6.
float VECTOR_MAGNITUDE(float u, float v);

// --- Regions ---------------------------------------------------------------------------------------------------------

// False when the rings end before the vertices.
bool isWholeRegion(std::int32_t np, std::span<const std::int32_t> ir, std::int32_t nr);

// The area of one ring, without repeated vertices or with its closing one.
float POLYGON_AREA(std::span<const double> x, std::span<const double> y);

// --- Triangles and elements ------------------------------------------------------------------------------------------

// The value at p by the ray from vertex 3 through p to edge 1-2; outside the triangle it is extrapolated. False, with
// -99999.0, when that ray is parallel to the edge.
bool INTERPOLATE_TRIANGLE(float px, float py, std::span<const float, 3> x, std::span<const float, 3> y,
                          std::span<const float, 3> z, float& zi);
bool INTERPOLATE_TRIANGLE_8(double px, double py, std::span<const double, 3> x, std::span<const double, 3> y,
                            std::span<const float, 3> z, float& zi);
// The same with no test for a parallel ray, which divides by 0. The two forms round in different orders, and callers rely on it.
float INTERPOLATE_TRIANGLE_NO_CHECKS(float px, float py, std::span<const float, 3> x, std::span<const float, 3> y,
                                     std::span<const float, 3> z);
float INTERPOLATE_TRIANGLE_NO_CHECKS_8(double px, double py, std::span<const double, 3> x, std::span<const double, 3> y,
                                       std::span<const float, 3> z);

// The value at p in an element of 3 or 4 vertices, of 4 as the mean over the triangles of three that hold p. False
// outside, where `zi` becomes -99999.0 for 4 vertices and stays for 3, and false with `zi` left alone for other counts.
bool INTERPOLATE_ELEMENT_8(double px, double py, std::span<const double> x, std::span<const double> y,
                           std::span<const float> z, double xmin, float& zi);

// --- Channel sections ------------------------------------------------------------------------------------------------

// The width of a circle of radius r at depth d above its lowest point; 0 within 1e-5 of bottom and top.
float CIRCLE_WIDTH(float r, float d);

struct HydraulicParameters {
    float area = 0;
    float width = 0;
    float perimeter = 0; // the wetted bed
};
// Of the wet part between (x1, z1) and (x2, z2) of a section's bed under a level; nothing when `factor` is not above 0.
HydraulicParameters HYD_PARAM(float x1, float z1, float x2, float z2, float level, float factor);

struct HydraulicHalves {
    HydraulicParameters first;
    HydraulicParameters second;
};
// HYD_PARAM of the two halves, each with its factor.
HydraulicHalves HYD_PARAM2(float x1, float z1, float factor1, float x2, float z2, float factor2, float level);

// --- Grid axes -------------------------------------------------------------------------------------------------------

// Points in the axes of a grid with its origin at (x0, y0), turned by `angle` radians. The spans are of one length.
void GEO_SHIFT(std::span<const double> x, std::span<const double> y, double x0, double y0, double angle,
               std::span<float> u, std::span<float> v);

// Cells from 1 and the bounds of a set of points. Column 0 or row 0 stands for points below the first one.
struct SubGridArea {
    std::int32_t iLow = 0; // rows
    std::int32_t jLow = 0; // columns
    std::int32_t iHigh = 0;
    std::int32_t jHigh = 0;
    float umin = 0;
    float umax = 0;
    float vmin = 0;
    float vmax = 0;
};
// The window of cells of `size` that holds points in grid axes, u along columns and v along rows; all 0 without points.
SubGridArea SET_SUB_GRID_AREA(std::span<const float> u, std::span<const float> v, float size, std::int32_t rows,
                              std::int32_t columns);

} // namespace gridforge::exports
