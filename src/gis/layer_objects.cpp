#include "gis/layer_objects.h"

#include "host/ends.h"

namespace gridforge::gis {

bool isLineObject(const LayerObject& object)
{
    if (object.kind == Kind::combinedPolyline) {
        fail("ERROR - Combined polylines not yet supported.  Please disaggregate.");
    }
    return object.kind == Kind::line || object.kind == Kind::polyline;
}

bool isRegionObject(const LayerObject& object)
{
    if (object.kind == Kind::region && object.rings > 1) {
        fail("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes.");
    }
    return object.kind == Kind::region;
}

void RecordValues::require(bool taken) const
{
    if (!taken) {
        fail("ERROR - Extracting attribute data for GIS object.  Data: ", record_);
    }
}

} // namespace gridforge::gis
