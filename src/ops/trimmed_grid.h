// One grid of -trim and what is cut out of it.
#pragma once

#include "grid/cell_source.h"
#include "grid/cell_store.h"
#include "grid/look.h"
#include "plane/cell_array.h"
#include "plane/cell_window.h"
#include "plane/grid_header.h"
#include "plane/inside_runs.h"
#include "run/cells_ahead.h"
#include "run/load.h"

#include <cstddef>
#include <string>
#include <vector>

namespace gridforge::ops {

struct TrimRegion {
    std::string name;
    SampledRegion region;
};

// A region's window of a grid.
struct Cut {
    const SampledRegion& region;
    CellWindow wanted;
    CellWindow window; // the part of it that lies in the grid
    GridHeader header; // of the output; not if the window is empty
};

Cut cutOf(const SampledRegion& region, const GridHeader& header);

// One grid and what is cut out of it. Where all is ordinary it is never in memory: a few windows of a binary grid are cut
// before its story is told, and wait. Otherwise the cells of the grid itself wait for the turns of its windows.
class TrimmedGrid {
public:
    TrimmedGrid(const std::string& name, const std::vector<TrimRegion>& regions, const run::OutputWish& wish);

    const run::LoadedGrid& load();
    // Says that the output is made, and makes it unless it is there.
    grid::CellSource cells(std::size_t region, const Cut& cut);

private:
    run::Way cutAll(const grid::GridLook& look);
    void cutLate(const Cut& cut);
    bool keepCells(const grid::GridLook& look);

    const std::string& name_;
    const std::vector<TrimRegion>& regions_;
    run::OutputWish wish_;
    bool ahead_ = false;
    grid::CellStore kept_;                 // the cells of the grid
    std::vector<grid::CellStore> waiting_; // the cuts, or none
    grid::CellStore output_;
    Grid plainCells_; // those of a grid that is read step by step, and a cut
    Grid plainOutput_;
    run::LoadedGrid loaded_;
};

} // namespace gridforge::ops
