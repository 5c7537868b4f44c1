// What the layers of the network builder are written with.
#pragma once

#include <string>

namespace gridforge::network {

// A number with three decimals, as records and tables hold it.
std::string threeDecimals(double value);

} // namespace gridforge::network
