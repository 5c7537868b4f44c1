// Objects of every kind through the write routines of the layers, for tests that look at what comes out.
#pragma once

#include "gis/layers.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace gridforge::test {

struct Vertex {
    double x;
    double y;
};

inline void setVertices(const std::vector<Vertex>& vertices)
{
    gisOutputCoordinates().clear();
    for (const Vertex& v : vertices) {
        gisOutputCoordinates().add(v.x, v.y);
    }
}

// An object of one kind and its record; the parts are their first vertices, from 1.
inline void writeObject(std::int32_t gisID, bool GisO::*kind, std::vector<std::int32_t> parts,
                        const std::vector<Vertex>& vertices, const std::string& record)
{
    GisO gisO;
    gisO.*kind = true;
    gisO.nr = static_cast<std::int32_t>(parts.size());
    gisO.ir = std::move(parts);
    setVertices(vertices);
    gisWriteObject(gisID, gisO);
    gisDataLine() = record;
    gisWriteRecord(gisID, gisO);
}

} // namespace gridforge::test
