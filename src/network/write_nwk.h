// The network lines as 1d_nwk layers.
#pragma once

#include "gis/projection.h"
#include "network/records.h"

#include <string>

namespace gridforge::network {

// All lines to one layer.
void nbc_write_nwk_single(const NbcLines& lines, const std::string& name, const gis::Projection& projection);

// The lines of each branch layer to a layer named after it, or all to the one of `outputName` where that is not blank.
// With `bendiness` they have their length, their ends' distance and the ratio of the two as well.
void nbc_write_nwk(NbcLines& lines, const NbcBranches& branches, const gis::Projection& projection, bool bendiness,
                   const std::string& outputName);

} // namespace gridforge::network
