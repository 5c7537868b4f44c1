#include "netcdf/chunk_packer.h"

#include "support/sanitizers.h"

#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libdeflate.h>
#include <random>
#include <vector>

namespace gridforge {
namespace {

using Bytes = std::vector<std::byte>;

std::vector<float> randomCells(std::size_t count, std::uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<float> cells(count);
    for (float& cell : cells) {
        const auto bits = static_cast<std::uint32_t>(random());
        std::memcpy(&cell, &bits, sizeof cell);
    }
    return cells;
}

Bytes bytesOf(const std::vector<float>& cells)
{
    Bytes bytes(cells.size() * sizeof(float));
    std::memcpy(bytes.data(), cells.data(), bytes.size());
    return bytes;
}

// Byte b of cell i stands at b * cells + i.
Bytes plainlyShuffled(const Bytes& bytes)
{
    const std::size_t cells = bytes.size() / 4;
    Bytes shuffled(bytes.size());
    for (std::size_t i = 0; i < cells; ++i) {
        for (std::size_t b = 0; b < 4; ++b) {
            shuffled[b * cells + i] = bytes[i * 4 + b];
        }
    }
    return shuffled;
}

TEST(ShuffleCells, PutsEachByteIntoItsPlane)
{
    for (const std::size_t count : {1U, 2U, 17U, 2047U, 2048U, 2049U, 5000U}) {
        const std::vector<float> cells = randomCells(count, 1);
        Bytes chunk(count * 4);
        netcdf::shuffleCells(cells, 0, chunk);
        EXPECT_EQ(chunk, plainlyShuffled(bytesOf(cells))) << count;
    }
}

TEST(ShuffleCells, PutsAStretchWhereItBelongs)
{
    const std::vector<float> cells = randomCells(10, 2);
    Bytes chunk(40);
    netcdf::shuffleCells(std::span(cells).subspan(3), 3, chunk);
    netcdf::shuffleCells(std::span(cells).first(3), 0, chunk);
    EXPECT_EQ(chunk, plainlyShuffled(bytesOf(cells)));
}

// Two rows of three columns in chunks of three rows by four.
constexpr float kFill = -9999;
const std::vector<float> kWhole = {11, 12, 13, kFill, 21, 22, 23, kFill, kFill, kFill, kFill, kFill};

Bytes packed(const netcdf::ChunkForm& form)
{
    netcdf::ChunkPacker packer;
    EXPECT_TRUE(packer.take(form));
    Bytes target(packer.mostBytes());
    for (int again = 0; again < 2; ++again) { // the second chunk takes nothing from the first
        packer.start(target);
        packer.add(std::vector<float>{11, 12, 13});
        packer.add(std::vector<float>{21, 22, 23});
        target.resize(packer.finish());
        if (again == 0) {
            target.assign(packer.mostBytes(), std::byte{0x5A});
        }
    }
    return target;
}

Bytes inflated(const Bytes& bytes, std::size_t size)
{
    Bytes result(size);
    libdeflate_decompressor* const decompressor = libdeflate_alloc_decompressor();
    EXPECT_EQ(libdeflate_zlib_decompress(decompressor, bytes.data(), bytes.size(), result.data(), size, nullptr),
              LIBDEFLATE_SUCCESS);
    libdeflate_free_decompressor(decompressor);
    return result;
}

TEST(ChunkPacker, FillsWhatReachesPastTheGrid)
{
    EXPECT_EQ(packed({3, 4, false, std::nullopt, kFill}), bytesOf(kWhole));
}

TEST(ChunkPacker, Shuffles)
{
    EXPECT_EQ(packed({3, 4, true, std::nullopt, kFill}), plainlyShuffled(bytesOf(kWhole)));
}

TEST(ChunkPacker, DeflatesByAnyLevelWithAndWithoutShuffle)
{
    for (int level = 0; level <= 9; ++level) {
        EXPECT_EQ(inflated(packed({3, 4, false, level, kFill}), 48), bytesOf(kWhole)) << level;
        EXPECT_EQ(inflated(packed({3, 4, true, level, kFill}), 48), plainlyShuffled(bytesOf(kWhole))) << level;
    }
}

TEST(ChunkPacker, HasRoomForCellsThatDoNotPack)
{
    const std::vector<float> cells = randomCells(std::size_t{100} * 100, 3);
    netcdf::ChunkPacker packer;
    ASSERT_TRUE(packer.take({100, 100, true, 9, 0}));
    Bytes target(packer.mostBytes());
    packer.start(target);
    for (std::size_t row = 0; row < 100; ++row) {
        packer.add(std::span(cells).subspan(row * 100, 100));
    }
    target.resize(packer.finish());
    EXPECT_EQ(inflated(target, 40000), plainlyShuffled(bytesOf(cells)));
}

TEST(ChunkPacker, AChunkThatNoMemoryHoldsIsRefused)
{
    if (test::kSanitized) {
        GTEST_SKIP() << "a sanitizer ends the test over such a size";
    }
    netcdf::ChunkPacker packer;
    EXPECT_FALSE(packer.take({std::size_t{1} << 40, 1U << 20, false, 1, 0}));
}

} // namespace
} // namespace gridforge
