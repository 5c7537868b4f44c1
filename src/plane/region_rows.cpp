#include "plane/region_rows.h"

#include "plane/geometry.h"
#include "plane/region_walk.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <limits>

// Why a row can be tested as a whole: for one edge and one y, INTERSECT_LINE_8 compares with 0 a product that it makes of
// px by a subtraction, roundings and products with constants. Each of these keeps the order of the px, so along a row the
// edge counts from some place on, or up to some place, and a binary search with the very same expressions finds that place.
// Edges above or below the row count only where a product is too small for single precision; those places are tested point
// by point.

namespace gridforge::inline plane {

namespace {

// Coordinates up to this size keep every sum of products within single precision.
constexpr double kOrdinary = 1e15;
// From this size on a product has a square that single precision can hold.
constexpr double kSafeProduct = 1e-20;

bool isOrdinary(double coordinate)
{
    return std::abs(coordinate) <= kOrdinary;
}

double lowerY(const RegionEdge& edge)
{
    return std::min(edge.y1, edge.y2);
}

// The edge counts for the point, by the steps of the plain routine.
bool counts(const RegionEdge& edge, double rayStart, double px, double py)
{
    if (edge.y2 == py) {
        return false;
    }
    if (edge.y1 == py && edge.x1 <= px) {
        return (edge.yAhead - py) * (edge.y2 - py) < 0;
    }
    return INTERSECT_LINE_8(rayStart, py, px, py, edge.x1, edge.y1, edge.x2, edge.y2);
}

bool insideByAllEdges(const PreparedRegion& region, double px, double py)
{
    bool odd = false;
    for (const RegionEdge& edge : region.edges) {
        odd ^= counts(edge, region.rayStart, px, py);
    }
    return odd;
}

void takeRing(std::span<const double> x, std::span<const double> y, std::size_t second, std::size_t end,
              PreparedRegion& region)
{
    double yAhead = yAheadOfSecond(y, second, end);
    for (std::size_t i = second; i <= end; ++i) {
        if (i > second && y[i - 2] != y[i - 1]) {
            yAhead = y[i - 2];
        }
        if (y[i - 1] != y[i]) {
            region.edges.push_back({x[i - 1], y[i - 1], x[i], y[i], yAhead});
        }
    }
}

// Fills highestY for edges from..to-1; the entry of a part is at its middle.
double fillHighest(PreparedRegion& region, std::size_t from, std::size_t to)
{
    if (from == to) {
        return -std::numeric_limits<double>::infinity();
    }
    const std::size_t middle = from + (to - from) / 2;
    const RegionEdge& edge = region.edges[middle];
    const double highest =
        std::max({std::max(edge.y1, edge.y2), fillHighest(region, from, middle), fillHighest(region, middle + 1, to)});
    region.highestY[middle] = highest;
    return highest;
}

// Calls `take` for each edge among from..to-1 that reaches py.
template <typename Take>
void forEdgesAt(const PreparedRegion& region, double py, std::size_t from, std::size_t to, const Take& take)
{
    while (from < to) {
        const std::size_t middle = from + (to - from) / 2;
        if (region.highestY[middle] < py) {
            return;
        }
        forEdgesAt(region, py, from, middle, take);
        const RegionEdge& edge = region.edges[middle];
        if (lowerY(edge) > py) {
            return;
        }
        if (std::max(edge.y1, edge.y2) >= py) {
            take(edge);
        }
        from = middle + 1;
    }
}

// The distance from py to the nearest level that is not py itself.
double nearestLevel(const PreparedRegion& region, double py)
{
    double distance = std::numeric_limits<double>::infinity();
    const auto [from, to] = std::equal_range(region.levels.begin(), region.levels.end(), py);
    if (from != region.levels.begin()) {
        distance = py - *std::prev(from);
    }
    if (to != region.levels.end()) {
        distance = std::min(distance, *to - py);
    }
    return distance;
}

// In the test of edges above and below the row the part of px is large enough to settle the sign.
bool isSafe(double rayStart, double px, double nearest)
{
    return std::abs(double{static_cast<float>(px - rayStart)}) * nearest >= kSafeProduct;
}

// The test of INTERSECT_LINE_8 whether both ends of the ray lie on one side of the edge: all of it that is the same for a
// row is computed once.
class EdgeOnRow {
public:
    EdgeOnRow(const RegionEdge& edge, double rayStart, double py)
        : x2_(edge.x2), dy_(static_cast<float>(edge.y2 - edge.y1))
    {
        const auto dx = static_cast<float>(edge.x2 - edge.x1);
        atStart_ = dx * static_cast<float>(py - edge.y1) - dy_ * static_cast<float>(rayStart - edge.x1);
        ofRow_ = dx * static_cast<float>(py - edge.y2);
    }

