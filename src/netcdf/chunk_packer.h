// Cells of a chunk into the bytes that HDF5 keeps of it: as its own filters make them, in any deflated form.
#pragma once

#include "core/huge_array.h"
#include "netcdf/chunk_form.h"

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

struct libdeflate_compressor;

namespace gridforge::netcdf {

// The lowest bytes of all cells of a chunk stand before all second ones, and so on. Puts those of `cells`, which begin at
// cell `first` of the chunk, into their places.
void shuffleCells(std::span<const float> cells, std::size_t first, std::span<std::byte> chunk);

// Packs one chunk after the other, given by rows.
class ChunkPacker {
public:
    // False where the memory cannot be had.
    [[nodiscard]] bool take(const ChunkForm& form);

    // As many bytes as a packed chunk may have.
    std::size_t mostBytes() const;

    // Begins a chunk that is packed into `target`, which has room for the most bytes.
    void start(std::span<std::byte> target);
    // The next row, which may end before the chunk does.
    void add(std::span<const float> cells);
    // How many bytes it has; rows that were not given are filled.
    std::size_t finish();

private:
    struct Free {
        void operator()(libdeflate_compressor* compressor) const;
    };

    void place(std::span<const float> cells);

    ChunkForm form_;
    std::unique_ptr<libdeflate_compressor, Free> compressor_;
    HugeArray<std::byte> unpacked_; // where chunks are deflated
    std::vector<float> filling_;
    std::span<std::byte> target_;
    std::span<std::byte> chunk_; // before it is deflated
    std::size_t placed_ = 0;
};

} // namespace gridforge::netcdf
