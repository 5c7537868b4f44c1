// The TIN method: the coarse level one cell past its wet edge, the level in four triangles to each quad of coarse
// centres, and the depth on the fine terrain.
#pragma once

#include "plane/triangle.h"
#include "remap/cell_state.h"
#include "remap/extent_flags.h"
#include "remap/places.h"
#include "remap/tin_row.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace gridforge::remap {

// The level of a dry cell from the wet ones among its eight neighbours, by inverse distance to the power `exponent`.
// There must be one.
float idwOneCell(std::int32_t row, std::int32_t column, const CellFlags& wetFlags, const Grid& levels, float exponent);

// One row of levels after the extension by one cell: wet cells keep theirs, flagged ones take idwOneCell, the rest is
// left.
void extendOneCellRow(std::int32_t row, const CellFlags& wetFlags, const CellFlags& extentFlags, const Grid& levels,
                      Grid& extended);

// A level must stand above null and freeboard by more than this for its cell to make fine cells wet.
inline constexpr float kWetAboveNull = 0.1F;

// The coarse grids of an interpolation and their lattice. `levels` are those of the model, `extended` has the cells
// past the edge.
struct CoarseLevels {
    Axis columns;
    Axis rows;
    const Grid& levels;
    const Grid& extended;
    float null = kDefaultNull;
    float freeboard = 0;

    float wetThreshold() const { return (null + freeboard) + kWetAboveNull; }
};

// The quad between the centres of the coarse cells (row, column) and (row + 1, column + 1), cut into four triangles by
// its diagonals, ready for the fine cells in it.
struct PreparedQuad {
    TrianglePoint southWest;
    TrianglePoint northWest;
    TrianglePoint northEast;
    TrianglePoint southEast;
    std::array<PreparedTriangle, 4> triangles; // west, north, east, south
};
PreparedQuad prepareQuad(const CoarseLevels& coarse, std::int32_t row, std::int32_t column);

// The triangle under the point. On the diagonal from south-west to north-east it is the east or south one; on the other
// diagonal the north one above the first diagonal and the south one below it.
const PreparedTriangle& triangleUnder(const PreparedQuad& quad, const TrianglePoint& point);

// Where the fine rows and columns fall.
struct TinPlaces {
    std::vector<QuadPlace> columns;
    std::vector<QuadPlace> rows;
    std::size_t first = 0; // fine columns from here to before `last` lie in quads
    std::size_t last = 0;
    bool isFlat = false; // a quad has no width in double precision: far coordinates, small cells
    TinColumns lattice;
};
TinPlaces placeTin(const CoarseLevels& coarse, const Axis& fineColumns, const Axis& fineRows);

// Fine columns from `first` to before `last`, counted from 0.
struct WetStretch {
    std::size_t first = 0;
    std::size_t last = 0;
};

// What belongs to the coarse row that a walk over fine rows is in. It may start anywhere, and several may go on at a time.
struct TinWalk {
    std::int32_t quadRow = 0; // coarse row that these are of
    TinLines lines;
    TinValues values;
    std::int32_t wetRow = 0; // and these: where fine columns are wet
    std::vector<WetStretch> wet;
};

// Levels and states of a stretch of one fine row, from the column at place `firstColumn` on; rows in the same coarse row
// should follow each other. `states` holds the start state on entry. The level of a cell that does not turn out wet is null:
// no later step would look at another.
void interpolateTinRow(const CoarseLevels& coarse, const TinPlaces& places, TinWalk& walk, std::int32_t fineRow,
                       std::size_t firstColumn, std::span<float> levels, std::span<CellState> states);

} // namespace gridforge::remap
