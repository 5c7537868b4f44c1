// Buildings with their damages, as a layer and as a table.
#pragma once

#include "damages/records.h"

#include <span>
#include <string>

namespace gridforge {

// Writes the layer, points and regions, and the table; a building's record and its row are the same text. The damages of
// each building follow `results`. The projection is that of the first building layer.
void dmg_write_gis(const std::string& gisName, const std::string& csvName, std::span<const DmgBuilding> buildings,
                   std::span<const DmgRes> results, std::span<const DmgCurve> curves);

} // namespace gridforge
