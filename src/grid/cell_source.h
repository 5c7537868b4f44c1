// The cells of a whole grid that is to be written, wherever they are.
#pragma once

#include "grid/cell_store.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace gridforge::grid {

// Cells of a grid from `first` on, in the order of the files, the north row first. False where they cannot be had.
// Several threads may ask at once.
using GetCells = std::function<bool(std::size_t first, std::span<float> cells)>;

class CellSource {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a grid is a source as it stands
    CellSource(const Grid& grid) : memory_(grid.cells()), nrows_(grid.nrows()), ncols_(grid.ncols()) {}
    // The store may give its cells away to the file.
    CellSource(CellStore& store, const GridHeader& lattice)
        : kept_(&store), store_(&store), nrows_(lattice.nrows), ncols_(lattice.ncols)
    {
    }
    // The store keeps them.
    CellSource(const CellStore& store, const GridHeader& lattice)
        : kept_(&store), nrows_(lattice.nrows), ncols_(lattice.ncols)
    {
    }

    std::int32_t nrows() const { return nrows_; }
    std::int32_t ncols() const { return ncols_; }
    std::size_t size() const { return static_cast<std::size_t>(nrows_) * static_cast<std::size_t>(ncols_); }
    // Do the cells lie in a file, from which they must be fetched?
    bool isInFile() const { return kept_ != nullptr && kept_->isInFile(); }
    // Is that file an input?
    bool isOnlyRead() const { return kept_ != nullptr && kept_->isOnlyRead(); }
    // The extremes of all cells, if they are known already.
    std::optional<ValueRange> extremes() const { return kept_ == nullptr ? std::nullopt : kept_->extremes(); }
    // A hint that these will be read soon.
    void willRead(std::size_t first, std::size_t count) const
    {
        if (kept_ != nullptr) {
            kept_->willRead(first, count);
        }
    }
    // The store that may give them away; none for a grid.
    CellStore* store() const { return store_; }

    // `count` cells from `first` on, in the order of the files. Cells that must be fetched are put into `room`, which
    // has space for as many. Nothing if the system refuses. Several threads may ask at once.
    std::optional<std::span<const float>> get(std::size_t first, std::size_t count, std::span<float> room) const
    {
        return kept_ == nullptr ? memory_.subspan(first, count) : kept_->get(first, count, room);
    }

private:
    std::span<const float> memory_;
    const CellStore* kept_ = nullptr;
    CellStore* store_ = nullptr;
    std::int32_t nrows_;
    std::int32_t ncols_;
};

} // namespace gridforge::grid
