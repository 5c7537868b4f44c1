// What the name of a layer says about its family, for operations that make the names of outputs from those of inputs.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::gis {

inline constexpr std::string_view kMifExtension = ".mif";

// The name ends in the extension of a layer.
bool hasLayerExtension(std::string_view name);
bool hasMifExtension(std::string_view name);

// The name with its folder and without extension. The tail that names the family of shapes of a Shapefile, as in
// name_L.shp, is dropped too.
std::string layerStem(std::string_view name, std::string_view family);

} // namespace gridforge::gis
