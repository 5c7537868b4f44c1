// Buildings out of layers.
#pragma once

#include "damages/records.h"

#include <span>
#include <string>
#include <vector>

namespace gridforge::damages {

// Appends the points and regions of a layer; other objects get a warning and are skipped. Regions of several rings,
// more vertices or buildings than the limits allow, records that cannot be read and curves that are not there end the
// run. The damages of the buildings stay empty.
void dmg_read_buildings(const std::string& layerName, const DmgLimits& limits, std::span<const DmgCurve> curves,
                        std::vector<DmgBuilding>& buildings);

} // namespace gridforge::damages
