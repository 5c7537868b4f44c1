// Regions as the operations on cells take them.
#pragma once

#include "gis/layer_object.h"
#include "run/sampled_region.h"

#include <cstddef>
#include <vector>

namespace gridforge::test {

// A ring of open vertices as a reader of layers gives it: closed by its first two.
inline gis::Coordinates ringOf(const std::vector<double>& x, const std::vector<double>& y)
{
    gis::Coordinates read;
    for (std::size_t i = 0; i < x.size() + 2; ++i) {
        read.reserve(++read.np);
        read.x[i] = x[i % x.size()];
        read.y[i] = y[i % y.size()];
    }
    return read;
}

inline SampledRegion regionOf(const std::vector<double>& x, const std::vector<double>& y)
{
    return run::sampledRegion(ringOf(x, y));
}

} // namespace gridforge::test
