// Objects of every kind through the writer of layers, for tests that look at what comes out.
#pragma once

#include "gis/layer_table.h"
#include "gis/layer_writer.h"
#include "host/units.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace gridforge::test {

// A new layer, which is the first thing that the process opens.
inline gis::LayerWriter newLayer(std::string_view fileName, const gis::LayerSpec& spec)
{
    startUnits(1000);
    gis::initialise();
    return gis::createLayer(fileName, spec);
}

struct Vertex {
    double x;
    double y;
};

// An object with its record; the parts are their first vertices, from 1.
inline gis::Feature featureOf(gis::Kind kind, const std::vector<Vertex>& vertices, std::vector<std::int32_t> parts = {},
                              std::string record = "")
{
    gis::Feature feature{.kind = kind, .parts = std::move(parts), .record = std::move(record)};
    for (const Vertex& v : vertices) {
        feature.x.push_back(v.x);
        feature.y.push_back(v.y);
    }
    return feature;
}

inline void writeObject(gis::LayerWriter& layer, gis::Kind kind, std::vector<std::int32_t> parts,
                        const std::vector<Vertex>& vertices, const std::string& record)
{
    layer.write(featureOf(kind, vertices, std::move(parts), record));
}

} // namespace gridforge::test
