#include "gis/layer_objects.h"

#include "host/ends.h"

namespace gridforge::gis {

namespace {

bool isLineObject(const LayerObject& object)
{
    if (object.kind == Kind::combinedPolyline) {
        fail("ERROR - Combined polylines not yet supported.  Please disaggregate.");
    }
    return object.kind == Kind::line || object.kind == Kind::polyline;
}

template <typename IsWanted>
LayerObject* nextObject(LayerReader& layer, Coordinates& read, IsWanted isWanted)
{
    while (LayerObject* object = layer.next()) {
        if (isWanted(*object)) {
            layer.readCoordinates(*object, read);
            return object;
        }
    }
    return nullptr;
}

} // namespace

bool isRegionObject(const LayerObject& object)
{
    if (object.kind == Kind::region && object.rings > 1) {
        fail("ERROR - Multiple region objects not yet supported.  Please disaggregate / remove holes.");
    }
    return object.kind == Kind::region;
}

LayerObject* nextLine(LayerReader& layer, Coordinates& read)
{
    return nextObject(layer, read, isLineObject);
}

LayerObject* nextRegion(LayerReader& layer, Coordinates& read)
{
    return nextObject(layer, read, isRegionObject);
}

} // namespace gridforge::gis
