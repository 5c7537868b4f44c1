// Chunks of a variable that are handed to HDF5 packed, past the filters and the cache of the libraries. The NetCDF library
// keeps the file open: both draw on one HDF5, which knows one file and one dataset however often they are opened in it.
#pragma once

#include "netcdf/chunk_form.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace gridforge::netcdf {

class ChunkDataset {
public:
    // The variable (time, y, x) or (y, x) of the file, by the id of the NetCDF library. None where its chunks are not made of
    // single grids, or are packed by anything other than shuffle and deflate.
    static std::optional<ChunkDataset> open(int file, const char* variable);

    ~ChunkDataset();
    ChunkDataset(ChunkDataset&& other) noexcept;
    ChunkDataset& operator=(ChunkDataset&&) = delete;
    ChunkDataset(const ChunkDataset&) = delete;
    ChunkDataset& operator=(const ChunkDataset&) = delete;

    const ChunkForm& form() const { return form_; }

    // Statuses of the NetCDF library. The series has room for a grid at `position`, from 1.
    int reach(std::int32_t position);
    // Writes the chunk whose first cell stands at `row` and `column`, from 0, of the grid at `position`, or of the only one.
    int write(std::optional<std::int32_t> position, std::size_t row, std::size_t column,
              std::span<const std::byte> packed);

private:
    using Id = std::int64_t;

    ChunkDataset(Id id, const ChunkForm& form) : id_(id), form_(form) {}

    Id id_;
    ChunkForm form_;
};

} // namespace gridforge::netcdf
