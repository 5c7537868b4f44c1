// The layers of the benchmarks: points along lines of a survey, and small polygons with two attributes.
#pragma once

#include "gis/layers.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace gridforge::bench {

inline constexpr int kRingVertices = 21;

inline void start()
{
    startUnits(1000);
    gisInitialise(-1, "", "", "");
    gisPrjLine() = "PROJCS[\"bench\"]";
    gisCoordSysLine() = "CoordSys NonEarth Units \"m\" Bounds (0, 0) (10000000, 10000000)";
    gisOutputAttributes().clear();
    gisOutputAttributes().add("Name", "Char", 20);
    gisOutputAttributes().add("Val", "Float");
}

inline std::int32_t openOutput(const std::string& file, const char* letters)
{
    start();
    const std::int32_t gisID = gisOpenLayer(file, letters, "O ");
    gisWriteHeader(gisID);
    return gisID;
}

inline void writePoints(const std::string& file, int count)
{
    std::int32_t gisID = openOutput(file, "P");
    GisO gisO;
    gisO.point = true;
    for (int i = 0; i < count; ++i) {
        gisOutputCoordinates().clear();
        gisOutputCoordinates().add(293000.0 + i * 0.37, 6178000.0 + (i % 1000) * 1.13);
        gisWriteObject(gisID, gisO);
        gisDataLine() = "\"point\",12.5";
        gisWriteRecord(gisID, gisO);
    }
    gisCloseLayer(gisID);
}

inline void writePolygons(const std::string& file, int count)
{
    std::int32_t gisID = openOutput(file, "R");
    GisO gisO;
    gisO.region = true;
    for (int i = 0; i < count; ++i) {
        const double x = 293000.0 + i % 300 * 30.0;
        const double y = 6178000.0 + i / 300 * 30.0;
        gisOutputCoordinates().clear();
        for (int k = 0; k < kRingVertices - 1; ++k) {
            gisOutputCoordinates().add(x + (k < 10 ? k : 20 - k) * 1.01, y + (k < 10 ? 0.0 : 10.0) + k * 0.013);
        }
        gisOutputCoordinates().add(x, y);
        gisWriteObject(gisID, gisO);
        gisDataLine() = "\"region\",12.5";
        gisWriteRecord(gisID, gisO);
    }
    gisCloseLayer(gisID);
}

struct LayerRead {
    std::size_t objects = 0;
    double sum = 0; // of what was read, so that none of it can be left out
};

// All objects and records of a layer.
inline LayerRead readLayer(const std::string& file)
{
    start();
    std::int32_t gisID = gisOpenLayer(file, "", "I ");
    gisReadHeader(gisID);
    GisO gisO;
    GisCoordinates c;
    std::string line;
    LayerRead read;
    while (!gisLayer(gisID).layerEnd) {
        if (gisObjectType(gisID, gisO)) {
            gisReadRecord(gisID, gisO, line);
            gisReadObject(gisID, gisO, c, 1000000);
            read.sum += c.xc + static_cast<double>(line.size());
            ++read.objects;
        }
    }
    gisCloseLayer(gisID);
    return read;
}

} // namespace gridforge::bench
