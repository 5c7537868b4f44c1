#include "host/console.h"
#include "remap/progress.h"
#include "remap/remap_run.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace gridforge::remap {

namespace {

void extendByOneCell(RemapRun& run)
{
    say("Extending flood extent by one cell.");
    std::ranges::fill(run.workGrid.cells(), run.null());
    say("Total rows: ", run.coarse.nrows);
    eachRow("Processing row:", run.coarse.nrows, kCoarseProgress,
            [&](std::int32_t row) { extendOneCellRow(row, run.wetFlags, run.extentFlags, run.wlGrid, run.workGrid); });
    say("   Done.");
}

// Depths are settled with the levels, row by row while both are at hand, and take the place of the ground: passing over the
// whole terrain once more, and memory that is touched for the first time, cost more than the interpolation.
void interpolate(RemapRun& run)
{
    say("Beginning TIN interpolation.");
    say("Total rows: ", run.terrain.nrows);
    const CoarseLevels coarse = run.coarseLevels();
    TinWalk walk = startTinWalk(coarse, columnAxis(run.terrain), rowAxis(run.terrain));
    std::vector<CellState> states(static_cast<std::size_t>(run.terrain.ncols));
    eachRow("Processing row:", run.terrain.nrows, kFineProgress, [&](std::int32_t row) {
        std::ranges::fill(states, startState(run.null()));
        interpolateTinRow(coarse, walk, row, run.levelGrid.row(row), states);
        depthsWhereWet(states, run.null(), run.levelGrid.row(row), run.demGrid.row(row));
    });
    std::swap(run.demGrid, run.depthGrid);
}

void announceDepths(const RemapRun& run)
{
    eachRow("Calculating depths based on interpolated levels - Row:", run.terrain.nrows, kFineProgress,
            [](std::int32_t) {});
}

} // namespace

void runTinMethod(RemapRun& run)
{
    extendByOneCell(run);
    interpolate(run);
    announceDepths(run);
    writeFine(run, run.options.waterLevelGrid, "_remap_h", run.levelGrid);
    writeFine(run, run.options.waterLevelGrid, "_remap_d", run.depthGrid);
}

} // namespace gridforge::remap
