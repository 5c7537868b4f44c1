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
#include "run/cells_ahead.h"
#include "run/fill_ahead.h"
#include "run/load.h"
#include "run/outputs.h"
#include "run/still_to_read.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
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

// --- The cells -------------------------------------------------------------------------------------------------------

std::size_t rowsOf(const run::CellWindow& window)
{
    return static_cast<std::size_t>(window.lastRow - window.firstRow) + 1;
}

// --- The run ---------------------------------------------------------------------------------------------------------

constexpr std::size_t kMostWaitingCuts = 16; // each may take an open file

// A region's window of a grid.
struct Cut {
    const run::SampledRegion& region;
    run::CellWindow wanted;
    run::CellWindow window; // the part of it that lies in the grid
    GridHeader header;      // of the output; not if the window is empty
};

Cut cutOf(const run::SampledRegion& region, const GridHeader& header)
{
    const run::CellWindow wanted = run::regionWindow(region, header);
    Cut cut{region, wanted, clamped(wanted, header), header};
    if (!cut.window.empty()) {
        cut.header = windowHeader(cut.window, header);
    }
    return cut;
}

// The cells of the cut, by all threads, some rows each.
run::Way cutCells(const grid::CellStore& cells, const GridHeader& header, const Cut& cut, grid::CellStore& output)
{
    const std::size_t columns = cut.window.columns();
    const std::size_t rows =
        std::clamp<std::size_t>(std::min(run::kCachedCells, run::cellsOfPart()) / columns, 1, rowsOf(cut.window));
    const auto fill = [&](std::size_t first, std::span<float> target, std::size_t) {
        run::CellWindow some = cut.window;
        some.lastRow -= static_cast<std::int32_t>(first / columns);
        some.firstRow = some.lastRow - static_cast<std::int32_t>(target.size() / columns) + 1;
        if (2 * columns >= static_cast<std::size_t>(header.ncols)) {
            cells.willRead(placeOf(header, some.lastRow, 1), rowsOf(some) * static_cast<std::size_t>(header.ncols));
        }
        bool good = true;
        copyInside(cut.region, header, some, target,
                   [&](std::size_t place, std::span<float> part) { good = good && cells.get(place, part); });
        return good ? run::Way::ahead : run::Way::readRefused;
    };
    return run::fillAhead(output, rows * columns, fill);
}

// One grid and what is cut out of it. Where all is ordinary it is never in memory: a few windows of a binary grid are cut
// before its story is told, and wait. Otherwise the cells of the grid itself wait for the turns of its windows.
class TrimmedGrid {
public:
    TrimmedGrid(const std::string& name, const std::vector<TrimRegion>& regions, const run::OutputWish& wish);

    const run::LoadedGrid& load();
    // Says that the output is made, and makes it unless it is there.
    grid::CellSource cells(std::size_t region, const Cut& cut);

private:
    run::Way cutAll(const grid::GridLook& look);
    bool keepCells(const grid::GridLook& look);

    const std::string& name_;
    const std::vector<TrimRegion>& regions_;
    run::OutputWish wish_;
    bool ahead_ = false;
    grid::CellStore kept_;                 // the cells of the grid
    std::vector<grid::CellStore> waiting_; // the cuts, or none
    grid::CellStore output_;
    Grid plainCells_; // those of a grid that is read step by step, and a cut
    Grid plainOutput_;
    run::LoadedGrid loaded_;
};

TrimmedGrid::TrimmedGrid(const std::string& name, const std::vector<TrimRegion>& regions, const run::OutputWish& wish)
    : name_(name), regions_(regions), wish_(wish)
{
    run::InputFileList input;
    input.add(name);
    const auto looks = run::lookAtInputs(input);
    if (!looks) {
        return;
    }
    const grid::GridLook& look = looks->front();
    if (look.format == grid::Format::flt && regions.size() > kMostWaitingCuts) {
        ahead_ = keepCells(look);
        return;
    }
    run::Way way = run::openCells(look, wish_.folder, kept_);
    if (way == run::Way::ahead && kept_.isOnlyRead()) {
        way = cutAll(look);
        kept_.release();
    }
    run::countWay(way);
    ahead_ = way == run::Way::ahead;
    if (!ahead_) {
        kept_.release();
        waiting_.clear();
    }
}

run::Way TrimmedGrid::cutAll(const grid::GridLook& look)
{
    waiting_.resize(regions_.size());
    for (std::size_t i = 0; i < regions_.size(); ++i) {
        const Cut cut = cutOf(regions_[i].region, look.header);
        if (cut.window.empty()) {
            continue;
        }
        if (!run::takeOutput(waiting_[i], cut.header.cells(), wish_)) {
            return run::Way::noRoom;
        }
        if (const run::Way way = cutCells(kept_, look.header, cut, waiting_[i]); way != run::Way::ahead) {
            return way;
        }
    }
    return run::Way::ahead;
}

bool TrimmedGrid::keepCells(const grid::GridLook& look)
{
    const auto copy = [](const run::CellPiece&, run::InputPieces cells, run::OutputPieces kept) {
        std::ranges::copy(cells[0], kept[0].begin());
    };
    auto kept = run::mapAhead({&look, 1}, {.folder = wish_.folder, .binary = false, .grids = 1}, copy);
    if (kept) {
        kept_ = std::move(kept->front());
    }
    return kept.has_value();
}

const run::LoadedGrid& TrimmedGrid::load()
{
    loaded_ = run::loadGrid(name_, {.purpose = "external grid...", .ahead = ahead_}, plainCells_);
    return loaded_;
}

grid::CellSource TrimmedGrid::cells(std::size_t region, const Cut& cut)
{
    constexpr std::string_view kPurpose = "storing output grid...";
    if (!ahead_) {
        plainOutput_ = Grid();
        grid::allocateGrid(plainOutput_, cut.header, kPurpose);
        copyInside(cut.region, loaded_.header, cut.window, plainOutput_.cells(),
                   [&cells = std::as_const(plainCells_)](std::size_t place, std::span<float> part) {
                       std::ranges::copy(cells.cells().subspan(place, part.size()), part.begin());
                   });
        return plainOutput_;
    }
    grid::sayAllocation(cut.header, kPurpose);
    output_.release();
    if (!waiting_.empty()) {
        output_ = std::move(waiting_[region]);
    } else if (!run::takeOutput(output_, cut.header.cells(), wish_) ||
               cutCells(kept_, loaded_.header, cut, output_) != run::Way::ahead) {
        failMemory();
    }
    return {output_, cut.header};
}

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
