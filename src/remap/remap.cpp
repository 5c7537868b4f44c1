#include "remap/remap.h"

#include "core/number_text.h"
#include "grid/allocate.h"
#include "host/console.h"
#include "host/ends.h"
#include "remap/remap_run.h"
#include "run/load.h"
#include "run/outputs.h"

#include <algorithm>

namespace gridforge::remap {

namespace {

// A freeboard up to this is added, but not announced.
constexpr float kAnnouncedFreeboard = 0.001F;
// Reach of the flags of the TIN method: past the eight neighbours, short of the next.
constexpr double kTinReach = 1.5;

// The figures wrap at 32 bits on purpose: they are only printed.
std::int32_t flagKilobytes(const GridHeader& header)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(header.nrows) *
                                     static_cast<std::uint32_t>(header.ncols)) /
           1000;
}

std::int32_t pairKilobytes(const GridHeader& header)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(header.ncols) * 2U *
                                     static_cast<std::uint32_t>(header.nrows) * 4U) /
           1000;
}

void allocateFlags(CellFlags& flags, const GridHeader& header, std::string_view purpose)
{
    say("Allocating ", AINTEGER(flagKilobytes(header)), "Kb memory for ", purpose);
    if (!flags.allocate(header.nrows, header.ncols)) {
        failMemory();
    }
}

// Gives the number of the first extra grid in the list.
std::int32_t announceInputs(const RemapOptions& options, const run::InputFileList& inputs)
{
    std::int32_t firstExtra = 1;
    if (options.waterLevelGrid.empty()) {
        say("ERROR - Water level grid is required."); // and on: the read that follows fails
    } else {
        say("   Water Level Grid: ", options.waterLevelGrid);
        firstExtra = 2;
    }
    if (options.demGrid.empty()) {
        fail("ERROR - DEM grid is required.");
    }
    say("   High Res DEM:     ", options.demGrid);
    if (!options.extentGrid.empty()) {
        say("   Max Extent Grid:  ", options.extentGrid);
    }
    say("   Number of grids to remap without interporation:  ", AINTEGER(inputs.count() - firstExtra + 1));
    for (std::int32_t i = firstExtra; i <= inputs.count(); ++i) {
        say("   ", inputs[i]);
    }
    if (options.freeboard > kAnnouncedFreeboard) {
        say("Adding user specified freeboard of: ", AREAL(options.freeboard));
    }
    return firstExtra;
}

// Returns the format of the grid.
grid::Format loadWaterLevels(RemapRun& run)
{
    const run::LoadSteps steps{.purpose = "storing water levels...", .reading = "Reading WL data"};
    const run::LoadedGrid levels = run::loadGrid(run.options.waterLevelGrid, steps, run.wlGrid);
    run.coarse = levels.header;

    allocateFlags(run.wetFlags, run.coarse, "mod wet/dry flags");
    say("Adding freeboard and setting wet/dry flags for modelled grid...");
    flagWetAndAddFreeboard(run.wlGrid.cells(), run.null(), run.options.freeboard, run.wetFlags.cells());
    say("   Done.");

    allocateFlags(run.extentFlags, run.coarse, "maximum extent flags");
    grid::allocateGrid(run.workGrid, run.coarse, "working array...");
    return levels.format;
}

void flagBuffer(RemapRun& run, float buffer)
{
    const ExtentCounts counts = bufferExtent(run.wetFlags, run.coarse.cellsize, buffer, run.extentFlags);
    say("Found ", integerField(counts.wet, 12), " wet cells in input grid and added ",
        integerField(counts.buffered, 12), " buffered cells.");
}

void flagExtentGrid(RemapRun& run)
{
    const run::LoadSteps steps{.match = &run.coarse,
                               .matching = "Checking water level and maximum extent grids match...",
                               .matched = "    Done.",
                               .reading = "Reading max extent data"};
    const float null = run::loadGrid(run.options.extentGrid, steps, run.workGrid).header.null;
    say("Setting maximum extent flags based on maximum modelled grid...");
    flagValues(run.workGrid.cells(), null, run.extentFlags.cells());
    say("   Done.");
}

void setExtentFlags(RemapRun& run)
{
    const RemapOptions& options = run.options;
    if (options.interpolation == Interpolation::tin) {
        const auto buffer = static_cast<float>(kTinReach * run.coarse.cellsize8);
        say("Setting extent flags for tin interporation ", AREAL(buffer));
        flagBuffer(run, buffer);
    } else if (!options.extentGrid.empty()) {
        flagExtentGrid(run);
    } else if (options.buffer) {
        say("Setting maximum extent flags based on buffer distance of ", AREAL(*options.buffer));
        flagBuffer(run, *options.buffer);
    } else {
        say("WARNING - Maximum extent not limited by buffer distance or specified extent, processing may be slow.");
        pauseForEnter();
        std::ranges::fill(run.extentFlags.cells(), std::uint8_t{1});
    }
}

void loadTerrain(RemapRun& run)
{
    const run::LoadSteps steps{.opening = "Reading DEM header...",
                               .purpose = "storing DEM.",
                               .reading = "Reading DEM data",
                               .ahead = run.isAhead()};
    const run::LoadedGrid terrain = run::loadGrid(run.options.demGrid, steps, run.demGrid);
    run.terrain = terrain.header;
    run.projectionText = terrain.projectionText;

    say("Allocating ", AINTEGER(pairKilobytes(run.terrain)), "Kb memory for processing");
    if (!run.isAhead() && (!run.levelGrid.allocate(run.terrain.nrows, run.terrain.ncols) ||
                           !run.depthGrid.allocate(run.terrain.nrows, run.terrain.ncols))) {
        failMemory();
    }
}

void runMethod(RemapRun& run)
{
    switch (run.options.interpolation) {
    case Interpolation::nearest: runNearestMethod(run); break;
    case Interpolation::idw: runIdwMethod(run); break;
    case Interpolation::tin: runTinMethod(run); break;
    case Interpolation::none:
    default: fail("ERROR - Incorrect Remap method");
    }
}

} // namespace

void runRemap(const run::Common& common, const RemapOptions& options, const run::InputFileList& inputs)
{
    say("Processing -remap option.");
    const std::int32_t firstExtra = announceInputs(options, inputs);

    RemapRun run(options);
    run.stillToRead = extraGridsToRead(inputs, firstExtra);
    const grid::Format inputFormat = loadWaterLevels(run);
    setExtentFlags(run);
    if (options.interpolation == Interpolation::tin) {
        prepareTin(run, common.format.value_or(inputFormat));
    }
    loadTerrain(run);
    run.format = run::outputFormatRule(common, inputFormat);
    run.decimals = common.decimals;
    runMethod(run);

    say("");
    remapExtraGrids(run, inputs, firstExtra);
}

} // namespace gridforge::remap