    bool meets(double px) const { return atStart_ * (ofRow_ - dy_ * static_cast<float>(px - x2_)) <= 0; }

private:
    double x2_;
    float dy_;
    float atStart_;
    float ofRow_;
};

// Places of a row where the number of crossings changes between even and odd, as flags of the row.
class Turns {
public:
    explicit Turns(std::span<std::uint8_t> row) : row_(row) { std::fill(row.begin(), row.end(), std::uint8_t{0}); }

    void add(std::size_t from, std::size_t to)
    {
        if (from < to) {
            turn(from);
            turn(to);
        }
    }

    // Turns into flags.
    void resolve()
    {
        if (!any_) {
            return;
        }
        std::uint8_t odd = 0;
        for (std::uint8_t& place : row_) {
            odd ^= place;
            place = odd;
        }
    }

private:
    void turn(std::size_t place)
    {
        if (place < row_.size()) {
            row_[place] ^= 1U;
            any_ = true;
        }
    }

    std::span<std::uint8_t> row_;
    bool any_ = false;
};

// The same as a list, kept in the `from` of the runs that it becomes.
class TurnList {
public:
    explicit TurnList(std::vector<RowRun>& runs) : runs_(runs) { runs.clear(); }

    void add(std::size_t from, std::size_t to)
    {
        if (from < to) {
            runs_.push_back({from, 0});
            runs_.push_back({to, 0});
        }
    }

