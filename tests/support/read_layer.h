// A whole layer through the read loop of the operations.
#pragma once

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "host/units.h"

#include <string>
#include <vector>

namespace gridforge::test {

struct ReadObject : gis::LayerObject {
    std::vector<double> numbers; // x, y of each vertex as in the file, without the slot after each ring
};

inline void appendVertices(ReadObject& object, const gis::Coordinates& c)
{
    std::size_t ring = 0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(c.np); ++i) {
        if (object.kind == gis::Kind::region && static_cast<std::int32_t>(i) == object.parts[ring]) {
            ++ring;
        } else {
            object.numbers.push_back(c.x[i]);
            object.numbers.push_back(c.y[i]);
        }
    }
}

inline std::vector<ReadObject> readLayer(const std::string& fileName)
{
    startUnits(1000);
    gis::initialise();
    gis::LayerReader layer = gis::openLayer(fileName);
    std::vector<ReadObject> objects;
    gis::Coordinates c;
    while (gis::LayerObject* next = layer.next()) {
        ReadObject object{*next, {}};
        // A polyline of a .shp gives one part a call, and all must be read.
        const bool inParts = object.kind == gis::Kind::combinedPolyline && fileName.ends_with(".shp");
        for (std::int32_t part = 0; part < (inParts ? object.sections : 1); ++part) {
            c.np = 0;
            layer.readCoordinates(object, c, 1000000);
            appendVertices(object, c);
        }
        objects.push_back(object);
    }
    layer.close();
    return objects;
}

} // namespace gridforge::test
