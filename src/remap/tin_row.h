// The TIN along a stretch of one fine row: plain loops over arrays, so that the compiler computes several cells at a time. The
// triangles are those of PreparedQuad, and so are the bits of the levels.
#pragma once

#include "remap/cell_state.h"

#include <cstddef>
#include <span>
#include <vector>

namespace gridforge::remap {

// The quad over each fine column, where it lies from west to east. Only columns within the quads are looked at.
struct TinColumns {
    std::vector<double> x; // of the fine column
    std::vector<double> west;
    std::vector<double> east;
    std::vector<double> apex;
    std::vector<double> edgeLength;    // of the northern and southern edge
    std::vector<double> perEdgeLength; // 1 by it
};

// The quads of one coarse row, where they lie from south to north.
struct TinLines {
    double south = 0;
    double north = 0;
    double apex = 0;
    double edgeLength = 0; // of the western and eastern edges
};

// Their levels, for each fine column.
struct TinValues {
    std::vector<float> southWest;
    std::vector<float> northWest;
    std::vector<float> northEast;
    std::vector<float> southEast;
    std::vector<float> apex;
};

// Levels of the fine columns from `first` to before `last`, counted from 0, in the fine row at `y`. The edges must have a
// length in double precision: east of each quad is more than west.
void interpolateTinStretch(const TinColumns& columns, const TinLines& lines, const TinValues& values, double y,
                           std::size_t first, std::size_t last, float* levels);

// The ground becomes the depth: level less ground where the cell is wet and the level not below the ground, else null, and
// then the level becomes null too.
void depthsWhereWet(std::span<const CellState> states, float null, std::span<float> levels, std::span<float> ground);

} // namespace gridforge::remap
