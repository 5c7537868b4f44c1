// The highest value of each cell over the grids of a series.
#pragma once

#include "grid/cell_store.h"
#include "plane/grid_header.h"
#include "run/ways.h"

#include <string>

namespace gridforge::netcdf {

// Waits in a store, in the order in which the grids are laid. False, or noRoom, is returned where memory or disk cannot be had.
class KeptMaximum {
public:
    // Null throughout, for grids of this lattice.
    [[nodiscard]] bool start(const GridHeader& lattice, const std::string& folder);
    // readRefused where the cells of the grid cannot be had.
    [[nodiscard]] run::Way raise(const grid::CellStore& laid);

    const grid::CellStore& cells() const { return cells_; }

private:
    grid::CellStore cells_;
    float null_ = 0;
};

} // namespace gridforge::netcdf
