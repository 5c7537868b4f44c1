// A silent look at the points of a layer before its story is told.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace gridforge::gis {

struct PointPlace {
    double x = 0;
    double y = 0;
};

// Where the points of a layer lie, in their order. None where the layer is no plain file, a read is refused, or
// anything is not as in layers of points; reading the layer then says what. Records are not looked at, so a layer may
// end sooner.
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);

namespace mif {
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);
}
namespace shp {
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);
}

} // namespace gridforge::gis
