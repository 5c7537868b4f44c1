// How every operation gets a grid of its inputs into memory.
#pragma once

#include "grid/format.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/inputs.h"

#include <cstdint>
#include <functional>
#include <string>

namespace gridforge::run {

// The steps of a load in the order that the run goes through them. Each text is a line of the console; an empty one is
// not written.
struct LoadSteps {
    std::string opening = {};          // before the header is read
    const GridHeader* match = nullptr; // ends the run when size, corner or cell size is not that of this header
    std::string matching = {};         // before that is looked at
    std::string matched = {};          // and after
    std::string purpose = {};          // of the array of cells, which is made here; none: it is there already
    std::function<void(const GridHeader&)> prepare = nullptr; // what else comes before the cells
    std::string reading = {};                                 // before the cells are read
    std::string done = {};                                    // after
    bool ahead = false; // the cells are not wanted any more: they get no memory, and are skipped
};

// What its files say of a grid besides its cells.
struct LoadedGrid {
    GridHeader header;
    grid::Format format = grid::Format::asc;
    std::string projectionText; // the PROJCS line, blank if none
};

LoadedGrid loadGrid(const std::string& name, const LoadSteps& steps, Grid& cells);

// Loads the inputs one after the other into `cells`, each announced as "Processing: " and its name, and gives each to
// `use` with its number. The array is made for the first, and `prepare` called, before that is announced; the others
// must match it. Returns the first with the projection of the last, as outputs are written.
LoadedGrid loadEach(const InputFileList& inputs, const std::string& purpose,
                    const std::function<void(const GridHeader&)>& prepare, Grid& cells,
                    const std::function<void(std::int32_t, const GridHeader&)>& use, bool ahead = false);

} // namespace gridforge::run
