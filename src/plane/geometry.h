// Points, segments and regions in the plane. Routines with _8 take double coordinates, yet distances and sides drop to
// single partway, on purpose: results of operations rely on these roundings. Nothing here allocates or reports.
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

// --- Points and segments ---------------------------------------------------------------------------------------------

// 0 if both differences are below 1e-6. The double form rounds the differences to single, not the coordinates.
float DISTANCE(float x1, float y1, float x2, float y2);
float DISTANCE_8(double x1, double y1, double x2, double y2);

// Above 0 if a and b lie on the same side of the line through points 1 and 2, below 0 if on opposite sides, 0 if either
// lies on the line.
float SAME_SIDE(float x1, float y1, float x2, float y2, float ax, float ay, float bx, float by);
float SAME_SIDE_8(double x1, double y1, double x2, double y2, double ax, double ay, double bx, double by);

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

// --- Regions ---------------------------------------------------------------------------------------------------------

// The point lies inside the region: an odd number of edges crosses the ray from (xmin - 10, py) to it. The region has
// `np` vertices in `nr` rings; ring k ends at vertex ir[k-1] (counted from 1), its closing vertex, and the slot after
// that repeats the ring's second vertex and belongs to np. `xmin` is the least x of the vertices, or less. Vertices after
// the last ring are ignored. A ring that starts with a run of vertices at py is judged by the vertex before that run.
bool INSIDE_POLYGON(float px, float py, std::span<const float> x, std::span<const float> y, std::int32_t np, float xmin,
                    std::span<const std::int32_t> ir, std::int32_t nr);
bool INSIDE_POLYGON_8(double px, double py, std::span<const double> x, std::span<const double> y, std::int32_t np,
                      double xmin, std::span<const std::int32_t> ir, std::int32_t nr);

} // namespace gridforge::inline plane
