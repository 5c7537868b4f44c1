#include "netcdf/cell_writer.h"

#include "core/huge_array.h"
#include "host/system.h"
#include "support/child_run.h"
#include "support/consoles.h"
#include "support/environment.h"
#include "support/few_pages.h"
#include "support/refusing_system.h"
#include "support/scratch_folder.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netcdf.h>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace gridforge {
namespace {

using test::Environment;
using test::kExits;

constexpr std::size_t kRows = 5;
constexpr std::size_t kColumns = 7;
constexpr std::size_t kCells = kRows * kColumns;

// A file of the library with a series and a single grid, in chunks of `chunkRows` by `chunkColumns` where there are rows.
class Target {
public:
    explicit Target(const test::ScratchFolder& folder, std::size_t chunkRows, std::size_t chunkColumns = 3)
        : name_((folder.path() / "a.nc").string())
    {
        std::array<int, 3> dimensions{};
        EXPECT_EQ(nc_create(name_.c_str(), NC_NETCDF4, &file_), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "time", NC_UNLIMITED, dimensions.data()), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "y", kRows, &dimensions[1]), NC_NOERR);
        EXPECT_EQ(nc_def_dim(file_, "x", kColumns, &dimensions[2]), NC_NOERR);
        EXPECT_EQ(nc_def_var(file_, "series", NC_FLOAT, 3, dimensions.data(), &series_), NC_NOERR);
        EXPECT_EQ(nc_def_var(file_, "single", NC_FLOAT, 2, dimensions.data() + 1, &single_), NC_NOERR);
        if (chunkRows > 0) {
            const std::array<std::size_t, 3> chunk{1, chunkRows, chunkColumns};
            EXPECT_EQ(nc_def_var_chunking(file_, series_, NC_CHUNKED, chunk.data()), NC_NOERR);
            EXPECT_EQ(nc_def_var_chunking(file_, single_, NC_CHUNKED, chunk.data() + 1), NC_NOERR);
            EXPECT_EQ(nc_def_var_deflate(file_, series_, 1, 1, 1), NC_NOERR);
            EXPECT_EQ(nc_def_var_deflate(file_, single_, 1, 1, 1), NC_NOERR);
        }
        EXPECT_EQ(nc_enddef(file_), NC_NOERR);
    }
    ~Target() { nc_close(file_); }
    Target(const Target&) = delete;
    Target& operator=(const Target&) = delete;

    netcdf::CellVariable series() const { return {file_, series_, "series"}; }
    netcdf::CellVariable single() const { return {file_, single_, "single"}; }

    std::vector<float> values(int id, std::size_t count)
    {
        nc_close(file_);
        EXPECT_EQ(nc_open(name_.c_str(), NC_NOWRITE, &file_), NC_NOERR);
        std::vector<float> values(count);
        EXPECT_EQ(nc_get_var_float(file_, id, values.data()), NC_NOERR);
        return values;
    }

private:
    std::string name_;
    int file_ = -1;
    int series_ = -1;
    int single_ = -1;
};

GridHeader lattice()
{
    GridHeader lattice;
    lattice.nrows = kRows;
    lattice.ncols = kColumns;
    return lattice;
}

// Grid g has the cells 100 g, 100 g + 1 and so on.
std::vector<grid::CellStore> gridsOf(std::size_t count, const std::string& folder)
{
    std::vector<grid::CellStore> grids(count);
    for (std::size_t g = 0; g < count; ++g) {
        EXPECT_TRUE(grids[g].take(kCells, folder));
        for (std::size_t i = 0; i < kCells; ++i) {
            EXPECT_TRUE(grids[g].put(i, std::vector<float>{static_cast<float>(100 * g + i)}));
        }
    }
    return grids;
}

void expectGrids(const std::vector<float>& values)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t grid = i / kCells;
        ASSERT_EQ(values[i], static_cast<float>(100 * grid + i % kCells)) << i;
    }
}

