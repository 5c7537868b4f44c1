// Boxes along the axes, and those around vertices.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

namespace gridforge::inline plane {

inline constexpr double kBoundless = std::numeric_limits<double>::infinity();

struct Box {
    double xmin = 0;
    double ymin = 0;
    double xmax = 0;
    double ymax = 0;
};

// Empty: its lower bounds are `farthest`, its upper ones the opposite, until it grows around vertices within `farthest` of 0.
constexpr Box emptyBox(double farthest = kBoundless)
{
    return {farthest, farthest, -farthest, -farthest};
}

// Grows the box to hold another one. Not-a-number does not count.
inline void takeIn(const Box& item, Box& box)
{
    // With the box's value first, a comparison with not-a-number keeps it.
    box.xmin = std::min(box.xmin, item.xmin);
    box.ymin = std::min(box.ymin, item.ymin);
    box.xmax = std::max(box.xmax, item.xmax);
    box.ymax = std::max(box.ymax, item.ymax);
}

inline void takeIn(double x, double y, Box& box)
{
    takeIn({x, y, x, y}, box);
}

// The box around the vertices, in which not-a-number does not count.
inline Box boxAround(std::span<const double> x, std::span<const double> y, double farthest = kBoundless)
{
    Box box = emptyBox(farthest);
    for (std::size_t i = 0; i < x.size(); ++i) {
        takeIn(x[i], y[i], box);
    }
    return box;
}

// The same, except that without vertices it is all 0, and not-a-number counts where it stands.
inline Box extentOfRing(std::span<const double> x, std::span<const double> y)
{
    if (x.empty()) {
        return {};
    }
    const auto [west, east] = std::ranges::minmax_element(x);
    const auto [south, north] = std::ranges::minmax_element(y);
    return {*west, *south, *east, *north};
}

} // namespace gridforge::inline plane
