// A series of grids into NetCDF by whole runs of -nc, by as many threads as GRIDFORGE_THREADS says, beside a loop that hands the
// same cells to the library, which packs them by one. Files are compared before anything is timed.
#include "grid/format.h"
#include "grid/writer.h"
#include "netcdf/nc.h"
#include "plane/cell_array.h"
#include "plane/grid_header.h"
#include "quiet_console.h"

#include <array>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <netcdf.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace gridforge {
namespace {

constexpr std::int32_t kRows = 3000;
constexpr std::int32_t kColumns = 5000;
constexpr std::int32_t kGrids = 3;
constexpr std::size_t kCells = std::size_t{kRows} * kColumns;

// Grids in a folder of their own: a rough water surface in three valleys out of five, nothing in the others.
struct Inputs {
    std::filesystem::path folder;
    run::InputFileList names;
    std::vector<Grid> grids;
    run::Common common;

    Inputs() : folder(std::filesystem::temp_directory_path() / ("nc_bench_" + std::to_string(getpid())))
    {
        const QuietConsole quiet;
        std::filesystem::create_directory(folder);
        common.out = (folder / "series.nc").string();
        for (std::int32_t i = 1; i <= kGrids; ++i) {
            makeGrid(i);
        }
    }
    ~Inputs() { std::filesystem::remove_all(folder); }
    Inputs(const Inputs&) = delete;
    Inputs& operator=(const Inputs&) = delete;

private:
    void makeGrid(std::int32_t i)
    {
        GridHeader header;
        header.nrows = kRows;
        header.ncols = kColumns;
        header.xll = 0;
        header.yll = 0;
        header.cellsize = 1;
        header.cellsize8 = 1;
        Grid& grid = grids.emplace_back();
        if (!grid.allocate(kRows, kColumns)) {
            std::abort();
        }
        std::mt19937 random(static_cast<std::uint32_t>(i));
        for (std::int32_t row = 1; row <= kRows; ++row) {
            for (std::int32_t column = 1; column <= kColumns; ++column) {
                const float rough = static_cast<float>(random() % 1000) * 1.0e-5F;
                const float surface = 20.0F + 0.01F * static_cast<float>(row + i) + rough;
                grid(row, column) = column % 500 < 300 ? surface : header.null;
            }
        }
        const std::string base = (folder / ("g" + std::to_string(i))).string();
        grid::writeGrid(grid::Format::flt, base, header, grid, "");
        names.add(base + ".flt");
    }
};

const Inputs& inputs()
{
    static const Inputs made;
    return made;
}

void run(bool byRows)
{
    const QuietConsole quiet;
    netcdf::NcOptions options;
    options.part = byRows;
    netcdf::runNc(inputs().common, options, inputs().names);
}

void require(int status)
{
    if (status != NC_NOERR) {
        std::fprintf(stderr, "%s\n", nc_strerror(status));
        std::abort();
    }
}

// The cells of the grids and of their maximum as they stand in the file.
using Blocks = std::vector<std::vector<float>>;

Blocks blocksInFile()
{
    int file = 0;
    int series = 0;
    int maximum = 0;
    require(nc_open(inputs().common.out->c_str(), NC_NOWRITE, &file));
    require(nc_inq_varid(file, "data_temporal", &series));
    require(nc_inq_varid(file, "data_max", &maximum));
    Blocks blocks(kGrids + 1, std::vector<float>(kCells));
    for (std::size_t i = 0; i < kGrids; ++i) {
        const std::array<std::size_t, 3> start{i, 0, 0};
        const std::array<std::size_t, 3> count{1, kRows, kColumns};
        require(nc_get_vara_float(file, series, start.data(), count.data(), blocks[i].data()));
    }
    require(nc_get_var_float(file, maximum, blocks[kGrids].data()));
    require(nc_close(file));
    return blocks;
}

// The library alone: whole blocks that lie ready in memory, packed as in a run.
void writeBlocks(const Blocks& blocks)
{
    int file = 0;
    int x = 0;
    int y = 0;
    int time = 0;
    int series = 0;
    int maximum = 0;
    const float null = -9999;
    require(nc_create((inputs().folder / "plain.nc").c_str(), NC_NETCDF4, &file));
    require(nc_def_dim(file, "x", kColumns, &x));
    require(nc_def_dim(file, "y", kRows, &y));
    require(nc_def_dim(file, "time", NC_UNLIMITED, &time));
    const std::array<int, 3> dimensions{time, y, x};
    require(nc_def_var(file, "data_temporal", NC_FLOAT, 3, dimensions.data(), &series));
    require(nc_def_var_deflate(file, series, 1, 1, 1));
    require(nc_def_var_fill(file, series, NC_FILL, &null));
    require(nc_def_var(file, "data_max", NC_FLOAT, 2, dimensions.data() + 1, &maximum));
    require(nc_def_var_deflate(file, maximum, 1, 1, 1));
    require(nc_def_var_fill(file, maximum, NC_FILL, &null));
    require(nc_enddef(file));
    for (std::size_t i = 0; i < kGrids; ++i) {
        const std::array<std::size_t, 3> start{i, 0, 0};
        const std::array<std::size_t, 3> count{1, kRows, kColumns};
        require(nc_put_vara_float(file, series, start.data(), count.data(), blocks[i].data()));
        require(nc_sync(file));
    }
    require(nc_put_var_float(file, maximum, blocks[kGrids].data()));
    require(nc_close(file));
}

void count(benchmark::State& state)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * (kGrids + 1) *
                            static_cast<std::int64_t>(kCells * sizeof(float)));
}

void wholeRun(benchmark::State& state, bool byRows)
{
    inputs(); // made before the clock starts
    for (auto _ : state) {
        run(byRows);
    }
    count(state);
}

void libraryAlone(benchmark::State& state, bool byRows)
{
    run(byRows);
    const Blocks blocks = blocksInFile();
    if (byRows) {
        for (std::int32_t row = 1; row <= kRows; ++row) {
            for (std::int32_t column = 1; column <= kColumns; ++column) {
                const std::size_t place =
                    static_cast<std::size_t>(row - 1) * kColumns + static_cast<std::size_t>(column - 1);
                if (blocks[1][place] != inputs().grids[1](row, column)) {
                    state.SkipWithError("a cell is not in its place");
                    return;
                }
            }
        }
    }
    for (auto _ : state) {
        writeBlocks(blocks);
    }
    count(state);
}

BENCHMARK_CAPTURE(wholeRun, block, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(libraryAlone, block, false)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(wholeRun, rows, true)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(libraryAlone, rows, true)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
} // namespace gridforge
