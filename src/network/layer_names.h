// Names of the output layers from those of the input layers.
#pragma once

#include <string>
#include <string_view>

namespace gridforge::network {

// "1d_nwk" in place of the "1d_branches" or "1d_br" that the layer's name begins with, or before the name without its
// extension. In the folder of the layer.
std::string nwkLayerName(std::string_view branchLayer);
// The same with "1d_xs" in place of "1d_xs", "1d_tab" or "1d_cut".
std::string xsLayerName(std::string_view sectionLayer);

} // namespace gridforge::network
