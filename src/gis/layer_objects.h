// The objects of a layer by their kind: checks, and the next one of a kind.
#pragma once

#include "gis/layer_object.h"
#include "gis/layer_reader.h"

namespace gridforge::gis {

// True for a region; one of several rings ends the run.
bool isRegionObject(const LayerObject& object);

// The next line or polyline with its coordinates, and the next region; null at the end of the layer. Other objects are
// skipped; a polyline of several parts, or a region of several rings, ends the run.
LayerObject* nextLine(LayerReader& layer, Coordinates& read);
LayerObject* nextRegion(LayerReader& layer, Coordinates& read);

} // namespace gridforge::gis
