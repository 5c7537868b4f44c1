// A whole layer through the read loop of the operations.
#pragma once

#include "gis/layers.h"

#include <string>
#include <vector>

namespace gridforge::test {

struct LayerObject {
    GisO gisO;
    std::string record;
    std::vector<double> numbers; // x, y of each vertex as in the file, without the slots behind rings
};

inline void appendVertices(LayerObject& object, const GisCoordinates& c)
{
    std::size_t ring = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(c.np); ++i) {
        if (object.gisO.region && static_cast<std::int32_t>(i) == object.gisO.ir[ring]) {
            ++ring;
        } else {
            object.numbers.push_back(c.x[i]);
            object.numbers.push_back(c.y[i]);
        }
    }
}

inline std::vector<LayerObject> readLayer(const std::string& fileName)
{
    startUnits(1000);
    gisInitialise(-1, "", "", "");
    std::int32_t gisID = gisOpenLayer(fileName, "", "I ");
    gisReadHeader(gisID);
    std::vector<LayerObject> objects;
    GisCoordinates c;
    while (!gisLayer(gisID).layerEnd) {
        LayerObject object;
        if (!gisObjectType(gisID, object.gisO)) {
            continue;
        }
        gisReadRecord(gisID, object.gisO, object.record);
        // A polyline of a .shp gives one part a call, and all must be read.
        const bool inParts = object.gisO.plineMultiple && gisLayer(gisID).layerFormat == kLayerShp;
        for (std::int32_t part = 0; part < (inParts ? object.gisO.nSections : 1); ++part) {
            c.np = 0;
            gisReadObject(gisID, object.gisO, c, 1000000);
            appendVertices(object, c);
        }
        objects.push_back(object);
    }
    gisCloseLayer(gisID);
    return objects;
}

} // namespace gridforge::test
