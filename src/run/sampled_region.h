// Regions of a layer, as the walk over their cells takes them.
#pragma once

#include "gis/layer_object.h"
#include "plane/box.h"
#include "plane/inside_runs.h"

namespace gridforge::run {

// The region as read. Its bounds are sought from `farthest` down and from its negative up, and stay there for a polygon
// of a Shapefile that has no vertices at all.
SampledRegion sampledRegion(const gis::Coordinates& read, double farthest = kBoundless);

} // namespace gridforge::run
