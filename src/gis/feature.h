// An object of a layer as it is written: its kind, vertices, record and style.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace gridforge::gis {

inline constexpr std::int32_t kMaxWriteVertices = 100000;

enum class Kind {
    unknown, // not read yet, or a polyline without parts
    none,
    point,
    multipoint,
    line,
    polyline,
    combinedPolyline,
    region,
    ellipse,
    rectangle,
    roundedRectangle,
    arc,
    text
};

// The lines after an object in a .mif, as "    Symbol (37,255,12)". The second is written only if there is a first.
struct Style {
    std::string first = {};
    std::string second = {};
};

struct Feature {
    Kind kind = Kind::none;
    std::vector<std::int32_t> parts = {}; // the first vertex of each ring or section, from 1; empty for one part
    std::vector<double> x = {};           // of regions with the closing vertices
    std::vector<double> y = {};
    std::string record = {}; // the values as one comma-separated line, text in double quotes
    Style style = {};

    std::int32_t vertexCount() const { return static_cast<std::int32_t>(x.size()); }
    std::int32_t partCount() const { return parts.empty() ? 1 : static_cast<std::int32_t>(parts.size()); }
    // The first part begins with vertex 1, whatever `parts` holds.
    std::int32_t partStart(std::int32_t part) const
    {
        return part <= 1 ? 1 : parts[static_cast<std::size_t>(part - 1)];
    }
};

} // namespace gridforge::gis
