// What the steps of a remap share: its grids, and the methods that make the fine ones from the coarse ones.
#pragma once

#include "grid/cell_source.h"
#include "grid/cell_store.h"
#include "grid/format.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "remap/cell_state.h"
#include "remap/extent_flags.h"
#include "remap/remap_options.h"
#include "remap/tin_cells.h"
#include "run/inputs.h"
#include "run/still_to_read.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace gridforge::remap {

struct RemapRun {
    explicit RemapRun(const RemapOptions& given) : options(given) {}

    const RemapOptions& options;

    // Coarse
    GridHeader coarse; // of the water level grid
    Grid wlGrid;       // later each extra grid
    CellFlags wetFlags;
    CellFlags extentFlags;
    Grid workGrid; // levels after the extension; before that the extent grid

    // Fine
    GridHeader terrain; // its null is the terrain's own
    Grid demGrid;
    Grid levelGrid;
    Grid depthGrid;
    CellStates cellState;
    // Levels and depths where they were computed ahead, in place of these.
    std::vector<grid::CellStore> ready;

    grid::Format format = grid::Format::asc; // of all outputs
    std::int32_t decimals = 0;
    std::string projectionText; // of the grid whose header was read last, which that of the outputs is
    std::vector<run::InputGrid> stillToRead;

    float null() const { return coarse.null; }
    bool isAhead() const { return !ready.empty(); }
    CoarseLevels coarseLevels() const
    {
        return {columnAxis(coarse), rowAxis(coarse), wlGrid, workGrid, null(), options.freeboard};
    }
};

// Writes beside the grid `source`: its name without extension, and the suffix.
void writeFine(const RemapRun& run, std::string_view source, std::string_view suffix, const grid::CellSource& cells);
void writeCoarse(const RemapRun& run, std::string_view source, std::string_view suffix, const Grid& cells);

// Takes the state of every fine cell, at its start.
void startCellStates(RemapRun& run);

// Levels of the coarse lattice after the extension by `points` nearest wet cells, into workGrid. A search that cannot
// find them says so and waits for the user to stop the run.
void extendByIdw(RemapRun& run, std::int32_t points);

// The levels of the coarse lattice one cell past the wet edge, and the fine grids where they can be computed before the story
// comes to the terrain. `format` is that in which they will be written, most likely.
void prepareTin(RemapRun& run, grid::Format format);

void runNearestMethod(RemapRun& run);
void runIdwMethod(RemapRun& run);
void runTinMethod(RemapRun& run);

// The grids of the list from the entry `first` on that remapExtraGrids reads.
std::vector<run::InputGrid> extraGridsToRead(const run::InputFileList& inputs, std::int32_t first);
// The grids of the list from the entry `first` on, by nearest cell and cut to the wet extent.
void remapExtraGrids(RemapRun& run, const run::InputFileList& inputs, std::int32_t first);

} // namespace gridforge::remap
