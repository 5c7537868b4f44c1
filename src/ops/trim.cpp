// -trim cuts the window of a region out of a grid and empties the cells outside the region.
#include "ops/trim.h"

#include "core/names.h"
#include "core/number_text.h"
#include "core/product.h"
#include "core/text.h"
#include "gis/layer_objects.h"
#include "gis/record_values.h"
#include "grid/writer.h"
#include "host/console.h"
#include "host/ends.h"
#include "ops/trimmed_grid.h"
#include "run/cells_ahead.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/sampled_region.h"
#include "run/still_to_read.h"

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

void reportOverhang(const CellWindow& w, const GridHeader& header, const std::string& region,
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

// --- The run ---------------------------------------------------------------------------------------------------------

// Where the outputs will be: named by the first region.
run::OutputWish wishOf(const run::Common& common, const std::string& gridName, const std::vector<TrimRegion>& regions)
{
    const std::string region = regions.empty() ? "" : regions.front().name;
    return run::outputWish(common, join(region, "_", FILENAMEPATH(gridName)), grid::Format::asc, 1);
}

} // namespace

void runTrim(const run::Common& common, const TrimOptions& options, const run::InputFileList& inputs)
{
    say("Processing \"-trim\" option.");
    const std::vector<TrimRegion> regions = readRegions(options.layer);

    say("Processing ", inputs.count(), " input grids.");
    const std::vector<run::InputGrid> grids = run::inputGrids(inputs);
    for (std::int32_t i = 1; i <= inputs.count(); ++i) {
        const std::string& gridName = inputs[i];
        say("Proecsing File:", integerField(i, kFileColumns), ": ", gridName);
        TrimmedGrid trimmed(gridName, regions, wishOf(common, gridName, regions));
        const run::LoadedGrid& loaded = trimmed.load();
        const auto stillToRead = std::span(grids).subspan(static_cast<std::size_t>(i));

        for (std::size_t r = 0; r < regions.size(); ++r) {
            const std::string& name = regions[r].name;
            const Cut cut = cutOf(regions[r].region, loaded.header);
            reportOverhang(cut.wanted, loaded.header, name, gridName);
            if (cut.window.empty()) {
                say("WARNING - Region does not overlap grid, no output written, region name: ", name);
                continue;
            }
            const grid::CellSource cells = trimmed.cells(r, cut);
            const std::string target =
                outputName(common, FILENAMEPATH(gridName), name, inputs.count() > 1, regions.size() > 1);
            const grid::Format format = run::ascUnlessSpecified(common);
            say("Writing output to: ", target);
            run::requireNoInput(format, target, stillToRead);
            grid::writeGrid(format, target, cut.header, cells, loaded.projectionText, common.decimals);
        }
    }
}

} // namespace gridforge::ops
