// Reading the regions of a layer for rainfall, which takes regions of one ring only.
#pragma once

#include "gis/layer_object.h"

#include <functional>
#include <string>

namespace gridforge::rainfall {

// Opens the layer and calls `work` with the coordinates and the record of each region. Other objects are skipped
// with a warning; a region of several rings ends the run.
void forEachRing(const std::string& layerName,
                 const std::function<void(const gis::Coordinates& read, const std::string& record)>& work);

} // namespace gridforge::rainfall
