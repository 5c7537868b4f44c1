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
        c.np = 0;
        gisReadObject(gisID, object.gisO, c, 1000000);
        std::size_t ring = 0;
        for (std::size_t i = 0; i < static_cast<std::size_t>(c.np); ++i) {
            const bool slot = object.gisO.region && static_cast<std::int32_t>(i) == object.gisO.ir[ring];
            if (slot) {
                ++ring;
            } else {
                object.numbers.push_back(c.x[i]);
                object.numbers.push_back(c.y[i]);
            }
        }
        objects.push_back(object);
    }
    gisCloseLayer(gisID);
    return objects;
}

} // namespace gridforge::test
