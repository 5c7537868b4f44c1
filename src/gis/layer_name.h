// What the name of a layer says of its family. Operations that make names of outputs from those of inputs ask here.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::gis {

inline constexpr std::string_view kMifExtension = ".mif";

// The name ends in the extension of a layer.
bool hasLayerExtension(std::string_view name);
bool hasMifExtension(std::string_view name);

// The name with folder and without extension. The shapes of a Shapefile may bear the tail of their family, as name_L.shp:
// that goes too.
std::string layerStem(std::string_view name, std::string_view family);

} // namespace gridforge::gis
