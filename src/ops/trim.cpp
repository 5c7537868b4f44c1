// -trim cuts the window of a region out of a grid and empties the cells outside the region.
#include "ops/trim.h"

#include "core/names.h"
#include "core/numbers.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/still_to_read.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace gridforge::ops {

namespace {

constexpr std::size_t kMaxRegions = 100;
constexpr std::int32_t kMaxRegionVertices = 100;
constexpr std::size_t kRegionNameWidth = 250;
constexpr int kFileColumns = 3;

// --- The regions -----------------------------------------------------------------------------------------------------

struct TrimRegion {
    std::string name;
    run::SampledRegion region;
};

std::string regionName(const std::string& record)
{
    std::string name;
    gis::RecordValues(record).take(name, kRegionNameWidth);
    return name;
}

void addRegion(const gis::Coordinates& read, const std::string& record, std::vector<TrimRegion>& regions)
{
    if (read.np > kMaxRegionVertices) {
        say("ERROR - Region objects contains too many vertices.  Please contact ", kSupportContact);
        fail("   Maximum vertices in a single region:", kMaxRegionVertices);
    }
    if (regions.size() == kMaxRegions) {
        fail("ERROR - Number of regions exceeds maximum: ", kMaxRegions);
    }
    say("Region ", regions.size() + 1, " with ", read.np, " nodes...");
    regions.push_back({regionName(record), run::sampledRegion(read)});
}

std::vector<TrimRegion> readRegions(const std::string& layerName)
{
    gis::LayerReader layer = gis::openWithProjection(layerName).layer;
    say("Allocating memory for storing GIS regions...");
    std::vector<TrimRegion> regions;
    regions.reserve(kMaxRegions);
    say("   Done.");
    say("Searching for region objects...");
    gis::Coordinates read;
    while (const gis::LayerObject* object = gis::nextRegion(layer, read)) {
        addRegion(read, object->record, regions);
    }
    layer.close();
    return regions;
}

// --- The window ------------------------------------------------------------------------------------------------------

void reportOverhang(const run::CellWindow& w, const GridHeader& header, const std::string& region,
                    const std::string& gridName)
{
    // Named as it is, the test finds the regions that overhang both ends of an axis; batch files rely on its stop.
    if ((w.firstRow <= 0 && w.lastRow > header.nrows) || (w.firstColumn <= 0 && w.lastColumn > header.ncols)) {
        say("ERROR - Entire region is outside of grid, region name: ", region);
        fail("    Grid Name: ", gridName);
    }
    if (w.firstRow <= 0 || w.lastRow > header.nrows || w.firstColumn <= 0 || w.lastColumn > header.ncols) {
        say("WARNING - Part of region extends outside of grid, region name: ", region);
    }
}

run::CellWindow clamped(const run::CellWindow& w, const GridHeader& header)
{
    run::CellWindow window;
    window.firstRow = std::max(w.firstRow, 1);
    window.lastRow = std::min(w.lastRow, header.nrows);
    window.firstColumn = std::max(w.firstColumn, 1);
    window.lastColumn = std::min(w.lastColumn, header.ncols);
    return window;
}

GridHeader windowHeader(const run::CellWindow& w, const GridHeader& header)
{
    GridHeader output = header;
    output.nrows = w.lastRow - w.firstRow + 1;
    output.ncols = w.lastColumn - w.firstColumn + 1;
    output.xll = header.xll + static_cast<double>(static_cast<float>(w.firstColumn - 1)) * header.cellsize8;
    output.yll = header.yll + static_cast<double>(static_cast<float>(w.firstRow - 1)) * header.cellsize8;
    return output;
}

// --- The output ------------------------------------------------------------------------------------------------------

std::string outputName(const run::Common& common, const std::string& grid, const std::string& region, bool manyGrids,
                       bool manyRegions)
{
    if (!common.out) {
        return join(region, "_", grid);
    }
    const std::string& out = *common.out;
    if (manyGrids && manyRegions) {
        say("WARNING - More than 1 grid file and region used in conjunction with \"-out\" flag.");
        say("   Appending grid and region name...");
        return join(out, "_", grid, "_", region);
    }
    if (manyGrids) {
        say("More than 1 grid file specified with output file name: ", quoted(out));
        say("   Appending grid name...");
        return join(out, "_", grid);
    }
    if (manyRegions) {
        say("More than region specified with output file name: ", quoted(out));
        say("   Appending grid name...");
        return join(out, "_", region);
    }
    say("Using specified output file name: ", quoted(out));
    return out;
}

} // namespace

// --- The kernel ------------------------------------------------------------------------------------------------------

void copyInside(const run::SampledRegion& region, const GridHeader& header, const Grid& cells,
                const run::CellWindow& window, Grid& output)
{
    run::InsideWalk walk;
    run::prepareWalk(region, walk);
    run::forEachInsideRun(header, window, run::CellPlace::northEastCorner, walk,
                          [&](std::int32_t row, std::int32_t first, std::int32_t count) {
                              const auto target = output.row(row - window.firstRow + 1);
                              std::ranges::copy(run::cellsOfRun(cells, row, first, count),
                                                target.begin() + (first - window.firstColumn));
                          });
}

// --- The run ---------------------------------------------------------------------------------------------------------

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs)
{
    say("Processing \"-trim\" option.");
    const std::vector<TrimRegion> regions = readRegions(options.layer);

    say("Processing ", inputs.count(), " input grids.");
    const std::vector<run::InputGrid> grids = run::inputGrids(inputs);
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        const std::string& gridName = inputs[i];
        say("Proecsing File:", integerField(i, kFileColumns), ": ", gridName);
        Grid cells;
        const run::LoadedGrid loaded = run::loadGrid(gridName, {.purpose = "external grid..."}, cells);
        const GridHeader& header = loaded.header;
        const auto stillToRead = std::span(grids).subspan(static_cast<std::size_t>(i));

        for (const auto& [name, region] : regions) {
            const run::CellWindow wanted = run::regionWindow(region, header);
            reportOverhang(wanted, header, name, gridName);
            const run::CellWindow window = clamped(wanted, header);
            if (window.empty()) {
                say("WARNING - Region does not overlap grid, no output written, region name: ", name);
                continue;
            }
            const GridHeader outputHeader = windowHeader(window, header);
            Grid output;
            grid::allocateGrid(output, outputHeader, "storing output grid...");
            std::ranges::fill(output.cells(), header.null);
            copyInside(region, header, cells, window, output);

            const std::string target =
                outputName(common, FILENAMEPATH(gridName), name, inputs.count() > 1, regions.size() > 1);
            const grid::Format format = run::ascUnlessSpecified(common);
            say("Writing output to: ", target);
            run::requireNoInput(format, target, stillToRead);
            grid::writeGrid(format, target, outputHeader, output, loaded.projectionText, common.decimals);
        }
    }
}

} // namespace gridforge::ops
