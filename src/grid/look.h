// A silent look at a grid before the run opens it.
#pragma once

#include "grid/format.h"
#include "plane/grid_header.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace gridforge::grid {

// A grid whose header is whole, in plain files, and long enough: reading it will ask for nothing and
// most likely ends no run.
struct GridLook {
    GridHeader header;
    Format format = Format::asc;
    std::string file;           // of the cells, as the system takes it
    std::int64_t cellsFrom = 0; // their position in it
    std::int64_t size = 0;      // of the file, in bytes
};

// Nothing if anything is unusual.
std::optional<GridLook> lookAtGrid(std::string_view name);

} // namespace gridforge::grid
