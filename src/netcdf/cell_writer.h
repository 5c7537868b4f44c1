// Laid cells into a variable of a NetCDF file.
#pragma once

#include "core/huge_array.h"
#include "grid/cell_store.h"
#include "netcdf/chunk_dataset.h"
#include "netcdf/chunk_packer.h"
#include "plane/grid_header.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace gridforge::netcdf {

// A variable of the file, by the library's ids.
struct CellVariable {
    int file = 0;
    int id = 0;
    const char* name = "";
};

// Chunks are packed side by side by all threads, and written in their order. Where the dataset is not made of chunks that we
// can pack, or memory for that is short, the cells go to the library as they are.
class CellWriter {
public:
    // For as many `grids` of the lattice as will be written. `call` is the name under which refusals are reported.
    CellWriter(const CellVariable& variable, const GridHeader& lattice, std::size_t grids, std::string_view call);

    bool packsChunks() const { return !packers_.empty(); }
    // How many grids are packed at once: so many should be laid when one of them is written.
    std::size_t gridsTogether() const;

    // Writes the first of the grids, the one at `position` of a variable (time, y, x), and may pack those after it, which
    // must be written next.
    void write(std::optional<std::int32_t> position, std::span<const grid::CellStore> laid);

private:
    struct Packed {
        HugeArray<std::byte> room;
        std::size_t bytes = 0; // 0: the cells could not be had
    };

    bool takeRooms(std::size_t grids);
    bool takeRoomsOf(std::size_t chunks);
    std::size_t chunksAcross() const;
    std::size_t chunksOfGrid() const;
    void packFrom(std::size_t chunk, std::span<const grid::CellStore> laid);
    std::size_t packChunk(const grid::CellStore& laid, std::size_t chunk, std::size_t worker,
                          std::span<std::byte> target);
    void writeChunks(std::optional<std::int32_t> position, std::span<const grid::CellStore> laid);
    void writeBands(std::optional<std::int32_t> position, const grid::CellStore& laid) const;

    CellVariable variable_;
    std::size_t nrows_;
    std::size_t ncols_;
    std::string_view call_;
    std::optional<ChunkDataset> dataset_;
    std::vector<ChunkPacker> packers_;     // one a thread
    std::vector<std::vector<float>> rows_; // room for a row of a chunk, one a thread
    std::vector<Packed> packed_;
    std::size_t waiting_ = 0; // the chunks that wait end here
    std::size_t next_ = 0;    // and begin here
};

} // namespace gridforge::netcdf
