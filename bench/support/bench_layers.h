// The layers of the benchmarks: points along lines of a survey, and small polygons with two attributes.
#pragma once

#include "gis/layer_reader.h"
#include "gis/layer_table.h"
#include "gis/layer_writer.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::bench {

inline constexpr int kRingVertices = 21;

inline void start()
{
    startUnits(1000);
    gis::initialise();
}

inline gis::LayerWriter createOutput(const std::string& file, const char* letters)
{
    start();
    return gis::createLayer(
        file, {.columns = {{"Name", "Char", 20}, {"Val", "Float"}},
               .projection = {"CoordSys NonEarth Units \"m\" Bounds (0, 0) (10000000, 10000000)", "PROJCS[\"bench\"]"},
               .families = letters});
}

inline void writePoints(const std::string& file, int count)
{
    gis::LayerWriter layer = createOutput(file, "P");
    for (int i = 0; i < count; ++i) {
        layer.write({.kind = gis::Kind::point,
                     .x = {293000.0 + i * 0.37},
                     .y = {6178000.0 + (i % 1000) * 1.13},
                     .record = "\"point\",12.5"});
    }
    layer.close();
}

inline void writePolygons(const std::string& file, int count)
{
    gis::LayerWriter layer = createOutput(file, "R");
    gis::Feature region{.kind = gis::Kind::region, .record = "\"region\",12.5"};
    for (int i = 0; i < count; ++i) {
        const double x = 293000.0 + i % 300 * 30.0;
        const double y = 6178000.0 + i / 300 * 30.0;
        region.x.clear();
        region.y.clear();
        for (int k = 0; k < kRingVertices - 1; ++k) {
            region.x.push_back(x + (k < 10 ? k : 20 - k) * 1.01);
            region.y.push_back(y + (k < 10 ? 0.0 : 10.0) + k * 0.013);
        }
        region.x.push_back(x);
        region.y.push_back(y);
        layer.write(region);
    }
    layer.close();
}

struct LayerRead {
    std::size_t objects = 0;
    double sum = 0; // of what was read, so that none of it can be left out
};

// All objects and records of a layer.
inline LayerRead readLayer(const std::string& file)
{
    start();
    gis::LayerReader layer = gis::openLayer(file);
    gis::Coordinates c;
    LayerRead read;
    while (gis::LayerObject* object = layer.next()) {
        layer.readCoordinates(*object, c, 1000000);
        read.sum += c.xc + static_cast<double>(object->record.size());
        ++read.objects;
    }
    layer.close();
    return read;
}

} // namespace gridforge::bench
