// The buildings of the sample catchment: houses and shops where people build too near to a river.
#pragma once

#include "grid_files.h"
#include "terrain.h"

#include <cstdint>
#include <string>

namespace catchment {

// Writes <base>.mif and <base>.mid: points and polygons with Prop_Type, Prop_ID, FFL and Multiplier, on dry ground by a
// frequent flood and at most a metre above a rare one. None stands nearer to the edge than four cells. False where
// anything could not be written.
bool writeBuildings(const std::string& base, const Place& place, const Field& ground, const Field& frequent,
                    const Field& rare, std::uint64_t seed);

} // namespace catchment
