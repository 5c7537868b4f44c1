#include "run/sampled_region.h"

namespace gridforge::run {

SampledRegion sampledRegion(const gis::Coordinates& read, double farthest)
{
    SampledRegion region;
    region.x.assign(read.vertexX().begin(), read.vertexX().end());
    region.y.assign(read.vertexY().begin(), read.vertexY().end());
    region.box = boxAround(region.x, region.y, farthest);
    return region;
}

} // namespace gridforge::run
