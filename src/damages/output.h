// Buildings with their damages, as a layer and as a table.
#pragma once

#include "damages/records.h"
#include "gis/projection.h"

#include <span>
#include <string>

namespace gridforge::damages {

struct DamageNames {
    std::string gis;
    std::string csv;
};

// Writes the layer, points and regions, and the table; a building's record and its row are the same text. The damages of
// each building follow `results`.
void dmg_write_gis(const DamageNames& names, const gis::Projection& projection, std::span<const DmgBuilding> buildings,
                   std::span<const DmgRes> results, std::span<const DmgCurve> curves);

} // namespace gridforge::damages
