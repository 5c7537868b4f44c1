// The projection texts that a run takes from the first layer it reads.
#pragma once

#include <string>
#include <string_view>

namespace gridforge {

// Takes the PROJCS line of the .prj beside a .shp into `shpProjection`, or the CoordSys line of a .mif into
// `mifProjection`; the other stays. A layer without its line ends the run.
void get_projection(std::string_view gisFile, std::string& mifProjection, std::string& shpProjection);

} // namespace gridforge
