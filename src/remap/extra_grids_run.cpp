#include "core/text.h"
#include "grid/header.h"
#include "grid/reader.h"
#include "grid/writer.h"
#include "host/console.h"
#include "remap/extra_grids.h"
#include "remap/progress.h"
#include "remap/remap_run.h"

#include <algorithm>

namespace gridforge {

namespace {

// Levels and depths have been remapped by the method. The whole name is looked at, its folders too.
bool isSkipped(std::string_view name)
{
    if (FLAGEXISTS(name, "_h_")) {
        say("Skipping water level gird: ", name);
        return true;
    }
    if (FLAGEXISTS(name, "_d_")) {
        say("Skipping water depth gird: ", name);
        return true;
    }
    return false;
}

void readExtra(RemapRun& run, std::string_view name)
{
    say("Processing: ", name);
    GridHeader header = readGridHeader(name);
    run.projectionText = header.projectionText;
    say("Checking grid extent matches water level grid...");
    compareGridDimensions(run.coarse, header);
    say("    OK.");
    say("Reading grid data");
    readGridCells(name, header, run.wlGrid);
}

void extendExtra(RemapRun& run)
{
    constexpr std::int32_t kPoints = 1; // the nearest wet cell
    flagValues(run.wlGrid.cells(), run.null(),
               run.wetFlags.cells()); // the null of the water levels, not the grid's own
    std::ranges::fill(run.workGrid.cells(), run.null());
    say("Using wet/dry flags of water level grid...");
    say("Extending output grid extent to match water level extent.");
    extendByIdw(run, kPoints);
}

void takeNearest(RemapRun& run)
{
    const auto columns = placesInQuads(columnAxis(run.terrain), columnAxis(run.coarse));
    const auto rows = placesInQuads(rowAxis(run.terrain), rowAxis(run.coarse));
    eachRow("Assinging nearest grid results to DEM grid locations - Row:", run.terrain.nrows, kFineProgress,
            [&](std::int32_t row) {
                const auto values = run.levelGrid.row(row);
                takeNearestCorners(run.workGrid, columns, rows[static_cast<std::size_t>(row - 1)], run.null(), values);
                cutToDepths(run.depthGrid.row(row), run.null(), values);
            });
}

} // namespace

void remapExtraGrids(RemapRun& run, const InputFileList& inputs, std::int32_t first)
{
    for (std::int32_t i = first; i <= inputs.count(); ++i) {
        const std::string& name = inputs[i];
        if (isSkipped(name)) {
            continue;
        }
        readExtra(run, name);
        extendExtra(run);
        takeNearest(run);
        writeFine(run, name, "_remap", run.levelGrid);
    }
}

} // namespace gridforge
