// The average of tiles of cells, eight tiles at a time. For processors with AVX2 only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace gridforge::ops {

// What one tile has gathered so far.
struct TileSum {
    double sum = 0;
    std::int64_t count = 0;
};

// Adds the cells of a row, each tile's in their order, to the first of `count` tiles, all of which are `factor` cells wide. Returns to
// how many: none without AVX2.
std::size_t addToTiles(std::span<const float> row, float null, std::size_t factor, TileSum* tiles, std::size_t count);

} // namespace gridforge::ops
