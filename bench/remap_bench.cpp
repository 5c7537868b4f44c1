// Times whole runs of the remap on .flt grids, and runs that only read the terrain and write the two outputs with the same
// reader and writer. The argument is the number of fine rows and columns; coarse cells are five times as wide. The grids go to
// the folder GRIDFORGE_BENCH_FOLDER, or to that for temporary files if it is not set.
#include "grid/allocate.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "quiet_console.h"
#include "remap/remap.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <unistd.h>
#include <utility>

namespace gridforge {
namespace {

constexpr std::int32_t kCoarseness = 5;
constexpr double kFineSize = 2;

enum class Flood { valleys, everywhere };

// Valleys that run from south to north, 400 m from one to the next and 20 m deep, all falling to the south.
float groundAt(double x, double y)
{
    constexpr double kValley = 400;
    return static_cast<float>(30 + 10 * std::sin(x / kValley * 6.283185307179586) + 0.001 * y + std::sin(0.05 * y));
}

GridHeader squareOf(std::int32_t side, double cellsize)
{
    GridHeader header;
    header.nrows = side;
    header.ncols = side;
    header.xll = 0;
    header.yll = 0;
    header.cellsize = static_cast<float>(cellsize);
    header.cellsize8 = cellsize;
    return header;
}

// The terrain, the water levels and an extent on the coarse cells, in a folder of their own.
class Model {
public:
    Model(Flood flood, std::int32_t side) : folder_(makeFolder()), side_(side)
    {
        const QuietConsole quiet;
        std::mt19937 random(1);
        Grid grid;
        const GridHeader fine = squareOf(side, kFineSize);
        fillEach(grid, fine, [&](double x, double y) {
            return groundAt(x, y) + static_cast<float>(random() % 100) * 0.001F; // as rough as a survey
        });
        grid::writeGrid(grid::Format::flt, path("ground"), fine, grid, "");

        const GridHeader coarse = squareOf(side / kCoarseness, kFineSize * kCoarseness);
        fillEach(grid, coarse, [&](double x, double y) {
            const auto level = static_cast<float>(24 + 0.001 * y);
            const bool wet = flood == Flood::everywhere || groundAt(x, y) < level;
            return wet ? level + static_cast<float>(random() % 100) * 0.0001F : coarse.null;
        });
        grid::writeGrid(grid::Format::flt, path("level"), coarse, grid, "");
        // As far as 200 m up the sides of the valleys.
        fillEach(grid, coarse, [&](double x, double y) { return groundAt(x, y) < 34 ? 1.0F : coarse.null; });
        grid::writeGrid(grid::Format::flt, path("extent"), coarse, grid, "");
    }
    ~Model() { std::filesystem::remove_all(folder_); }
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    std::int64_t cells() const { return static_cast<std::int64_t>(side_) * side_; }

    remap::RemapOptions options(remap::Interpolation method) const
    {
        remap::RemapOptions options;
        options.interpolation = method;
        options.waterLevelGrid = path("level.flt");
        options.demGrid = path("ground.flt");
        return options;
    }

private:
    static std::filesystem::path makeFolder()
    {
        const char* const given = std::getenv("GRIDFORGE_BENCH_FOLDER");
        const auto base = given == nullptr ? std::filesystem::temp_directory_path() : std::filesystem::path(given);
        auto folder = base / ("remap_bench_" + std::to_string(getpid()));
        std::filesystem::create_directory(folder);
        return folder;
    }

    template <typename Value>
    static void fillEach(Grid& grid, const GridHeader& header, Value value)
    {
        if (!grid.allocate(header.nrows, header.ncols)) {
            std::abort();
        }
        for (std::int32_t row = 1; row <= header.nrows; ++row) {
            for (std::int32_t column = 1; column <= header.ncols; ++column) {
                grid(row, column) = value(header.x(column), header.y(row));
            }
        }
    }

    std::filesystem::path folder_;
    std::int32_t side_;
};

// The last model made is kept: benchmarks of one flood and size stand together.
const Model& modelOf(Flood flood, std::int32_t side)
{
    static std::unique_ptr<const Model> model;
    static Flood madeFlood{};
    static std::int32_t madeSide = 0;
    if (!model || madeFlood != flood || madeSide != side) {
        model.reset();
        model = std::make_unique<const Model>(flood, side);
        madeFlood = flood;
        madeSide = side;
    }
    return *model;
}

void finish(benchmark::State& state, const Model& model)
{
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * model.cells());
}

void readAndWriteTwice(benchmark::State& state, Flood flood)
{
    const Model& model = modelOf(flood, static_cast<std::int32_t>(state.range(0)));
    for (auto _ : state) {
        const QuietConsole quiet;
        const std::string terrain = model.path("ground.flt");
        grid::OpenGrid opened = grid::openGrid(terrain);
        const GridHeader header = opened.header;
        Grid grid;
        grid::allocateGrid(grid, header, "terrain");
        grid::readCells(std::move(opened), grid);
        grid::writeGrid(grid::Format::flt, model.path("level_remap_h"), header, grid, "");
        grid::writeGrid(grid::Format::flt, model.path("level_remap_d"), header, grid, "");
    }
    finish(state, model);
}

void remap(benchmark::State& state, Flood flood, void (*choose)(remap::RemapOptions&, const Model&))
{
    const Model& model = modelOf(flood, static_cast<std::int32_t>(state.range(0)));
    remap::RemapOptions options = model.options(remap::Interpolation::tin);
    choose(options, model);
    run::InputFileList inputs;
    inputs.add(options.waterLevelGrid);
    for (auto _ : state) {
        const QuietConsole quiet;
        remap::runRemap({}, options, inputs);
    }
    finish(state, model);
}

void byTin(remap::RemapOptions&, const Model&) {}

void byIdwInBuffer(remap::RemapOptions& options, const Model&)
{
    options.interpolation = remap::Interpolation::idw;
    options.buffer = 100.0F;
}

void byIdwInExtent(remap::RemapOptions& options, const Model& model)
{
    options.interpolation = remap::Interpolation::idw;
    options.extentGrid = model.path("extent.flt");
}

void add(const char* name, Flood flood, std::int32_t side, void (*choose)(remap::RemapOptions&, const Model&))
{
    const auto work = [=](benchmark::State& state) {
        choose == nullptr ? readAndWriteTwice(state, flood) : remap(state, flood, choose);
    };
    benchmark::RegisterBenchmark(name, work)->Arg(side)->Unit(benchmark::kMillisecond)->UseRealTime();
}

const bool kAdded = [] {
    for (const std::int32_t side : {2500, 5000, 10000}) {
        add("valleys/readAndWriteTwice", Flood::valleys, side, nullptr);
        add("valleys/tin", Flood::valleys, side, byTin);
        add("valleys/idwBuffer100m", Flood::valleys, side, byIdwInBuffer);
        add("valleys/idwExtent", Flood::valleys, side, byIdwInExtent);
        add("everywhere/readAndWriteTwice", Flood::everywhere, side, nullptr);
        add("everywhere/tin", Flood::everywhere, side, byTin);
        add("everywhere/idwBuffer100m", Flood::everywhere, side, byIdwInBuffer);
    }
    return true;
}();

} // namespace
} // namespace gridforge
