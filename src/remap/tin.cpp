#include "core/names.h"
#include "core/per_worker.h"
#include "grid/look.h"
#include "host/console.h"
#include "host/file_system.h"
#include "host/threads.h"
#include "remap/progress.h"
#include "remap/remap_run.h"
#include "run/cells_ahead.h"
#include "run/rows.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace gridforge::remap {

namespace {

void extendByOneCell(RemapRun& run)
{
    std::ranges::fill(run.workGrid.cells(), run.null());
    parallelFor(static_cast<std::size_t>(run.coarse.nrows), [&](std::size_t row, std::size_t) {
        extendOneCellRow(static_cast<std::int32_t>(row) + 1, run.wetFlags, run.extentFlags, run.wlGrid, run.workGrid);
    });
}

void announceExtension(const RemapRun& run)
{
    say("Extending flood extent by one cell.");
    say("Total rows: ", run.coarse.nrows);
    eachRow("Processing row:", run.coarse.nrows, kCoarseProgress, [](std::int32_t) {});
    say("   Done.");
}

// The method on the fine terrain. Depths are settled with the levels, while both are at hand.
class TinTerrain {
public:
    TinTerrain(const CoarseLevels& coarse, const GridHeader& terrain)
        : coarse_(coarse), nrows_(terrain.nrows), ncols_(terrain.ncols),
          places_(placeTin(coarse, columnAxis(terrain), rowAxis(terrain))), workers_(threadCount())
    {
    }

    // The ground becomes the depth.
    void interpolate(const run::CellBlock& block, std::size_t worker, std::span<float> levels, std::span<float> ground)
    {
        TinWalk& walk = workers_[worker].walk;
        std::vector<CellState>& states = workers_[worker].states;
        run::overRowsOf(block, nrows_, ncols_, [&](std::int32_t row, std::size_t column, const run::CellBlock& cells) {
            states.assign(cells.count, startState(coarse_.null));
            const auto rowLevels = levels.subspan(cells.start, cells.count);
            interpolateTinRow(coarse_, places_, walk, row, column, rowLevels, states);
            depthsWhereWet(states, coarse_.null, rowLevels, ground.subspan(cells.start, cells.count));
        });
    }

private:
    struct Worker {
        TinWalk walk;
        std::vector<CellState> states;
    };

    CoarseLevels coarse_;
    std::int32_t nrows_;
    std::int32_t ncols_;
    TinPlaces places_;
    PerWorker<Worker> workers_;
};

// Where the terrain is ordinary, levels and depths are computed without more of it in memory than a few pieces.
void computeAhead(RemapRun& run, grid::Format format)
{
    const std::optional<grid::GridLook> look = grid::lookAtGrid(run.options.demGrid);
    if (!look) {
        run::countWay(run::Way::oddInput);
        return;
    }
    const run::OutputWish wish{systemName(FILEFOLDERPATH(run.options.waterLevelGrid)), format == grid::Format::flt, 2};
    TinTerrain terrain(run.coarseLevels(), look->header);
    const auto kernel = [&](const run::CellPiece& piece, run::InputPieces ground, run::OutputPieces out) {
        std::ranges::copy(ground[0], out[1].begin());
        terrain.interpolate({piece.first, piece.count}, piece.worker, out[0], out[1]);
    };
    if (auto grids = run::mapAhead(std::span(&*look, 1), wish, kernel)) {
        run.ready = *std::move(grids);
    }
}

// Depths take the place of the ground: memory that is touched for the first time costs more than the interpolation.
void interpolate(RemapRun& run)
{
    TinTerrain terrain(run.coarseLevels(), run.terrain);
    const auto columns = static_cast<std::size_t>(run.terrain.ncols);
    for (std::int32_t row = 1; row <= run.terrain.nrows; ++row) {
        const std::size_t start = static_cast<std::size_t>(run.terrain.nrows - row) * columns;
        terrain.interpolate({start, columns}, 0, run.levelGrid.row(row), run.demGrid.row(row));
    }
    std::swap(run.demGrid, run.depthGrid);
}

void announceInterpolation(const RemapRun& run)
{
    say("Beginning TIN interpolation.");
    say("Total rows: ", run.terrain.nrows);
    eachRow("Processing row:", run.terrain.nrows, kFineProgress, [](std::int32_t) {});
}

void announceDepths(const RemapRun& run)
{
    eachRow("Calculating depths based on interpolated levels - Row:", run.terrain.nrows, kFineProgress,
            [](std::int32_t) {});
}

} // namespace

void prepareTin(RemapRun& run, grid::Format format)
{
    extendByOneCell(run);
    computeAhead(run, format);
}

void runTinMethod(RemapRun& run)
{
    announceExtension(run);
    if (!run.isAhead()) {
        interpolate(run);
    }
    announceInterpolation(run);
    announceDepths(run);
    if (!run.isAhead()) {
        writeFine(run, run.options.waterLevelGrid, "_remap_h", run.levelGrid);
        writeFine(run, run.options.waterLevelGrid, "_remap_d", run.depthGrid);
        return;
    }
    writeFine(run, run.options.waterLevelGrid, "_remap_h", {run.ready[0], run.terrain});
    // Further grids are cut to the depths.
    const grid::CellSource kept(std::as_const(run.ready[1]), run.terrain);
    writeFine(run, run.options.waterLevelGrid, "_remap_d",
              run.stillToRead.empty() ? grid::CellSource(run.ready[1], run.terrain) : kept);
}

} // namespace gridforge::remap
