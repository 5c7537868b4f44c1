#include "core/text.h"
#include "host/console.h"
#include "remap/extra_grids.h"
#include "remap/progress.h"
#include "remap/remap_run.h"
#include "run/load.h"

#include <algorithm>

namespace gridforge::remap {

namespace {

// Levels and depths have been remapped by the method. The whole name is looked at, its folders too.
bool namesLevels(std::string_view name)
{
    return FLAGEXISTS(name, "_h_");
}

bool namesDepths(std::string_view name)
{
    return FLAGEXISTS(name, "_d_");
}

bool isSkipped(std::string_view name)
{
    if (namesLevels(name)) {
        say("Skipping water level gird: ", name);
        return true;
    }
    if (namesDepths(name)) {
        say("Skipping water depth gird: ", name);
        return true;
    }
    return false;
}

void readExtra(RemapRun& run, const std::string& name)
{
    say("Processing: ", name);
    const run::LoadSteps steps{.match = &run.coarse,
                               .matching = "Checking grid extent matches water level grid...",
                               .matched = "    OK.",
                               .reading = "Reading grid data"};
    run.projectionText = run::loadGrid(name, steps, run.wlGrid).projectionText;
    run.stillToRead.erase(run.stillToRead.begin());
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

std::vector<run::InputGrid> extraGridsToRead(const run::InputFileList& inputs, std::int32_t first)
{
    std::vector<run::InputGrid> grids;
    for (std::int32_t i = first; i <= inputs.count(); ++i) {
        if (!namesLevels(inputs[i]) && !namesDepths(inputs[i])) {
            grids.push_back(run::inputGrid(inputs[i]));
        }
    }
    return grids;
}

void remapExtraGrids(RemapRun& run, const run::InputFileList& inputs, std::int32_t first)
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

} // namespace gridforge::remap
