#include "gis/layer_objects.h"

#include "base/ends.h"

namespace gridforge {

bool isLineObject(const GisO& gisO)
{
    if (gisO.plineMultiple) {
        fail("ERROR - Combined polylines not yet supported.  Please disaggregate.");
    }
    return gisO.line || gisO.pline;
}

void failDataLine(std::string_view dataLine)
{
    fail("ERROR - Extracting attribute data for GIS object.  Data: ", dataLine);
}

} // namespace gridforge
