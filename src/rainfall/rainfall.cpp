#include "rainfall/rainfall.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/text.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "host/units.h"
#include "rainfall/control_file.h"
#include "rainfall/hyetographs.h"
#include "rainfall/idw.h"
#include "rainfall/memory_line.h"
#include "rainfall/points.h"
#include "rainfall/polygons.h"
#include "rainfall/rainfall_grid.h"
#include "rainfall/rainfall_nc.h"
#include "rainfall/steps.h"
#include "rainfall/triangles.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace gridforge::rainfall {

namespace {

// --- What a run holds ------------------------------------------------------------------------------------------------

struct Rainfall {
    std::string controlFile;
    RfSettings settings;
    RfHyetographs hyetographs;
    RfPoints points;
    GridHeader grid;
    RfGrids grids;
    std::int32_t decimals = grid::kDefaultDecimals;
};

// Works out one time step from what a method has prepared.
using StepRoutine = std::function<void(std::size_t step)>;

void allocateGrids(Rainfall& rain)
{
    constexpr std::uint64_t kBytes = 8;
    say("Allocating memory for rainfall depth and cumulative rainfall depth..");
    say("Memory required: ", static_cast<std::int64_t>(rain.grid.cells() * kBytes) / 1000, "kB");
    // A count at the limit stands for one past it.
    constexpr std::int32_t kEndless = std::numeric_limits<std::int32_t>::max();
    if (rain.grid.nrows == kEndless || rain.grid.ncols == kEndless ||
        !rain.grids.step.allocate(rain.grid.nrows, rain.grid.ncols) ||
        !rain.grids.cumulative.allocate(rain.grid.nrows, rain.grid.ncols)) {
        failMemory();
    }
    say("   Done.");
}

// --- The methods -----------------------------------------------------------------------------------------------------

StepRoutine preparePolygons(Rainfall& rain, RfPolygonTables& tables)
{
    constexpr std::uint32_t kBytes = 8;
    say("Using rainfall polygons.");
    say("Allocating memory for polygons.");
    sayMethodMemory(rain.grid, kBytes);
    allocateTables(rain.grid, tables);
    say("   Done.");
    rf_set_polygons(rain.controlFile, rain.points, rain.hyetographs, rain.grid, tables);
    return [&](std::size_t step) { rf_step_polygon(rain.hyetographs, step, tables, rain.grid.null, rain.grids); };
}

void writeTriangleNumbers(Rainfall& rain, const RfTinTables& tables)
{
    std::ranges::transform(tables.triangle.cells(), rain.grids.step.cells().begin(),
                           [](std::int32_t number) { return static_cast<float>(number); });
    grid::writeGrid(grid::Format::asc, "rf_giit", rain.grid, rain.grids.step, "", rain.decimals);
}

StepRoutine prepareTin(Rainfall& rain, RfTinTables& tables)
{
    constexpr std::uint32_t kBytes = 20; // with the work array of the crossings
    constexpr std::int32_t kTinBytes = kMaxRfTriangles * 12 + kMaxRfTinPoints * 24;
    say("Using rainfall TIN interpolation.");
    say("Allocating memory for tin interpolation factors.");
    sayMethodMemory(rain.grid, kBytes);
    allocateTables(rain.grid, tables);
    say("   Done.");
    say("Allocating memory for storing tin.");
    say("Memory required: ", kTinBytes / 1000, "kB");
    say("   Done.");
    rf_match_points(rain.hyetographs, rain.points);
    const std::vector<RfTriangle> triangles = rf_read_triangles(rain.controlFile, rain.points);
    const RfTinPoints tinPoints = rfTinPoints(rain.points);
    rf_tin_factors(triangles, tinPoints, rain.grid, tables);
    say("   Done.");
    writeTriangleNumbers(rain, tables);
    return [&rain, &tables, triangles, tinPoints](std::size_t step) {
        // Two lines before a step and one after it; they stay as users know them.
        say("placeholder");
        say("placeholder");
        rf_step_tin(rain.hyetographs, rain.points, step, triangles, tinPoints, tables, rain.grid.null, rain.grids);
        say("placeholder");
    };
}

StepRoutine prepareIdw(Rainfall& rain, RfIdwTables& tables)
{
    say("Using rainfall IDW interpolation.");
    const RfIdwMethod method = settleIdwMethod(rain.settings, rain.points.count(), rain.hyetographs.count());
    say("Allocating memory for IDW interpolation factors.");
    allocateTables(rain.grid, method, rain.points.count(), tables);
    say("   Done.");
    rf_match_points(rain.hyetographs, rain.points);
    rf_idw_weights(rain.grid, rain.points, tables);
    return [&](std::size_t step) { rf_step_idw(rain.hyetographs, rain.points, step, tables, rain.grids); };
}

// --- The outputs -----------------------------------------------------------------------------------------------------

struct SeriesOutputs {
    std::string base;
    Unit index = 0;
    RfNcRecord nc;
};

// Of a series of grids.
grid::Format gridFormat(const Rainfall& rain)
{
    return rain.settings.format == RfFormat::asc ? grid::Format::asc : grid::Format::flt;
}

SeriesOutputs openOutputs(const Rainfall& rain)
{
    SeriesOutputs outputs;
    outputs.base = FILENAMEPATH(rain.controlFile);
    OPENER(outputs.index, "O ", join(outputs.base, "_index.csv"));
    if (rain.settings.format == RfFormat::nc) {
        rf_nc_init(join(outputs.base, ".nc"), outputs.nc, rain.grid);
    }
    return outputs;
}

void writeStep(const Rainfall& rain, const SeriesOutputs& outputs, std::size_t step, float time)
{
    constexpr int kTimeDecimals = 3;
    if (rain.settings.format == RfFormat::nc) {
        putStep(outputs.nc, static_cast<std::int32_t>(step) + 1, time, rain.grids.step);
        return;
    }
    const std::string name = join(outputs.base, "_t", AREAL(time));
    const std::string extension = rain.settings.format == RfFormat::asc ? ".asc" : ".flt";
    writeLine(outputs.index, join(fixedText(static_cast<double>(time), kTimeDecimals), ",", name, extension));
    grid::writeGrid(gridFormat(rain), name, rain.grid, rain.grids.step, "", rain.decimals);
}

void writeTotal(const Rainfall& rain, SeriesOutputs& outputs)
{
    CLOSER(outputs.index);
    if (rain.settings.format == RfFormat::nc) {
        putTotal(outputs.nc, rain.grids.cumulative);
        closeRainfallNc(outputs.nc);
        return;
    }
    grid::writeGrid(gridFormat(rain), join(outputs.base, "_total"), rain.grid, rain.grids.cumulative, "",
                    rain.decimals);
}

// --- The control file ------------------------------------------------------------------------------------------------

void readControlFile(Rainfall& rain)
{
    RfLimits limits;
    rf_scan_limits(rain.controlFile, limits);
    // Records are taken as they come: a large maximum costs nothing.
    say("Allocating memory for rainfall curves...");
    rain.hyetographs.maxLocations = limits.locations;
    rain.hyetographs.maxPoints = limits.points;
    rain.points.maxLocations = limits.locations;
    say("   Done");
    rain.settings = readRfCommands(rain.controlFile, rain.hyetographs, rain.points);
}

} // namespace

