// Opens grids: reads their headers from .asc and .hdr files and the projection beside them.
#pragma once

#include "grid/format.h"
#include "host/units.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::grid {

// The name is that of a .flt.
bool isBinary(std::string_view name);
// The files that the grid `name` is read from: itself, after its .hdr if it is binary.
std::vector<std::string> gridInputFiles(std::string_view name);

// A grid whose header has been read.
struct OpenGrid {
    std::string name; // as given
    GridHeader header;
    Format format = Format::asc;
    std::string projectionText; // the PROJCS line, or blank
    Unit unit = 0;              // the .asc at its first line of cells, or the .hdr
};
// A header that cannot be read or is not complete ends the run with a message.
OpenGrid openGrid(std::string_view name);

} // namespace gridforge::grid
