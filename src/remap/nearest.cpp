#include "host/console.h"
#include "remap/nearest_cells.h"
#include "remap/progress.h"
#include "remap/remap_run.h"

#include <algorithm>

namespace gridforge::remap {

namespace {

void takeLevels(RemapRun& run)
{
    const CoarseLevels coarse = run.coarseLevels();
    const auto columns = placesInCells(columnAxis(run.terrain), coarse.columns);
    const auto rows = placesInCells(rowAxis(run.terrain), coarse.rows);
    eachRow("Interpolating model results to DEM - Row:", run.terrain.nrows, kFineProgress, [&](std::int32_t row) {
        takeNearestLevels(coarse, columns, rows[static_cast<std::size_t>(row - 1)], run.levelGrid.row(row));
    });
}

void calculateWetDepths(RemapRun& run)
{
    eachRow("Calculating depths based on interpolated levels - Row:", run.terrain.nrows, kFineProgress,
            [&](std::int32_t row) {
                depthsOfLevels(run.demGrid.row(row), run.levelGrid.row(row), run.null(), run.depthGrid.row(row));
            });
}

// One iteration. Every so many it reports, the levels before the depths.
std::int64_t iterate(RemapRun& run, std::int32_t iteration, bool reports)
{
    const std::string& source = run.options.waterLevelGrid;
    const std::int64_t extra = spreadLevels(run.levelGrid, run.demGrid, run.terrain.null, run.null(), run.depthGrid);
    if (reports) {
        writeFine(run, source, join("_h_iter", iteration), run.depthGrid);
    }
    std::ranges::copy(run.depthGrid.cells(), run.levelGrid.cells().begin());
    if (reports) {
        depthsOfLevels(run.demGrid.cells(), run.levelGrid.cells(), run.null(), run.depthGrid.cells());
        writeFine(run, source, join("_d_iter", iteration), run.depthGrid);
    }
    return extra;
}

// All iterations run, whatever they add. One that adds nothing leaves the levels as they are, and so would all after
// it: these only report.
void spread(RemapRun& run)
{
    std::int64_t extra = 1;
    for (std::int32_t k = 1; k <= kNearestIterations; ++k) {
        say("Iteration ", k, " of ", kNearestIterations);
        const bool reports = k % kReportIterations == 0;
        if (extra > 0 || reports) {
            extra = iterate(run, k, reports);
        }
        say("Extra wet cells in iteration ", extra);
    }
}

} // namespace

void runNearestMethod(RemapRun& run)
{
    const std::string& source = run.options.waterLevelGrid;
    takeLevels(run);
    writeFine(run, source, "_raw_h", run.levelGrid);
    calculateWetDepths(run);
    writeFine(run, source, "_interp_d", run.depthGrid);
    spread(run);
    depthsOnGround(run.demGrid.cells(), run.terrain.null, run.levelGrid.cells(), run.null(), run.depthGrid.cells());
    writeFine(run, source, "_d_final_fb0p5", run.depthGrid);
}

} // namespace gridforge::remap
