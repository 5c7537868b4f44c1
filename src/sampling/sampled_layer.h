// What every operation does with its input layer and its one grid.
#pragma once

#include "gis/feature.h"
#include "gis/layer_reader.h"
#include "plane/across_line.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/inputs.h"
#include "sampling/line_vertices.h"

#include <cstdint>
#include <string>

namespace gridforge::sampling {

// Ends the run when there is more than one input grid.
void requireOneGrid(const run::InputFileList& inputs);

struct Terrain {
    GridHeader header;
    Grid cells;
};
// Header and cells of the grid, whose file is closed then.
Terrain readTerrain(const std::string& name);
// The same from "Loading grid data..." to "   Done."; without the cells where they are not wanted any more.
Terrain loadTerrain(const std::string& name, bool ahead = false);

// The line with vertices inserted by withVertices; more than `most` end the run.
LineVertices insertVertices(const gis::Coordinates& read, float spacing, std::int32_t most);
// The warning of a vertex that isDuplicate.
void sayDuplicate();

// The line from sample `from` to sample `to`, as an object without a record.
gis::Feature searchLine(const AcrossLine& across, std::int32_t from, std::int32_t to);

} // namespace gridforge::sampling
