// Objects of a layer painted onto a grid: the first attribute of each goes to the cells that the object touches. No
// operation of this tool needs it yet.
#pragma once

#include "gis/layers.h"
#include "grid/grid.h"

#include <cstdint>

namespace gridforge {

// Where the grid lies: its corner, or the first point, and the angle of its columns' axis in radians.
struct PaintedLattice {
    double x0 = 0;
    double y0 = 0;
    double angle = 0;
    float size = 1;
    std::int32_t margin = 0; // rows and columns at the edges that regions leave alone
};

// Paints the objects of an open layer whose header has been read: the cell of a point, the cells along lines, the cells
// of regions. Other objects are told of and passed over. Values must be readable as reals.
void gisPaintCells(std::int32_t gisID, const PaintedLattice& lattice, Grid& values);
// The same for a lattice of points, `size` apart: each stands for the cell around it.
void gisPaintPoints(std::int32_t gisID, const PaintedLattice& lattice, Grid& values);

} // namespace gridforge
