// The TIN along a stretch of one fine row: plain loops over arrays, so that the compiler computes several cells at a time. The
// triangles are those of PreparedQuad, and so are the bits of the levels.
#pragma once

#include "remap/cell_state.h"
#include "remap/tin_quads.h"

#include <cstddef>
#include <span>

namespace gridforge::remap {

// Levels of the fine columns from `first` to before `last`, counted from 0, in the fine row at `y`. The edges must have a
// length in double precision: east of each quad is more than west.
void interpolateTinStretch(const TinColumns& columns, const TinLines& lines, const TinValues& values, double y,
                           std::size_t first, std::size_t last, float* levels);

// The ground becomes the depth: level less ground where the cell is wet and the level not below the ground, else null, and
// then the level becomes null too.
void depthsWhereWet(std::span<const CellState> states, float null, std::span<float> levels, std::span<float> ground);

} // namespace gridforge::remap
