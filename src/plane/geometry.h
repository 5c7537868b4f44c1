// Points, segments, triangles, regions and channel sections in the plane. Routines with _8 take double coordinates, yet
// distances and sides drop to single partway: results of operations rest on these roundings, so they stay as they are.
// Nothing here allocates or reports, but for a region whose rings end before its vertices do.
#pragma once

#include <cstdint>
#include <span>

namespace gridforge::inline plane {

// --- Angles in degrees -----------------------------------------------------------------------------------------------

// Exact at multiples of 90.
double sind(double degrees);
double cosd(double degrees);
// The direction of (x, y), from -180 to 180; exact along the axes, 0 for the origin.
double atan2d(double y, double x);

// The angle between two segments, 0 to 180. 0 where either spans less than 1e-6 in x, so also for upright ones.
float ANGLE2D(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);

// --- Points and segments ---------------------------------------------------------------------------------------------

// 0 when both differences are below 1e-6. The double form rounds the differences to single, not the coordinates.
float DISTANCE(float x1, float y1, float x2, float y2);
float DISTANCE_8(double x1, double y1, double x2, double y2);

// Both differences are below the tolerance, strictly.
bool SAME_POINT(float x1, float y1, float x2, float y2, float tolerance);
bool SAME_POINT_8(double x1, double y1, double x2, double y2, double tolerance);

// Above 0 when a and b lie on the same side of the line through points 1 and 2, below 0 when on opposite ones, 0 when
// either lies on it.
float SAME_SIDE(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by);
float SAME_SIDE_8(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by);

// p lies on the line through points 1 and 2.
bool INTERSECT_POINT(float x1, float y1, float x2, float y2, float px, float py);

// Segments 1-2 and 3-4 meet; touching counts.
bool INTERSECT_LINE(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
bool INTERSECT_LINE_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4);

// Where the lines through 1-2 and 3-4 cross: 3 in both segments, 1 in the first only, 2 in the second only, 4 in
// neither; 0 for parallel and -1 for equal lines. The start of a segment is outside of it, its end inside.
std::int32_t INTERSECT_LINE_V2(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4);
std::int32_t INTERSECT_LINE_V2_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                                 double y4);

// The point where the infinite lines through 1-2 and 3-4 cross. False, with the point left alone, for equal slopes.
bool INTERSECTION_POINT(float x1, float y1, float x2, float y2, float x3, float y3, float x4, float y4, float& xi,
                        float& yi);
bool INTERSECTION_POINT_8(double x1, double y1, double x2, double y2, double x3, double y3, double x4, double y4,
                          double& xi, double& yi);

// The length of (u, v); 0 when neither exceeds 1e-6.
float VECTOR_MAGNITUDE(float u, float v);

// --- Regions ---------------------------------------------------------------------------------------------------------

// The point lies inside the region: an odd number of edges crosses the ray from (xmin - 10, py) to it. The region has
// `np` vertices in `nr` rings; ring k ends at vertex ir[k-1] (counted from 1), its closing vertex, and the slot behind
// that repeats the ring's second vertex and belongs to np. `xmin` is the least x of the vertices, or less. Vertices after
// the last ring do not count; isWholeRegion reports them. A ring that starts with a run of vertices at py is judged from
// the vertex in front of that run.
bool INSIDE_POLYGON(float px, float py, std::span<const float> x, std::span<const float> y, std::int32_t np, float xmin,
                    std::span<const std::int32_t> ir, std::int32_t nr);
bool INSIDE_POLYGON_8(double px, double py, std::span<const double> x, std::span<const double> y, std::int32_t np,
                      double xmin, std::span<const std::int32_t> ir, std::int32_t nr);

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
// The same with no test for a parallel ray, which divides by 0. The two forms round in different orders; deliberate.
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

} // namespace gridforge::inline plane
