// The network lines as 1d_nwk layers.
#pragma once

#include "network/records.h"

#include <string>

namespace gridforge {

// All lines to one layer.
void nbc_write_nwk_single(const NbcLines& lines, const std::string& name);

// The lines of each branch layer to a layer named after it, or all to the one of `outputName`. With `bendiness` they have
// their length, their ends' distance and the ratio of the two as well.
void nbc_write_nwk(NbcLines& lines, const NbcBranches& branches, bool bendiness, bool outputGiven,
                   const std::string& outputName);

} // namespace gridforge
