#include "rainfall/single_rings.h"

#include "gis/layer_objects.h"
#include "gis/layers.h"
#include "host/console.h"
#include "host/ends.h"

namespace gridforge {

namespace {

constexpr std::int32_t kMaxRegionVertices = 1000000;

} // namespace

void forEachRing(const std::string& layerName,
                 const std::function<void(const GisCoordinates& read, const std::string& dataLine)>& work)
{
    std::int32_t gisID = gisOpenLayer(layerName, "", "I ");
    gisReadHeader(gisID);
    GisCoordinates read;
    forEachObject(gisID, [&](GisO& gisO, const std::string& dataLine) {
        if (!gisO.region) {
            say("WARNING - Object is not a polygon and is being skipped.");
            return;
        }
        if (gisO.nr > 1) {
            fail("ERROR - Multiple region objects not yet supported for rainfall polygons.  Please disaggregate / "
                 "remove holes.");
        }
        gisReadObject(gisID, gisO, read, kMaxRegionVertices);
        work(read, dataLine);
    });
    gisCloseLayer(gisID);
}

} // namespace gridforge
