// What every operation does with its input layer, its one grid and its output layers.
#pragma once

#include "gis/layers.h"
#include "grid/grid.h"
#include "run/across_line.h"
#include "run/inputs.h"
#include "sampling/line_vertices.h"
#include "sampling/search_polygon.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge {

// Vertices of a line or region as read.
inline constexpr std::int32_t kMaxSampledVertices = 1000000;

// Takes the projection of the layer for the outputs, opens it and reads its header.
std::int32_t openSampledLayer(const std::string& name);

// Ends the run when there is more than one input grid.
void requireOneGrid(const InputFileList& inputs);

struct Terrain {
    GridHeader header;
    Grid cells;
};
// Header and cells of the grid, whose file is closed then.
Terrain readTerrain(const std::string& name);
// The same from "Loading grid data..." to "   Done.".
Terrain loadTerrain(const std::string& name);

// One object with its record. The style is the layer's.
void writePoint(std::int32_t gisID, double x, double y, std::string_view dataLine);
void writeSegment(std::int32_t gisID, double x1, double y1, double x2, double y2, std::string_view dataLine);
// From sample `from` to sample `to`.
void writeSearchLine(std::int32_t gisID, const AcrossLine& across, std::int32_t from, std::int32_t to,
                     std::string_view dataLine);
void writePolyline(std::int32_t gisID, const LineVertices& line, std::string_view dataLine);
void writeRegion(std::int32_t gisID, const SearchPolygon& polygon, std::string_view dataLine);
void setStyle(std::int32_t gisID, std::string_view style);

} // namespace gridforge
