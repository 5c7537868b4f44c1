// Reading the regions of a layer for rainfall, which takes regions of one ring only.
#pragma once

#include "gis/records.h"

#include <functional>
#include <string>

namespace gridforge {

// Opens the layer and calls `work` with the coordinates and the data line of each region. Other objects are passed over
// with a warning, a region of several rings ends the run.
void forEachRing(const std::string& layerName,
                 const std::function<void(const GisCoordinates& read, const std::string& dataLine)>& work);

} // namespace gridforge
