// A region prepared for many points, in rows of cells or one by one. The results are those of INSIDE_POLYGON_8 to the
// bit; a row costs only the edges that it meets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::inline plane {

struct RegionEdge {
    double x1 = 0;
    double y1 = 0;
    double x2 = 0;
    double y2 = 0;
    double yAhead = 0; // the y of the nearest vertex before vertex 1 that is not at y1
};

// Made by prepareRegion. Reuse it for the next region: it keeps its memory.
struct PreparedRegion {
    std::vector<RegionEdge> edges; // all except horizontal ones, sorted by lower y
    std::vector<double> highestY;  // [i]: of the part of `edges` whose middle is i
    std::vector<double> levels;    // the y of all edge ends, ascending
    double rayStart = 0;
    bool ordinary = false; // no product of the coordinates overflows single precision
};

// Takes the region in the layout of INSIDE_POLYGON_8, in time n log n of its vertices. False if its rings end before
// its vertices; the vertices after the last ring are ignored.
[[nodiscard]] bool prepareRegion(std::span<const double> x, std::span<const double> y, std::int32_t np, double xmin,
                                 std::span<const std::int32_t> ir, std::int32_t nr, PreparedRegion& region);

// A region of a single ring: its vertices, the closing one and a repetition of the second.
void prepareRing(std::span<const double> x, std::span<const double> y, double xmin, PreparedRegion& region);

// INSIDE_POLYGON_8 for one point.
bool insideRegion(const PreparedRegion& region, double px, double py);

// Places of a row: `from` and those after it, up to `to`, which is excluded.
struct RowRun {
    std::size_t from = 0;
    std::size_t to = 0;

    std::size_t size() const { return to - from; }
};

// INSIDE_POLYGON_8 for the points of a row at py: `runs` becomes the runs of the places inside, ascending, with gaps
// between them. The px must not decrease. The time depends on the edges and runs of the row, not on its places.
void insideRegionRuns(const PreparedRegion& region, double py, std::span<const double> px, std::vector<RowRun>& runs);

// The same by flags: inside[i] becomes 1 or 0 for px[i]. The spans are of one length.
void insideRegionRow(const PreparedRegion& region, double py, std::span<const double> px,
                     std::span<std::uint8_t> inside);

} // namespace gridforge::inline plane
