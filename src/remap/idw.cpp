#include "core/per_worker.h"
#include "core/rounding.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/system.h"
#include "host/threads.h"
#include "remap/growth.h"
#include "remap/idw_cells.h"
#include "remap/progress.h"
#include "remap/remap_run.h"
#include "run/rows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace gridforge::remap {

namespace {

constexpr std::int32_t kDefaultIterations = 1000;

// The search has no end where the wet cells do not suffice. It waits without using the processor.
[[noreturn]] void searchWithoutEnd()
{
    say("WARNING - Fewer wet cells within reach than IDW points, the search does not end. Press Ctrl+C to stop.");
    flushConsole();
    constexpr std::int64_t kHour = 3'600'000'000'000;
    for (;;) {
        theSystem().wait(kHour);
    }
}

std::int32_t announcePoints(std::int32_t points)
{
    if (points <= 0) {
        say("Max number of points for IDW interpolation not specified, defaulting to ", kDefaultIdwPoints);
        return kDefaultIdwPoints;
    }
    say("Using specified number of points for IDW interpolation of ", points);
    return points;
}

void extendCoarseLevels(RemapRun& run, std::int32_t points)
{
    std::ranges::fill(run.workGrid.cells(), run.null());
    say("Beginning IDW interpolation, this may take a while.");
    extendByIdw(run, points);
    writeCoarse(run, run.options.waterLevelGrid, "_h_IDW", run.workGrid);
}

void interpolateToTerrain(RemapRun& run)
{
    const CoarseLevels coarse = run.coarseLevels();
    const IdwPlaces places = idwPlaces(coarse, columnAxis(run.terrain), rowAxis(run.terrain));
    const auto interpolate = [&](std::int32_t row, std::size_t) {
        interpolateIdwRow(coarse, places, row, run.demGrid.row(row), run.levelGrid.row(row), run.cellState.row(row));
        return true;
    };
    eachRowAbreast("Interpolating IDW results to DEM - Row:", run.terrain.nrows, run.terrain.ncols, kFineProgress,
                   interpolate);
}

std::int32_t iterationLimit(const RemapRun& run)
{
    if (!run.options.buffer) {
        return kDefaultIterations;
    }
    const std::int32_t steps = truncateToInt(static_cast<double>(*run.options.buffer) / run.terrain.cellsize8);
    return steps == std::numeric_limits<std::int32_t>::max() ? steps : steps + 1;
}

// The levels of the cells wet so far, in spite of the name that they are written under.
void reportIteration(RemapRun& run, std::int32_t iteration)
{
    run::overBlocks(run.terrain.cells(), [&](const run::CellBlock& block) {
        const auto levels = cellsOf(run.depthGrid, block);
        std::ranges::copy(cellsOf(run.levelGrid, block), levels.begin());
        dropDryLevels(cellsOf(run.cellState, block), run.null(), levels);
    });
    eachRow("", run.terrain.nrows, kFineProgress, [](std::int32_t) {});
    writeFine(run, run.options.waterLevelGrid, join("_d2_iter", iteration), run.depthGrid);
}

void extendOutward(RemapRun& run)
{
    const std::int32_t limit = iterationLimit(run);
    say("Extending extent outward, maximum number of iterations: ", limit);
    GrowthFront front;
    std::int64_t extra = 1;
    for (std::int32_t k = 1; k <= limit && extra > 0; ++k) {
        extra = growWetArea(front, run.cellState, run.levelGrid, run.demGrid, run.terrain.null);
        if (k % kReportIterations == 0) {
            reportIteration(run, k);
        }
        say("Iteration ", k, " extra wet cells ", extra);
    }
}

// Depths take the place of the ground, so a grid of memory is never touched unless an iteration was reported.
void calculateDepths(RemapRun& run)
{
    run::overBlocks(run.terrain.cells(), [&](const run::CellBlock& block) {
        depthsOfWetCells(cellsOf(run.cellState, block), cellsOf(run.levelGrid, block), run.null(),
                         cellsOf(run.demGrid, block));
    });
    eachRow("Calculating depths based on interpolated levels - Row:", run.terrain.nrows, kFineProgress,
            [](std::int32_t) {});
    std::swap(run.demGrid, run.depthGrid);
}

} // namespace

void extendByIdw(RemapRun& run, std::int32_t points)
{
    WetIndex wet;
    if (!indexWetCells(run.wetFlags, wet)) {
        failMemory();
    }
    PerWorker<ListedCells> listed(threadCount());
    say("Total rows: ", run.coarse.nrows);
    const auto extend = [&](std::int32_t row, std::size_t worker) {
        return extendByIdwRow(row, points, wet, run.extentFlags, run.wlGrid, listed[worker], run.workGrid);
    };
    if (!eachRowAbreast("Processing row:", run.coarse.nrows, run.coarse.ncols, kCoarseProgress, extend)) {
        searchWithoutEnd();
    }
    say("   Done.");
}

void runIdwMethod(RemapRun& run)
{
    const std::int32_t points = announcePoints(run.options.idwPoints);
    startCellStates(run);
    extendCoarseLevels(run, points);
    interpolateToTerrain(run);
    extendOutward(run);
    run::overBlocks(run.terrain.cells(), [&](const run::CellBlock& block) {
        dropDryLevels(cellsOf(run.cellState, block), run.null(), cellsOf(run.levelGrid, block));
    });
    writeFine(run, run.options.waterLevelGrid, "_remap_h", run.levelGrid);
    calculateDepths(run);
    writeFine(run, run.options.waterLevelGrid, "_remap_d", run.depthGrid);
}

} // namespace gridforge::remap
