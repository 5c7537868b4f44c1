#include "core/names.h"
#include "core/text.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/file_system.h"
#include "remap/extra_grid_cells.h"
#include "remap/progress.h"
#include "remap/remap_run.h"
#include "run/cells_ahead.h"
#include "run/load.h"
#include "run/rows.h"

#include <algorithm>
#include <utility>

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

// Values of a stretch of the terrain, in rows of which only a part may belong to it.
class NearestValues {
public:
    explicit NearestValues(const RemapRun& run)
        : run_(run), columns_(placesInQuads(columnAxis(run.terrain), columnAxis(run.coarse))),
          rows_(placesInQuads(rowAxis(run.terrain), rowAxis(run.coarse)))
    {
    }

    void take(const run::CellBlock& block, std::span<const float> depths, std::span<float> values) const
    {
        run::overRowsOf(block, run_.terrain.nrows, run_.terrain.ncols,
                        [&](std::int32_t row, std::size_t column, const run::CellBlock& cells) {
                            takeNearestCorners(run_.workGrid, std::span(columns_).subspan(column, cells.count),
                                               rows_[static_cast<std::size_t>(row - 1)], run_.null(),
                                               values.subspan(cells.start, cells.count));
                        });
        cutToDepths(depths, run_.null(), values);
    }

private:
    const RemapRun& run_;
    std::vector<QuadPlace> columns_;
    std::vector<QuadPlace> rows_;
};

void announceNearest(const RemapRun& run)
{
    eachRow("Assinging nearest grid results to DEM grid locations - Row:", run.terrain.nrows, kFineProgress,
            [](std::int32_t) {});
}

// Room for the values that cannot be had any more is that of the levels, which they take the place of.
void writeNearestAhead(RemapRun& run, const std::string& name)
{
    const run::OutputWish wish{systemName(FILEFOLDERPATH(name)), run.format == grid::Format::flt, 1};
    const NearestValues nearest(run);
    auto values = run::mapStored(run.ready[1], run.terrain, wish,
                                 [&](const run::CellPiece& piece, run::InputPieces depths, run::OutputPieces out) {
                                     nearest.take({piece.first, piece.count}, depths[0], out[0]);
                                 });
    if (!values) {
        failMemory();
    }
    announceNearest(run);
    writeFine(run, name, "_remap", {values->front(), run.terrain});
}

void writeNearest(RemapRun& run, const std::string& name)
{
    const NearestValues nearest(run);
    run::overBlocks(run.terrain.cells(), [&](const run::CellBlock& block) {
        nearest.take(block, cellsOf(run.depthGrid, block), cellsOf(run.levelGrid, block));
    });
    announceNearest(run);
    writeFine(run, name, "_remap", run.levelGrid);
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
        run.isAhead() ? writeNearestAhead(run, name) : writeNearest(run, name);
    }
}

} // namespace gridforge::remap
