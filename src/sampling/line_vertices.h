// Vertices along a line: their insertion at a spacing, chainages, and the direction of the line at each of them.
#pragma once

#include "gis/layer_object.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace gridforge::sampling {

struct LineVertices {
    std::vector<double> x;
    std::vector<double> y;

    std::size_t count() const { return x.size(); }
};

// The vertices of a line as read, with floor(d / spacing) more put evenly into each segment of a length d above the
// spacing. None where there are more than `most` in all, as from a spacing of 0.
std::optional<LineVertices> withVertices(const gis::Coordinates& read, float spacing, std::int32_t most);

// DISTANCE_8 from vertex i - 1 to vertex i, counted from 0.
float distanceBefore(const LineVertices& line, std::size_t i);

// A vertex between others lies less than 0.0001 from the one before, so the direction of the line there is doubtful.
bool isDuplicate(const LineVertices& line, std::size_t i);

// The direction of the line at vertex i in degrees: that of its segment at the ends, of the chord between its neighbours
// elsewhere; 0 for a single vertex.
float lineAngle(const LineVertices& line, std::size_t i);

} // namespace gridforge::sampling