// Grids are written one after the other, as many laid at a time as the writer wishes.
void writeAll(netcdf::CellWriter& writer, std::size_t count, const std::string& folder)
{
    const std::vector<grid::CellStore> grids = gridsOf(count, folder);
    std::size_t laidTo = 0;
    for (std::size_t g = 0; g < count; ++g) {
        if (g == laidTo) {
            laidTo = std::min(count, g + writer.gridsTogether());
        }
        writer.write(static_cast<std::int32_t>(g + 1), std::span(grids).subspan(g, laidTo - g));
    }
}

// That many threads, also where there are fewer processors.
Environment inChunks(const char* threads, const char* memory)
{
    return {{"GRIDFORGE_THREADS", threads}, {"GRIDFORGE_MEMORY", memory}, {"GRIDFORGE_PIECE", "1000000"}};
}

TEST(CellWriter, CellsArriveThroughChunksOfAnySizeAndTheLibraryAlike)
{
    for (const char* threads : {"1", "2", "5", "40"}) {
        for (const char* memory : {"1", "100", "1000000"}) {
            const Environment environment = inChunks(threads, memory);
            for (const std::size_t chunkRows : {0U, 1U, 2U, 5U}) {
                const test::ScratchFolder folder;
                Target target(folder, chunkRows);
                const int series = target.series().id;
                {
                    netcdf::CellWriter writer(target.series(), lattice(), 11, "nf90_put_var (rg)");
                    EXPECT_TRUE(writer.packsChunks());
                    writeAll(writer, 11, folder.path().string());
                    netcdf::CellWriter single(target.single(), lattice(), 1, "nf90_put_var (rg)");
                    EXPECT_EQ(single.packsChunks(), chunkRows > 0);
                    single.write(std::nullopt, gridsOf(1, folder.path().string()));
                }
                const int id = target.single().id;
                expectGrids(target.values(series, 11 * kCells));
                expectGrids(target.values(id, kCells));
            }
        }
    }
}

TEST(CellWriter, GridsOfFewChunksArePackedSeveralAtATime)
{
    const test::ScratchFolder folder;
    const Target target(folder, 5); // three chunks a grid
    const auto together = [&](const char* threads, const char* memory, std::size_t grids = 100) {
        const Environment environment = inChunks(threads, memory);
        return netcdf::CellWriter(target.series(), lattice(), grids, "nf90_put_var (rg)").gridsTogether();
    };
    EXPECT_EQ(together("1", "1000000"), 1U);
    EXPECT_EQ(together("2", "1000000"), 1U); // four chunks
    EXPECT_EQ(together("3", "1000000"), 2U); // six
    EXPECT_EQ(together("6", "1000000"), 4U);
    EXPECT_EQ(together("6", "720"), 2U); // of 2 * 60 bytes a chunk
    EXPECT_EQ(together("6", "1"), 1U);
    EXPECT_EQ(together("6", "1000000", 3), 3U); // no more come

    const Environment environment = inChunks("6", "720");
    grid::CellStore cells;
    ASSERT_TRUE(cells.take(90, folder.path().string())); // 360 bytes, which leaves room for three chunks
    EXPECT_EQ(together("6", "720"), 1U);
}

// Rooms for many chunks, for one, or for none, where the library gets the cells.
TEST(CellWriter, CellsArriveWhereMemoryIsShort)
{
    const Environment environment = inChunks("5", "1000000");
    std::set<bool> packs;
    for (int arrays = 0; arrays < 40; ++arrays) {
        const test::ScratchFolder folder;
        Target target(folder, 2);
        const int series = target.series().id;
        {
            std::optional<netcdf::CellWriter> writer;
            {
                const test::FewPages pages(arrays);
                writer.emplace(target.series(), lattice(), 11, "nf90_put_var (rg)");
            }
            packs.insert(writer->packsChunks());
            EXPECT_TRUE(arrays > 0 || !writer->packsChunks());
            EXPECT_TRUE(writer->packsChunks() || writer->gridsTogether() == 1);
            writeAll(*writer, 11, folder.path().string());
        }
        expectGrids(target.values(series, 11 * kCells));
    }
    EXPECT_EQ(packs.size(), 2U);
}

