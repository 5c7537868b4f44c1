// Output of .mif files.
#pragma once

#include "gis/records.h"

#include <string_view>

namespace gridforge {

void mifWriteHeader(Unit unit, const GisOutputAttributes& attributes, std::string_view coordSysLine);
// `dataLine` is the text of a text object.
void mifWriteObject(const MifLayer& mif, const GisO& gisO, const GisOutputCoordinates& coordinates,
                    std::string_view dataLine);

} // namespace gridforge
