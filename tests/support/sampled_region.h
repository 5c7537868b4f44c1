// Regions as the operations on cells take them.
#pragma once

#include "gis/layer_object.h"
#include "run/inside_runs.h"

#include <cstddef>
#include <vector>

namespace gridforge::test {

// A region of one ring, which the reader of layers closes by its first two vertices.
inline run::SampledRegion regionOf(const std::vector<double>& x, const std::vector<double>& y)
{
    gis::Coordinates read;
    for (std::size_t i = 0; i < x.size() + 2; ++i) {
        read.reserve(++read.np);
        read.x[i] = x[i % x.size()];
        read.y[i] = y[i % y.size()];
    }
    return run::sampledRegion(read);
}

} // namespace gridforge::test
