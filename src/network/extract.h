// Elevations and materials of the sections' points from grids.
#pragma once

#include "network/records.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace gridforge::network {

enum class PointValue { elevation, material };

// Sets the value of each point of an extracted section whose cell lies in the grid and is not null.
void samplePoints(const GridHeader& header, const Grid& cells, PointValue target, NbcSections& sections);

// Samples the section's points by its buffer method, or by the point method for materials. Gives the number of points
// that got a value. Costs what it looks at.
std::int64_t sampleSection(const GridHeader& header, const Grid& cells, PointValue target, NbcSection& section);

// Reads a grid, with the line that announces its memory, and writes "Finished reading grid.".
GridHeader readSectionGrid(const std::string& name, std::string_view purpose, Grid& cells);

// Reads the grid and samples all extracted sections. One without points ends the run.
void nbc_read_grid(const std::string& gridName, NbcSections& sections, PointValue target);

} // namespace gridforge::network
