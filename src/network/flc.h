// Form losses of regions for the network lines that start in them.
#pragma once

#include "network/records.h"

#include <string>

namespace gridforge::network {

// Adds the value of each region of the layer to the lines that start inside it: above 0 shared out over them, below 0 in
// full to each. A region without a value ends the run.
void nbc_read_flc(const std::string& fileName, NbcLines& lines);

} // namespace gridforge::network
