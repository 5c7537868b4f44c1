// How the cells of a dataset are cut into chunks and packed.
#pragma once

#include <cstddef>
#include <optional>

namespace gridforge::netcdf {

struct ChunkForm {
    std::size_t rows = 0;
    std::size_t columns = 0;
    bool shuffled = false;
    std::optional<int> deflated; // by this level, 0 to 9
    float fill = 0;              // stands in the part of a chunk that reaches past the grid

    std::size_t cells() const { return rows * columns; }
    std::size_t bytes() const { return cells() * sizeof(float); }
};

} // namespace gridforge::netcdf
