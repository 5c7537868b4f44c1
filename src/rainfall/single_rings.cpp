#include "rainfall/single_rings.h"

#include "gis/layer_reader.h"
#include "host/console.h"
#include "host/ends.h"

namespace gridforge::rainfall {

void forEachRing(const std::string& layerName,
                 const std::function<void(const gis::Coordinates& read, const std::string& record)>& work)
{
    gis::LayerReader layer = gis::openLayer(layerName);
    gis::Coordinates read;
    while (gis::LayerObject* object = layer.next()) {
        if (object->kind != gis::Kind::region) {
            say("WARNING - Object is not a polygon and is being skipped.");
            continue;
        }
        if (object->rings > 1) {
            fail("ERROR - Multiple region objects not yet supported for rainfall polygons.  Please disaggregate / "
                 "remove holes.");
        }
        layer.readCoordinates(*object, read);
        work(read, object->record);
    }
    layer.close();
}

} // namespace gridforge::rainfall
