#include "sampling/search_polygon.h"

#include "core/computed.h"
#include "plane/geometry.h"

#include <algorithm>

namespace gridforge::sampling {

namespace {

struct Spoke {
    float x;
    float y;
};

// Single precision, as are the angles.
const std::array<Spoke, kSearchSides>& spokes()
{
    static const auto kSpokes = [] {
        std::array<Spoke, kSearchSides> made{};
        for (std::size_t k = 0; k < kSearchSides; ++k) {
            const float angle = (static_cast<float>(k) / 12.0F) * 360.0F;
            made[k] = {static_cast<float>(cosd(static_cast<double>(angle))),
                       static_cast<float>(sind(static_cast<double>(angle)))};
        }
        return made;
    }();
    return kSpokes;
}

} // namespace

SearchPolygon searchPolygon(double x, double y, float diameter)
{
    SearchPolygon polygon;
    const float radius = 0.5F * diameter;
    for (std::size_t k = 0; k < kSearchSides; ++k) {
        // Offsets are single precision too: only their sum with the point is not.
        const float offsetX = radius * spokes()[k].x;
        const float offsetY = radius * spokes()[k].y;
        polygon.x[k] = stored(x + static_cast<double>(offsetX));
        polygon.y[k] = stored(y + static_cast<double>(offsetY));
    }
    for (std::size_t k = 0; k < 2; ++k) {
        polygon.x[kSearchSides + k] = polygon.x[k];
        polygon.y[kSearchSides + k] = polygon.y[k];
    }
    polygon.xmin = *std::ranges::min_element(polygon.x);
    return polygon;
}

void prepareWalk(const SearchPolygon& polygon, InsideWalk& walk)
{
    prepareRing(polygon.x, polygon.y, polygon.xmin, walk.region);
}

bool insideSearchPolygon(const SearchPolygon& polygon, double px, double py)
{
    static constexpr std::array<std::int32_t, 1> kRingEnd = {kSearchSides + 1};
    return INSIDE_POLYGON_8(px, py, polygon.x, polygon.y, kSearchSides + 2, polygon.xmin, kRingEnd, 1);
}

} // namespace gridforge::sampling
