// What the routines of the layer table share among themselves.
#pragma once

#include "gis/layers.h"

#include <cstdint>
#include <string_view>

namespace gridforge {

inline constexpr std::int32_t kLayerBareTable = -1; // a .csv, until it is opened
inline constexpr std::string_view kTabExtension = ".tab";

// The slot, or the end of the run with the routine's name for 0 and other handles that are none.
Layer& requireLayer(std::int32_t gisID, std::string_view routine);
// The lowest gisID that is free, 0 when there is none.
std::int32_t findFreeSlot();

} // namespace gridforge