TEST(CellWriter, OneChunkIsPackedAtATimeWhereNoneMayWait)
{
    const test::ScratchFolder folder;
    const Target target(folder, kRows, kColumns); // one chunk a grid
    const auto together = [&](const char* memory) {
        const Environment environment = inChunks("6", memory);
        return netcdf::CellWriter(target.series(), lattice(), 100, "nf90_put_var (rg)").gridsTogether();
    };
    EXPECT_EQ(together("1"), 1U);
    EXPECT_GT(together("1000000"), 1U);
}

// Bytes of large arrays that are held, and may be.
std::size_t heldBytes = 0;
std::size_t mostBytes = 0;

PageSource limitedPages()
{
    return {[](std::size_t bytes) -> void* {
                void* const pages = heldBytes + bytes <= mostBytes ? nativePages().take(bytes) : nullptr;
                heldBytes += pages == nullptr ? 0 : bytes;
                return pages;
            },
            [](void* pages, std::size_t bytes) {
                heldBytes -= bytes;
                nativePages().release(pages, bytes);
            }};
}

TEST(CellWriter, OneChunkIsPackedAtATimeWhereThereIsMemoryForNoMore)
{
    const test::ScratchFolder folder;
    const Target target(folder, kRows, kColumns); // one chunk a grid
    const Environment environment = inChunks("6", "1000000");
    usePages(limitedPages());
    const auto packs = [&](std::size_t grids, std::size_t bytes) {
        heldBytes = 0;
        mostBytes = bytes;
        const netcdf::CellWriter writer(target.series(), lattice(), grids, "nf90_put_var (rg)");
        return std::pair(writer.packsChunks(), heldBytes);
    };
    const auto [packsOne, bytesOfOne] = packs(1, std::size_t{1} << 30);
    const auto [packsMany, bytesOfMany] = packs(100, bytesOfOne);
    const bool packsNone = packs(100, bytesOfOne - 1).first;
    usePages(nativePages());
    EXPECT_TRUE(packsOne);
    EXPECT_GT(bytesOfOne, 0U);
    EXPECT_TRUE(packsMany);
    EXPECT_EQ(bytesOfMany, bytesOfOne);
    EXPECT_FALSE(packsNone);
}

TEST(CellWriter, CellsThatCannotBeReadBackEndTheRun)
{
    for (const std::size_t chunkRows : {0U, 2U}) { // by the library, in chunks
        const Environment inFiles({{"GRIDFORGE_MEMORY", "1"}});
        const test::ScratchFolder folder;
        const test::ChildRun run = test::runInChild(folder, [&] {
            const Target target(folder, chunkRows);
            netcdf::CellWriter writer(target.single(), lattice(), 1, "nf90_put_var (rg)");
            const std::vector<grid::CellStore> grids = gridsOf(1, ".");
            test::refuseReadsAfter(0);
            writer.write(std::nullopt, grids);
        });
        EXPECT_TRUE(run.ended);
        EXPECT_EQ(run.console, "ERROR - Could not allocate enough memory (RAM).\n" + kExits);
    }
}

TEST(CellWriter, ARefusalHasTheNameOfTheCall)
{
    const test::ScratchFolder folder;
    const test::ChildRun run = test::runInChild(folder, [&] {
        const Target target(folder, 2);
        netcdf::CellWriter writer(target.series(), lattice(), 1, "nf90_put_var (rg)");
        writer.write(0, gridsOf(1, ".")); // no such position
    });
    EXPECT_TRUE(run.ended);
    EXPECT_EQ(run.console,
              "ERROR - With nectdf call nf90_put_var (rg)\nNetcdf error message: NetCDF: HDF error\n" + kExits);
    EXPECT_EQ(run.errors, "");
}

} // namespace
} // namespace gridforge
