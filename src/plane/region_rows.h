// A region made ready for many points: rows of cells, or points one by one, are tested with the bits of
// INSIDE_POLYGON_8, at the price of the edges that a row meets.
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
    double yAhead = 0; // of the nearest vertex before vertex 1 that is not at y1
};

// What prepareRegion makes. May be used for one region after another: its memory stays.
struct PreparedRegion {
    std::vector<RegionEdge> edges; // all except horizontal ones, sorted by lower y
    std::vector<double> highestY;  // over the part of `edges` that a place is the middle of
    std::vector<double> levels;    // the y of all edge ends, rising
    double rayStart = 0;
    bool ordinary = false; // the coordinates leave room for all products in single precision
};

// Takes the region as INSIDE_POLYGON_8 does. Costs n log n of its vertices. False when its rings end before its vertices:
// the vertices after the last ring do not count.
[[nodiscard]] bool prepareRegion(std::span<const double> x, std::span<const double> y, std::int32_t np, double xmin,
                                 std::span<const std::int32_t> ir, std::int32_t nr, PreparedRegion& region);

// A region of a single ring: its vertices, the closing one and a repetition of the second.
void prepareRing(std::span<const double> x, std::span<const double> y, double xmin, PreparedRegion& region);

// INSIDE_POLYGON_8 for one point.
bool insideRegion(const PreparedRegion& region, double px, double py);

// Places of a row from `from` to before `to`.
struct RowRun {
    std::size_t from = 0;
    std::size_t to = 0;

    std::size_t size() const { return to - from; }
};

// INSIDE_POLYGON_8 for the points of a row at py: `runs` becomes the runs of the places inside, rising and apart from each
// other. The px must not fall. Costs the edges and runs of the row, not its places.
void insideRegionRuns(const PreparedRegion& region, double py, std::span<const double> px, std::vector<RowRun>& runs);

// The same by flags: inside[i] becomes 1 or 0 for px[i]. The spans are of one length.
void insideRegionRow(const PreparedRegion& region, double py, std::span<const double> px,
                     std::span<std::uint8_t> inside);

} // namespace gridforge::inline plane
