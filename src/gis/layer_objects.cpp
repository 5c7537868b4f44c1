#include "gis/layer_objects.h"

#include "host/ends.h"

namespace gridforge {

bool isLineObject(const GisO& gisO)
{
    if (gisO.plineMultiple) {
        fail("ERROR - Combined polylines not yet supported.  Please disaggregate.");
    }
    return gisO.line || gisO.pline;
}

bool isRegionObject(const GisO& gisO)
{
    if (gisO.region && gisO.nr > 1) {
        fail("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes.");
    }
    return gisO.region;
}

void failDataLine(std::string_view dataLine)
{
    fail("ERROR - Extracting attribute data for GIS object.  Data: ", dataLine);
}

void RecordValues::require(FreeValue got) const
{
    if (got == FreeValue::failure || got == FreeValue::end) {
        failDataLine(dataLine_);
    }
}

} // namespace gridforge
