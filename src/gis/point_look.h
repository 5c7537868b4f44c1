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

// Where the points of a layer lie, in their order. Nothing if the layer is not a plain file, a read is refused, or anything is
// unlike a layer of points; the run then reports it when it reads the layer. Records are not looked at, so the run may find
// fewer points.
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);

namespace mif {
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);
}
namespace shp {
std::optional<std::vector<PointPlace>> lookAtPoints(std::string_view fileName);
}

} // namespace gridforge::gis
