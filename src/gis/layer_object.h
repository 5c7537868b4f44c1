// An object of a layer as it is read, and its coordinates. Vertices and parts count from 1 in comments and messages:
// vertex 1 is x[0].
#pragma once

#include "gis/feature.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace gridforge::gis {

inline constexpr std::int32_t kMaxParts = 10000; // rings of a region, parts of a polyline

struct LayerObject {
    Kind kind = Kind::unknown;
    bool centre = false;          // no object, but the line that gives the centre of a region
    bool haveCoordinates = false; // the coordinates have been read; clear() does not change it
    // .mif: the count after "Pline Multiple" or "MultiPoint"; .shp: parts of a polyline, points.
    std::int32_t sections = 1;
    std::int32_t rings = 1; // of a region; polylines of a .shp: parts taken so far
    // parts[k-1] is part k. Regions: the number of the ring's last vertex. Polylines of a .shp: the zero-based start of the
    // part, and after the last one the point count. Never empty; readers make it as long as they need.
    std::vector<std::int32_t> parts = {1};
    std::string name = {};   // the kind as the file spells it, for messages
    std::string record = {}; // the attributes as one comma-separated line, text in double quotes

    // No kind, one section, one part from vertex 1, no name. `parts` keeps its length, so that nothing is allocated
    // again, and `record` stays.
    void clear();
};

// Arrays that the caller keeps from object to object and that only grow. They have at least two slots, zero at first. A
// ring of a region has one slot more than vertices: the slot after its closing vertex repeats its second vertex, and np
// counts that slot too.
struct Coordinates {
    std::int32_t np = 0;
    std::vector<double> x = std::vector<double>(2);
    std::vector<double> y = std::vector<double>(2);
    double xc = 0; // centre
    double yc = 0;
    float angle = 0; // degrees
    float length = 0;

    // The np vertices alone.
    std::span<const double> vertexX() const { return std::span(x).first(count()); }
    std::span<const double> vertexY() const { return std::span(y).first(count()); }
    std::size_t count() const { return static_cast<std::size_t>(std::max(np, 0)); }

    // Room for as many vertices; what is there stays.
    void reserve(std::int32_t vertices)
    {
        const auto wanted = static_cast<std::size_t>(std::max(vertices, 2));
        if (x.size() < wanted) {
            x.resize(wanted);
            y.resize(wanted);
        }
    }
};

inline void LayerObject::clear()
{
    kind = Kind::unknown;
    sections = 1;
    rings = 1;
    if (parts.empty()) {
        parts.resize(1);
    }
    parts[0] = 1;
    name.clear();
}

// Where the centre of an object comes from.
enum class Centre { computed, given };

} // namespace gridforge::gis
