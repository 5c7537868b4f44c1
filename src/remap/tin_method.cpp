#include "base/console.h"
#include "remap/progress.h"
#include "remap/remap_run.h"

#include <algorithm>

namespace gridforge {

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

void interpolate(RemapRun& run)
{
    say("Beginning TIN interpolation.");
    say("Total rows: ", run.terrain.nrows);
    const CoarseLevels coarse = run.coarseLevels();
    TinWalk walk = startTinWalk(coarse, columnAxis(run.terrain), rowAxis(run.terrain));
    eachRow("Processing row:", run.terrain.nrows, kFineProgress, [&](std::int32_t row) {
        interpolateTinRow(coarse, walk, row, run.levelGrid.row(row), run.cellState.row(row));
    });
}

void calculateDepths(RemapRun& run)
{
    eachRow("Calculating depths based on interpolated levels - Row:", run.terrain.nrows, kFineProgress,
            [&](std::int32_t row) {
                depthsWhereWet(run.demGrid.row(row), run.cellState.row(row), run.null(), run.levelGrid.row(row),
                               run.depthGrid.row(row));
            });
}

} // namespace

void runTinMethod(RemapRun& run)
{
    startCellStates(run);
    extendByOneCell(run);
    interpolate(run);
    calculateDepths(run);
    writeFine(run, run.settings.waterLevelGrid, "_remap_h", run.levelGrid);
    writeFine(run, run.settings.waterLevelGrid, "_remap_d", run.depthGrid);
}

} // namespace gridforge
