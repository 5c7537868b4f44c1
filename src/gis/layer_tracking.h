// The list of the input layers of a run. Only its limit shows: a warning for each new layer from number 1000 on.
#pragma once

#include <string_view>

namespace gridforge::gis {

// Takes a layer into the list when it is new there.
void trackLayer(std::string_view fileName);
// Empties the list.
void forgetTrackedLayers();

} // namespace gridforge::gis
