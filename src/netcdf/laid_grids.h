// Grids of a series on their way into the file, laid out as they will stand in it. Ordinary ones are read and laid before
// their story is told, several at once where each alone would leave threads idle.
#pragma once

#include "grid/cell_store.h"
#include "grid/look.h"
#include "host/file_identity.h"
#include "netcdf/layout.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "run/cells_ahead.h"
#include "run/inputs.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace gridforge::netcdf {

class LaidGrids {
public:
    // Grids of which none may be the file `output`. What waits and finds no room in memory does so in its folder.
    LaidGrids(const run::InputFileList& inputs, Layout layout, const std::string& output);

    // Lays grid `i`, and further ones up to `together` in all, and says nothing. The way of grid `i`: where that is not ahead,
    // it is to be read step by step.
    run::Way layAhead(std::int32_t i, std::size_t together);

    // For a grid that is read step by step: room for it, and then its cells. False where these cannot be had.
    [[nodiscard]] bool take(std::int32_t i, const GridHeader& header);
    [[nodiscard]] bool lay(const Grid& grid);

    // Grid `i`, which has been laid, and those after it that have too.
    std::span<const grid::CellStore> from(std::int32_t i) const;

    const std::string& folder() const { return folder_; }

private:
    run::Way layNext(std::int32_t i);
    run::Way layAsItIs(const grid::GridLook& look, grid::CellStore& laid);
    grid::CellStore& nextStore();

    const run::InputFileList& inputs_;
    Layout layout_;
    std::string folder_;
    std::optional<FileIdentity> output_;
    std::optional<GridHeader> lattice_; // of the first grid
    std::vector<grid::CellStore> stores_;
    std::int32_t first_ = 1; // number of the grid in the first store
    std::size_t count_ = 0;
    grid::CellStore cells_; // of a grid, before it is laid
};

} // namespace gridforge::netcdf