// --- The run ---------------------------------------------------------------------------------------------------------

void runRainfall(const run::Common& common, const run::InputFileList& inputs)
{
    say("Rainfall interpolation to grid.");
    if (inputs.count() > 1) {
        fail("ERROR - Only one rainfall control file can be specified.");
    }
    Rainfall rain;
    rain.controlFile = inputs[1];
    rain.decimals = common.decimals;
    say("Rainfall control file: ", rain.controlFile);
    readControlFile(rain);
    requireSameTimes(rain.hyetographs);
    rain.grid = settleRfGrid(rain.settings);
    allocateGrids(rain);

    SeriesOutputs outputs = openOutputs(rain);
    RfPolygonTables polygons;
    RfTinTables tin;
    RfIdwTables idw;
    StepRoutine runStep;
    switch (rain.settings.method) {
    case RfMethod::polygon: runStep = preparePolygons(rain, polygons); break;
    case RfMethod::tin: runStep = prepareTin(rain, tin); break;
    case RfMethod::idw: runStep = prepareIdw(rain, idw); break;
    }

    const std::vector<float>& times = rain.hyetographs.records.front().time;
    for (std::size_t step = 0; step < times.size(); ++step) {
        say("Processing time: ", AREAL(times[step]));
        runStep(step);
        writeStep(rain, outputs, step, times[step]);
    }
    writeTotal(rain, outputs);
}

} // namespace gridforge::rainfall
