#include "netcdf/chunk_packer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <libdeflate.h>

namespace gridforge::netcdf {

namespace {

static_assert(std::endian::native == std::endian::little, "cells go to the file as they are in memory");

constexpr std::size_t kCellBytes = sizeof(float);

} // namespace

void shuffleCells(std::span<const float> cells, std::size_t first, std::span<std::byte> chunk)
{
    constexpr std::size_t kCached = 2048;

    const std::size_t all = chunk.size() / kCellBytes;
    assert(first + cells.size() <= all);
    std::array<std::uint32_t, kCached> bits{};
    for (std::size_t done = 0; done < cells.size(); done += kCached) {
        const std::size_t count = std::min(kCached, cells.size() - done);
        std::memcpy(bits.data(), cells.data() + done, count * kCellBytes);
        for (std::size_t plane = 0; plane < kCellBytes; ++plane) {
            std::byte* const target = chunk.data() + plane * all + first + done;
            for (std::size_t i = 0; i < count; ++i) {
                target[i] = static_cast<std::byte>(bits[i] >> (8 * plane));
            }
        }
    }
}

void ChunkPacker::Free::operator()(libdeflate_compressor* compressor) const
{
    libdeflate_free_compressor(compressor);
}

bool ChunkPacker::take(const ChunkForm& form)
{
    form_ = form;
    filling_.assign(form.columns, form.fill);
    if (!form.deflated) {
        return true;
    }
    compressor_.reset(libdeflate_alloc_compressor(*form.deflated));
    return compressor_ != nullptr && unpacked_.allocate(form.bytes());
}

std::size_t ChunkPacker::mostBytes() const
{
    return form_.deflated ? libdeflate_zlib_compress_bound(compressor_.get(), form_.bytes()) : form_.bytes();
}

void ChunkPacker::start(std::span<std::byte> target)
{
    assert(target.size() >= mostBytes());
    target_ = target;
    chunk_ = form_.deflated ? unpacked_.all() : target.first(form_.bytes());
    placed_ = 0;
}

void ChunkPacker::add(std::span<const float> cells)
{
    place(cells);
    place(std::span(filling_).subspan(cells.size()));
}

void ChunkPacker::place(std::span<const float> cells)
{
    if (form_.shuffled) {
        shuffleCells(cells, placed_, chunk_);
    } else {
        std::ranges::copy(std::as_bytes(cells), chunk_.subspan(placed_ * kCellBytes).begin());
    }
    placed_ += cells.size();
}

std::size_t ChunkPacker::finish()
{
    while (placed_ < form_.cells()) {
        place(filling_);
    }
    if (!form_.deflated) {
        return chunk_.size();
    }
    return libdeflate_zlib_compress(compressor_.get(), chunk_.data(), chunk_.size(), target_.data(), target_.size());
}

} // namespace gridforge::netcdf
