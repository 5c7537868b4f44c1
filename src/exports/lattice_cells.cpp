#include "exports/lattice_cells.h"

#include "core/rounding.h"
#include "plane/region_walk.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace gridforge::exports {

namespace {

std::int32_t cellNumber(double place, double size)
{
    constexpr std::int32_t kLast = INT32_MAX - 1;
    return std::min(floorToInt(place / size), kLast) + 1;
}

struct Point {
    double u;
    double v;
};

// The region's crossings with the middle lines of the rows, as flags of the cells where their number is odd.
struct CrossingFlags {
    double size;
    const CellWindow& window;
    std::span<std::uint8_t> flags;

    double middleOf(std::int64_t row) const { return (static_cast<double>(row) - 0.5) * size; }

    // A line through an end of the edge belongs to the edge above it.
    void add(const Point& a, const Point& b)
    {
        const double low = std::min(a.v, b.v);
        const double high = std::max(a.v, b.v);
        std::int64_t row = std::max(window.firstRow, cellNumber(low, size));
        if (middleOf(row) < low) {
            ++row;
        }
        for (; row <= window.lastRow && middleOf(row) < high; ++row) {
            const double u = a.u + (b.u - a.u) * ((middleOf(row) - a.v) / (b.v - a.v));
            const std::int32_t column = std::max(window.firstColumn, cellNumber(u, size));
            if (column <= window.lastColumn) {
                flags[place(row, column)] ^= 1U;
            }
        }
    }

    std::size_t place(std::int64_t row, std::int32_t column) const
    {
        return static_cast<std::size_t>(row - window.firstRow) * window.columns() +
               static_cast<std::size_t>(column - window.firstColumn);
    }
};

// Turns the crossings of a row into its cells: those after an odd number of crossings, and those that are crossed.
std::int64_t fillRow(std::span<std::uint8_t> flags)
{
    std::int64_t count = 0;
    bool inside = false;
    for (std::uint8_t& flag : flags) {
        const bool crossed = flag != 0;
        inside ^= crossed;
        flag = static_cast<std::uint8_t>(inside || crossed);
        count += flag;
    }
    return count;
}

} // namespace

LatticeCell latticeCell(float u, float v, float size)
{
    return {cellNumber(static_cast<double>(v), static_cast<double>(size)),
            cellNumber(static_cast<double>(u), static_cast<double>(size))};
}

std::optional<std::int64_t> grid_inside_polygon(std::span<const float> u, std::span<const float> v, std::int32_t np,
                                                std::span<const std::int32_t> ir, std::int32_t nr, float size,
                                                const CellWindow& window, std::span<std::uint8_t> flags)
{
    assert(flags.size() == window.cells());
    std::ranges::fill(flags, std::uint8_t{0});
    if (window.empty()) {
        return 0;
    }
    CrossingFlags crossings{static_cast<double>(size), window, flags};
    const auto point = [&](std::size_t vertex) { return Point{double{u[vertex - 1]}, double{v[vertex - 1]}}; };
    const bool complete = walkRings(np, ir, nr, [&](std::size_t second, std::size_t end) {
        for (std::size_t i = second; i <= end; ++i) {
            crossings.add(point(i - 1), point(i));
        }
    });
    if (!complete) {
        return std::nullopt;
    }
    std::int64_t count = 0;
    for (std::size_t start = 0; start < flags.size(); start += window.columns()) {
        count += fillRow(flags.subspan(start, window.columns()));
    }
    return count;
}

namespace {

// One axis of a walk along a segment.
struct WalkAxis {
    double from;
    double to;
    double size;
    std::int32_t cell;
    std::int32_t last;

    bool done() const { return cell == last; }
    // Where on the segment, from 0 to 1, the walk leaves its cell; past the end when it never does.
    double nextSide() const
    {
        constexpr double kNever = 2;
        if (done()) {
            return kNever;
        }
        const double side = static_cast<double>(last > cell ? cell : cell - 1) * size;
        return (side - from) / (to - from);
    }
    void step() { cell += last > cell ? 1 : -1; }
};

} // namespace

GridlineEnd gridline(float u1, float v1, float u2, float v2, float size, std::int32_t limit,
                     std::vector<LatticeCell>& cells)
{
    if (!std::isfinite(u1) || !std::isfinite(v1) || !std::isfinite(u2) || !std::isfinite(v2)) {
        return GridlineEnd::noPlace;
    }
    const LatticeCell start = latticeCell(u1, v1, size);
    const LatticeCell end = latticeCell(u2, v2, size);
    WalkAxis u{double{u1}, double{u2}, double{size}, start.column, end.column};
    WalkAxis v{double{v1}, double{v2}, double{size}, start.row, end.row};
    for (std::int32_t count = 1;; ++count) {
        if (count > limit) {
            return GridlineEnd::pastLimit;
        }
        cells.push_back({v.cell, u.cell});
        if (u.done() && v.done()) {
            return GridlineEnd::done;
        }
        const double uSide = u.nextSide();
        const double vSide = v.nextSide();
        if (uSide <= vSide) {
            u.step();
        }
        if (vSide <= uSide) {
            v.step();
        }
    }
}

} // namespace gridforge::exports