    // Turns into runs: two turns at one place cancel, and the rest are pairs.
    void resolve()
    {
        std::sort(runs_.begin(), runs_.end(), [](const RowRun& a, const RowRun& b) { return a.from < b.from; });
        std::size_t runs = 0;
        bool open = false;
        for (const RowRun turn : runs_) {
            const std::size_t place = turn.from;
            if (open) {
                runs_[runs].to = place;
                runs += runs_[runs].size() > 0 ? 1 : 0;
            } else if (runs > 0 && runs_[runs - 1].to == place) {
                --runs; // goes on where the last run ended
            } else {
                runs_[runs].from = place;
            }
            open = !open;
        }
        runs_.resize(runs);
    }

private:
    std::vector<RowRun>& runs_;
};

// Adds the places among the first `count` that the edge counts for.
template <typename Turning>
void addMeeting(const EdgeOnRow& edge, std::span<const double> px, std::size_t count, Turning& turns)
{
    if (count == 0) {
        return;
    }
    const bool first = edge.meets(px[0]);
    const bool last = edge.meets(px[count - 1]);
    if (first == last) {
        turns.add(0, first ? count : 0);
        return;
    }
    const auto found = std::partition_point(px.begin(), px.begin() + static_cast<std::ptrdiff_t>(count),
                                            [&edge, first](double x) { return edge.meets(x) == first; });
    const auto place = static_cast<std::size_t>(found - px.begin());
    first ? turns.add(0, place) : turns.add(place, count);
}

template <typename Turning>
void addEdge(const RegionEdge& edge, double rayStart, double py, std::span<const double> px, Turning& turns)
{
    if (edge.y2 == py) {
        return;
    }
    const EdgeOnRow onRow(edge, rayStart, py);
    if (edge.y1 != py) {
        addMeeting(onRow, px, px.size(), turns);
        return;
    }
    const auto afterVertex = static_cast<std::size_t>(std::lower_bound(px.begin(), px.end(), edge.x1) - px.begin());
    if ((edge.yAhead - py) * (edge.y2 - py) < 0) {
        turns.add(afterVertex, px.size());
    }
    addMeeting(onRow, px, afterVertex, turns);
}

// No place of the row needs a test of its own: the row begins far enough after the start of the ray.
bool isSafeRow(const PreparedRegion& region, double py, std::span<const double> px)
{
    return px.front() > region.rayStart && isSafe(region.rayStart, px.front(), nearestLevel(region, py));
}

// The row can be settled by its edges. All other rows are tested point by point.
bool isOrdinaryRow(const PreparedRegion& region, double py, std::span<const double> px)
{
    return region.ordinary && isOrdinary(py) && isOrdinary(px.front()) && isOrdinary(px.back());
}

void runsOfFlags(std::span<const std::uint8_t> inside, std::vector<RowRun>& runs)
{
    runs.clear();
    for (std::size_t i = 0; i < inside.size(); ++i) {
        if (inside[i] == 0) {
            continue;
        }
        if (runs.empty() || runs.back().to != i) {
            runs.push_back({i, i});
        }
        runs.back().to = i + 1;
    }
}

// Tests the places around the start of the ray where isSafe does not hold, point by point.
void mendUnsafe(const PreparedRegion& region, double py, std::span<const double> px, double nearest,
                std::span<std::uint8_t> inside)
{
    const auto from = std::partition_point(
        px.begin(), px.end(), [&](double x) { return x < region.rayStart && isSafe(region.rayStart, x, nearest); });
    for (auto i = static_cast<std::size_t>(from - px.begin());
         i < px.size() && !isSafe(region.rayStart, px[i], nearest); ++i) {
        inside[i] = insideByAllEdges(region, px[i], py) ? 1 : 0;
    }
}

} // namespace

bool prepareRegion(std::span<const double> x, std::span<const double> y, std::int32_t np, double xmin,
                   std::span<const std::int32_t> ir, std::int32_t nr, PreparedRegion& region)
{
    region.edges.clear();
    region.levels.clear();
    region.rayStart = xmin - 10.0;
    const bool whole =
        walkRings(np, ir, nr, [&](std::size_t second, std::size_t end) { takeRing(x, y, second, end, region); });

    region.ordinary =
        isOrdinary(region.rayStart) &&
        std::all_of(region.edges.begin(), region.edges.end(), [](const RegionEdge& edge) {
            return isOrdinary(edge.x1) && isOrdinary(edge.y1) && isOrdinary(edge.x2) && isOrdinary(edge.y2);
        });
    if (!region.ordinary) {
        return whole; // among others NaN, which has no order
    }
    std::sort(region.edges.begin(), region.edges.end(),
              [](const RegionEdge& a, const RegionEdge& b) { return lowerY(a) < lowerY(b); });
    region.highestY.resize(region.edges.size());
    fillHighest(region, 0, region.edges.size());
    for (const RegionEdge& edge : region.edges) {
        region.levels.push_back(edge.y1);
        region.levels.push_back(edge.y2);
    }
    std::sort(region.levels.begin(), region.levels.end());
    region.levels.erase(std::unique(region.levels.begin(), region.levels.end()), region.levels.end());
    return whole;
}

void prepareRing(std::span<const double> x, std::span<const double> y, double xmin, PreparedRegion& region)
{
    const auto np = static_cast<std::int32_t>(x.size());
    const std::array<std::int32_t, 1> ir = {np - 1};
    [[maybe_unused]] const bool whole = prepareRegion(x, y, np, xmin, ir, 1, region);
    assert(whole);
}

bool insideRegion(const PreparedRegion& region, double px, double py)
{
    if (!region.ordinary || !isOrdinary(px) || !isOrdinary(py) ||
        !isSafe(region.rayStart, px, nearestLevel(region, py))) {
        return insideByAllEdges(region, px, py);
    }
    bool odd = false;
    forEdgesAt(region, py, 0, region.edges.size(),
               [&](const RegionEdge& edge) { odd ^= counts(edge, region.rayStart, px, py); });
    return odd;
}

void insideRegionRow(const PreparedRegion& region, double py, std::span<const double> px,
                     std::span<std::uint8_t> inside)
{
    assert(inside.size() == px.size() && std::is_sorted(px.begin(), px.end()));
    if (px.empty()) {
        return;
    }
    if (!isOrdinaryRow(region, py, px)) {
        std::transform(px.begin(), px.end(), inside.begin(),
                       [&](double x) -> std::uint8_t { return insideByAllEdges(region, x, py) ? 1 : 0; });
        return;
    }
    Turns turns(inside);
    forEdgesAt(region, py, 0, region.edges.size(),
               [&](const RegionEdge& edge) { addEdge(edge, region.rayStart, py, px, turns); });
    turns.resolve();
    mendUnsafe(region, py, px, nearestLevel(region, py), inside);
}

void insideRegionRuns(const PreparedRegion& region, double py, std::span<const double> px, std::vector<RowRun>& runs)
{
    assert(std::is_sorted(px.begin(), px.end()));
    runs.clear();
    if (px.empty()) {
        return;
    }
    if (!isOrdinaryRow(region, py, px) || !isSafeRow(region, py, px)) {
        std::vector<std::uint8_t> inside(px.size());
        insideRegionRow(region, py, px, inside);
        runsOfFlags(inside, runs);
        return;
    }
    TurnList turns(runs);
    forEdgesAt(region, py, 0, region.edges.size(),
               [&](const RegionEdge& edge) { addEdge(edge, region.rayStart, py, px, turns); });
    turns.resolve();
}

} // namespace gridforge::inline plane
